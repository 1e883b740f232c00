#include "ui/drawing.h"

#include "base/debug_log.h"
#include "base/handles.h"
#include "base/system_error.h"
#include "base/win32_error.h"

#include <memory>
#include <utility>

namespace girder::ui {
namespace {

// The calls' own declarations are templates and overloads.
using create_direct2d = HRESULT WINAPI(D2D1_FACTORY_TYPE, REFIID, const D2D1_FACTORY_OPTIONS*, void**);
using create_direct_write = HRESULT WINAPI(DWRITE_FACTORY_TYPE, REFIID, IUnknown**);

} // namespace

drawing::drawing() : direct2d_library_(u"d2d1.dll"), direct_write_library_(u"dwrite.dll")
{
    const auto make_direct2d = direct2d_library_.function<create_direct2d>("D2D1CreateFactory");
    throw_if_failed(make_direct2d(D2D1_FACTORY_TYPE_SINGLE_THREADED, __uuidof(ID2D1Factory), nullptr,
                                  reinterpret_cast<void**>(direct2d_.put())),
                    "D2D1CreateFactory");
    const auto make_direct_write = direct_write_library_.function<create_direct_write>("DWriteCreateFactory");
    throw_if_failed(make_direct_write(DWRITE_FACTORY_TYPE_SHARED, __uuidof(IDWriteFactory),
                                      reinterpret_cast<IUnknown**>(direct_write_.put())),
                    "DWriteCreateFactory");
    make_target();
    draw_once();
}

drawing* drawing::shared()
{
    static const std::unique_ptr<drawing> only = []() -> std::unique_ptr<drawing> {
        try {
            return std::make_unique<drawing>();
        } catch (const system_error& error) {
            log_failure({.code = error.code(), .context = error.what()});
            return nullptr;
        }
    }();
    return only.get();
}

bool drawing::prepare(HWND owner) noexcept
{
    static bool begun = false;
    if (!std::exchange(begun, true))
        make_on_the_pool();
    return !owner || ::IsWindow(owner);
}

void drawing::make_on_the_pool() noexcept
{
    const unique_kernel_handle made{::CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    const auto make = [](PTP_CALLBACK_INSTANCE, void* event) noexcept {
        shared();
        ::SetEvent(event);
    };
    if (!made || !::TrySubmitThreadpoolCallback(make, made.get(), nullptr))
        return;
    const HANDLE event = made.get();
    while (::MsgWaitForMultipleObjects(1, &event, FALSE, INFINITE, QS_SENDMESSAGE | QS_PAINT) == WAIT_OBJECT_0 + 1) {
        MSG message;
        while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE | PM_QS_SENDMESSAGE | PM_QS_PAINT))
            ::DispatchMessageW(&message);
    }
}

void drawing::draw_once()
{
    const unique_memory_device memory(::CreateCompatibleDC(nullptr));
    const RECT pixel{.left = 0, .top = 0, .right = 1, .bottom = 1};
    static_cast<void>(paint_once(memory.get(), pixel, [](ID2D1RenderTarget& target) { target.Clear(nullptr); }));
}

void drawing::make_target()
{
    // One pixel is one unit: sizes come from the layout, which knows the DPI. Without transparency text may be
    // ClearType.
    constexpr float pixels_as_units = 96.0F;
    const D2D1_RENDER_TARGET_PROPERTIES properties{
        .type = D2D1_RENDER_TARGET_TYPE_DEFAULT,
        .pixelFormat = {.format = DXGI_FORMAT_B8G8R8A8_UNORM, .alphaMode = D2D1_ALPHA_MODE_IGNORE},
        .dpiX = pixels_as_units,
        .dpiY = pixels_as_units,
        .usage = D2D1_RENDER_TARGET_USAGE_NONE,
        .minLevel = D2D1_FEATURE_LEVEL_DEFAULT};
    throw_if_failed(direct2d_.get()->CreateDCRenderTarget(&properties, target_.put()), "CreateDCRenderTarget");
}

HRESULT drawing::paint_once(HDC device, const RECT& part, const std::function<void(ID2D1RenderTarget&)>& draw)
try {
    if (!target_)
        make_target();
    throw_if_failed(target_.get()->BindDC(device, &part), "BindDC");
    target_.get()->BeginDraw();
    draw(*target_.get());
    return target_.get()->EndDraw();
} catch (const system_error& error) {
    log_failure({.code = error.code(), .context = error.what()});
    return static_cast<HRESULT>(error.code());
}

bool drawing::paint(HDC device, const RECT& part, const std::function<void(ID2D1RenderTarget&)>& draw)
{
    constexpr int attempts = 2;
    for (int i = 0; i < attempts; ++i) {
        if (SUCCEEDED(paint_once(device, part, draw)))
            return true;
        target_.reset();
    }
    return false;
}

D2D1_COLOR_F as_direct2d(COLORREF colour) noexcept
{
    constexpr float most = 255.0F;
    return {.r = static_cast<float>(GetRValue(colour)) / most,
            .g = static_cast<float>(GetGValue(colour)) / most,
            .b = static_cast<float>(GetBValue(colour)) / most,
            .a = 1.0F};
}

} // namespace girder::ui
