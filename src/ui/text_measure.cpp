#include "ui/text_measure.h"

#include "base/wide.h"

namespace girder::ui {

text_measure::text_measure(HFONT font) : screen_(::GetDC(nullptr)), previous_font_(::SelectObject(screen_, font))
{}

text_measure::~text_measure()
{
    ::SelectObject(screen_, previous_font_);
    ::ReleaseDC(nullptr, screen_);
}

extent text_measure::line(std::u16string_view text) const
{
    SIZE size{};
    ::GetTextExtentPoint32W(screen_, as_wide(text.data()), static_cast<int>(text.size()), &size);
    return {.width = size.cx, .height = size.cy};
}

extent text_measure::label(std::u16string_view text) const
{
    constexpr int unlimited = 0x7FFF;
    return draw_extent(text, unlimited, 0);
}

extent text_measure::wrapped(std::u16string_view text, int width) const
{
    return draw_extent(text, width, DT_WORDBREAK | DT_EDITCONTROL | DT_NOPREFIX | DT_EXPANDTABS);
}

extent text_measure::draw_extent(std::u16string_view text, int width, UINT flags) const
{
    RECT bounds{.left = 0, .top = 0, .right = width, .bottom = 0};
    const std::u16string_view shown = text.empty() ? u" " : text;
    ::DrawTextW(screen_, as_wide(shown.data()), static_cast<int>(shown.size()), &bounds, DT_CALCRECT | flags);
    return {.width = bounds.right - bounds.left, .height = bounds.bottom - bounds.top};
}

} // namespace girder::ui
