#include "ui/scroll_bar.h"

#include <algorithm>
#include <utility>

namespace girder::ui {

void scroll_bar::fit(HWND window, int content, int page) noexcept
{
    const bool was_needed = needed();
    content_ = content;
    page_ = page;
    position_ = std::clamp(position_, 0, std::max(content - page, 0));
    // The system needs to hear only of a bar that is there or goes.
    if (!was_needed && !needed())
        return;
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_RANGE | SIF_PAGE | SIF_POS;
    info.nMax = std::max(content - 1, 0);
    info.nPage = static_cast<UINT>(std::max(page, 0));
    info.nPos = position_;
    ::SetScrollInfo(window, bar_, &info, TRUE);
}

int scroll_bar::scroll_to(HWND window, int position) noexcept
{
    const int before = std::exchange(position_, std::clamp(position, 0, std::max(content_ - page_, 0)));
    if (position_ != before)
        ::SetScrollPos(window, bar_, position_, TRUE);
    return position_ - before;
}

int scroll_bar::on_scroll(HWND window, WORD request, int line) noexcept
{
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_TRACKPOS;
    switch (request) {
    case SB_LINEUP:
        return scroll_to(window, position_ - line);
    case SB_LINEDOWN:
        return scroll_to(window, position_ + line);
    case SB_PAGEUP:
        return scroll_to(window, position_ - page_);
    case SB_PAGEDOWN:
        return scroll_to(window, position_ + page_);
    case SB_TOP:
        return scroll_to(window, 0);
    case SB_BOTTOM:
        return scroll_to(window, content_);
    case SB_THUMBTRACK:
    case SB_THUMBPOSITION:
        // The message itself has room for 16 bits only.
        return ::GetScrollInfo(window, bar_, &info) ? scroll_to(window, info.nTrackPos) : 0;
    default:
        return 0;
    }
}

int scroll_bar::on_wheel(HWND window, WPARAM wheel, int line) noexcept
{
    UINT lines = 3;
    ::SystemParametersInfoW(SPI_GETWHEELSCROLLLINES, 0, &lines, 0);
    const int notch = lines == WHEEL_PAGESCROLL ? page_ : static_cast<int>(lines) * line;
    return scroll_to(window, position_ - ::MulDiv(GET_WHEEL_DELTA_WPARAM(wheel), notch, WHEEL_DELTA));
}

int scroll_bar::reveal(HWND window, int begin, int end) noexcept
{
    if (end > position_ + page_)
        return scroll_to(window, std::min(begin, end - page_));
    return begin < position_ ? scroll_to(window, begin) : 0;
}

} // namespace girder::ui
