#include "ui/picture.h"

#include "base/unique_com.h"
#include "base/win32_error.h"
#include "ui/drawing.h"

#include <wincodec.h>

#include <span>

namespace girder::ui {
namespace {

constexpr int bytes_a_pixel = 4;

// As the system's headers declare them; their library would bring in all the others.
constexpr GUID imaging_factory = {0xcacaf262, 0x9370, 0x4615, {0xa1, 0x3b, 0x9f, 0x55, 0x39, 0xda, 0x4c, 0x0a}};
constexpr GUID premultiplied_bgra = {0x6fddc324, 0x4e03, 0x4bfe, {0xb1, 0x85, 0x3d, 0x77, 0x76, 0x8d, 0xc9, 0x10}};

std::span<BYTE> png_resource(int id)
{
    const HRSRC place = ::FindResourceW(nullptr, MAKEINTRESOURCEW(id), L"PNG");
    const HGLOBAL resource = place ? ::LoadResource(nullptr, place) : nullptr;
    if (!resource)
        throw_last_error("FindResourceW");
    return {static_cast<BYTE*>(::LockResource(resource)), ::SizeofResource(nullptr, place)};
}

unique_com<IWICFormatConverter> decoded(IWICImagingFactory& imaging, std::span<BYTE> png)
{
    unique_com<IWICStream> stream;
    unique_com<IWICBitmapDecoder> decoder;
    unique_com<IWICBitmapFrameDecode> frame;
    unique_com<IWICFormatConverter> converter;
    throw_if_failed(imaging.CreateStream(stream.put()), "CreateStream");
    throw_if_failed(stream.get()->InitializeFromMemory(png.data(), static_cast<DWORD>(png.size())),
                    "InitializeFromMemory");
    throw_if_failed(
        imaging.CreateDecoderFromStream(stream.get(), nullptr, WICDecodeMetadataCacheOnDemand, decoder.put()),
        "CreateDecoderFromStream");
    throw_if_failed(decoder.get()->GetFrame(0, frame.put()), "GetFrame");
    throw_if_failed(imaging.CreateFormatConverter(converter.put()), "CreateFormatConverter");
    throw_if_failed(converter.get()->Initialize(frame.get(), premultiplied_bgra, WICBitmapDitherTypeNone, nullptr, 0,
                                                WICBitmapPaletteTypeCustom),
                    "IWICFormatConverter::Initialize");
    return converter;
}

} // namespace

picture::picture(int resource_id)
{
    unique_com<IWICImagingFactory> imaging;
    throw_if_failed(::CoCreateInstance(imaging_factory, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IWICImagingFactory),
                                       reinterpret_cast<void**>(imaging.put())),
                    "CoCreateInstance");
    const unique_com<IWICFormatConverter> source = decoded(*imaging.get(), png_resource(resource_id));
    UINT width = 0;
    UINT height = 0;
    throw_if_failed(source.get()->GetSize(&width, &height), "GetSize");
    pixels_.resize(std::size_t{width} * height * bytes_a_pixel);
    throw_if_failed(
        source.get()->CopyPixels(nullptr, width * bytes_a_pixel, static_cast<UINT>(pixels_.size()), pixels_.data()),
        "CopyPixels");
    width_ = static_cast<int>(width);
    height_ = static_cast<int>(height);
}

void picture::shrink_towards(int width)
{
    constexpr int half = 2;
    constexpr std::size_t quarter = 4;
    while (width_ >= half * width && width_ % half == 0 && height_ % half == 0) {
        const auto line = static_cast<std::size_t>(width_) * bytes_a_pixel;
        std::vector<std::uint8_t> smaller;
        smaller.reserve(pixels_.size() / quarter);
        for (std::size_t y = 0; y < pixels_.size(); y += half * line)
            for (std::size_t x = 0; x < line; x += std::size_t{half} * bytes_a_pixel)
                for (std::size_t at = y + x; at < y + x + bytes_a_pixel; ++at)
                    smaller.push_back(
                        static_cast<std::uint8_t>((pixels_[at] + pixels_[at + bytes_a_pixel] + pixels_[at + line] +
                                                   pixels_[at + line + bytes_a_pixel] + half) /
                                                  (half * half)));
        pixels_ = std::move(smaller);
        width_ /= half;
        height_ /= half;
    }
}

bool picture::draw(HDC device, const RECT& part, COLORREF background)
{
    drawing* const means = drawing::shared();
    if (!means)
        return false;
    picture fitting = *this;
    fitting.shrink_towards(part.right - part.left);
    return means->paint(device, part, [&](ID2D1RenderTarget& target) {
        const D2D1_SIZE_U size{static_cast<UINT32>(fitting.width_), static_cast<UINT32>(fitting.height_)};
        const D2D1_BITMAP_PROPERTIES properties{
            .pixelFormat = {.format = DXGI_FORMAT_B8G8R8A8_UNORM, .alphaMode = D2D1_ALPHA_MODE_PREMULTIPLIED},
            .dpiX = 96.0F,
            .dpiY = 96.0F};
        unique_com<ID2D1Bitmap> bitmap;
        throw_if_failed(
            target.CreateBitmap(size, fitting.pixels_.data(), size.width * bytes_a_pixel, &properties, bitmap.put()),
            "CreateBitmap");
        const D2D1_RECT_F place{0, 0, static_cast<float>(part.right - part.left),
                                static_cast<float>(part.bottom - part.top)};
        target.Clear(as_direct2d(background));
        target.DrawBitmap(bitmap.get(), &place, 1.0F, D2D1_BITMAP_INTERPOLATION_MODE_LINEAR, nullptr);
    });
}

} // namespace girder::ui
