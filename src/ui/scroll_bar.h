#pragma once

#include <windows.h>

namespace girder::ui {

/// One scroll bar of a window, which the system shows while the content is longer than the page. Pixels along the bar's
/// axis.
class scroll_bar {
public:
    /// \param bar  SB_HORZ or SB_VERT
    explicit scroll_bar(int bar) noexcept : bar_(bar) {}

    /// How much of the content's start is out of sight.
    int position() const noexcept { return position_; }
    bool needed() const noexcept { return content_ > page_; }

    /// To be called when either length has changed. It may send the window a WM_SIZE.
    void fit(HWND window, int content, int page) noexcept;

    /// Each of these \return by how much the content's start has moved out of sight; negative the other way.
    int scroll_to(HWND window, int position) noexcept;
    /// WM_HSCROLL, WM_VSCROLL: `request` is LOWORD of their wParam.
    int on_scroll(HWND window, WORD request, int line) noexcept;
    /// WM_MOUSEWHEEL. \param wheel  its wParam
    int on_wheel(HWND window, WPARAM wheel, int line) noexcept;
    /// Scrolls by as little as shows the stretch of the content.
    int reveal(HWND window, int begin, int end) noexcept;

private:
    int bar_;
    int content_ = 0;
    int page_ = 0;
    int position_ = 0;
};

} // namespace girder::ui
