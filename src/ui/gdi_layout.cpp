#include "base/handles.h"
#include "base/wide.h"
#include "base/win32_error.h"
#include "ui/rich_layout.h"
#include "ui/text_flow.h"

#include <algorithm>
#include <utility>

namespace girder::ui {
namespace {

/// The fonts of the styles, made from the window's own.
class style_fonts {
public:
    explicit style_fonts(HFONT base) { ::GetObjectW(base, sizeof base_, &base_); }

    HFONT get(const text_style& style)
    {
        const auto looks_alike = [&](const entry& each) {
            return each.style.bold == style.bold && each.style.percent == style.percent &&
                   (each.style.link < 0) == (style.link < 0);
        };
        const auto found = std::ranges::find_if(fonts_, looks_alike);
        if (found != fonts_.end())
            return found->font.get();
        LOGFONTW description = base_;
        constexpr int whole = 100;
        description.lfHeight = ::MulDiv(description.lfHeight, style.percent, whole);
        description.lfWeight = style.bold ? FW_BOLD : description.lfWeight;
        description.lfUnderline = style.link >= 0 ? TRUE : FALSE;
        unique_font font{::CreateFontIndirectW(&description)};
        if (!font)
            throw_last_error("CreateFontIndirectW");
        return fonts_.emplace_back(style, std::move(font)).font.get();
    }

private:
    struct entry {
        text_style style;
        unique_font font;
    };

    LOGFONTW base_{};
    std::vector<entry> fonts_;
};

class gdi_layout : public rich_layout {
public:
    gdi_layout(const rich_text& text, HFONT font) : text_(text), fonts_(font), device_(::CreateCompatibleDC(nullptr))
    {
        if (!device_)
            throw_last_error("CreateCompatibleDC");
    }

    extent arrange(int width) override
    {
        flow_ = flow_text(text_, width,
                          [this](std::u16string_view piece, const text_style& style) { return measure(piece, style); });
        return flow_.size;
    }

    std::vector<link_area> link_areas() override
    {
        std::vector<link_area> areas;
        for (const flow_piece& piece : flow_.pieces) {
            if (piece.style.link < 0)
                continue;
            const bool goes_on =
                !areas.empty() && areas.back().link == piece.style.link && areas.back().place.y == piece.place.y;
            if (goes_on)
                areas.back().place.width += piece.place.width;
            else
                areas.push_back({.link = piece.style.link, .place = piece.place});
        }
        return areas;
    }

    bool paint(HDC device, const RECT& part, int scrolled, int hovered) override
    {
        const rich_colours colours;
        const int saved = ::SaveDC(device);
        ::IntersectClipRect(device, part.left, part.top, part.right, part.bottom);
        ::SetBkColor(device, colours.background);
        ::ExtTextOutW(device, 0, 0, ETO_OPAQUE, &part, nullptr, 0, nullptr);
        ::SetBkMode(device, TRANSPARENT);
        for (const flow_piece& piece : flow_.pieces) {
            const int link = piece.style.link;
            ::SelectObject(device, fonts_.get(piece.style));
            ::SetTextColor(device, link < 0 ? colours.text : link == hovered ? colours.hovered_link : colours.link);
            ::TextOutW(device, part.left + piece.place.x, part.top + piece.place.y - scrolled,
                       as_wide(text_.text.data() + piece.begin), static_cast<int>(piece.length));
        }
        ::RestoreDC(device, saved);
        return true;
    }

private:
    piece_extent measure(std::u16string_view piece, const text_style& style)
    {
        const HGDIOBJ previous = ::SelectObject(device_.get(), fonts_.get(style));
        SIZE size{};
        TEXTMETRICW metrics{};
        ::GetTextExtentPoint32W(device_.get(), as_wide(piece.data()), static_cast<int>(piece.size()), &size);
        ::GetTextMetricsW(device_.get(), &metrics);
        ::SelectObject(device_.get(), previous);
        return {.width = size.cx, .ascent = metrics.tmAscent, .descent = metrics.tmDescent};
    }

    const rich_text& text_;
    style_fonts fonts_;
    unique_memory_device device_;
    text_flow flow_;
};

} // namespace

COLORREF rich_colours::link_colour() noexcept
{
    constexpr int least_difference = 96;
    const auto brightness = [](COLORREF colour) {
        return (2 * GetRValue(colour) + 5 * GetGValue(colour) + GetBValue(colour)) / 8;
    };
    const COLORREF own = ::GetSysColor(COLOR_HOTLIGHT);
    const int difference = brightness(own) - brightness(::GetSysColor(COLOR_BTNFACE));
    return difference < -least_difference || difference > least_difference ? own : ::GetSysColor(COLOR_BTNTEXT);
}

std::unique_ptr<rich_layout> make_gdi_layout(const rich_text& text, HFONT font)
{
    return std::make_unique<gdi_layout>(text, font);
}

} // namespace girder::ui
