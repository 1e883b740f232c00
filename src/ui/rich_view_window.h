#pragma once

#include "base/unique_com.h"
#include "ui/layout.h"
#include "ui/rich_accessible.h"
#include "ui/rich_layout.h"
#include "ui/rich_text.h"
#include "ui/scroll_bar.h"

#include <windows.h>

#include <memory>
#include <vector>

namespace girder::ui {

/// What is behind the window of a rich text view, and belongs to it. Used on the window's thread.
class rich_view final : public accessible_view {
public:
    explicit rich_view(HWND window) noexcept : window_(window) {}
    rich_view(const rich_view&) = delete;
    rich_view& operator=(const rich_view&) = delete;
    ~rich_view()
    {
        if (accessible_)
            accessible_.get()->disconnect();
    }

    LRESULT handle(UINT message, WPARAM wparam, LPARAM lparam);
    HWND window() const noexcept override { return window_; }
    const rich_text& content() const noexcept override { return text_; }
    std::vector<link_area> visible_links() override;
    int focused_link() const noexcept override { return ::GetFocus() == window_ ? focused_ : -1; }
    void focus_link(int link) override;
    void open_link(int link) override;

private:
    LRESULT handle_input(UINT message, WPARAM wparam, LPARAM lparam);
    LRESULT set_text(const char16_t* markup);
    void set_font(HFONT font, bool redraw);
    rich_layout& layout();
    void renew_layout();
    void use(std::unique_ptr<rich_layout> layout);
    void fit();
    extent measure(int width);

    void paint(HDC device);
    void draw_focus(HDC device);
    void invalidate() const noexcept { ::InvalidateRect(window_, nullptr, FALSE); }

    int link_at(LPARAM position);
    void hover(int link);
    void on_mouse_move(LPARAM position);
    void on_button_down(LPARAM position);
    void on_button_up(LPARAM position);
    bool show_cursor();

    LRESULT wanted_keys(const MSG* key) const noexcept;
    /// The link that Tab goes to from the focused one, -1 when it leaves the view.
    int next_link(bool backwards) const noexcept;
    bool on_key(WPARAM key);
    void on_focus();
    void scrolled(int distance);
    LRESULT give_object(WPARAM wparam, LPARAM lparam);

    int link_count() const noexcept { return static_cast<int>(text_.addresses.size()); }
    RECT inside() const noexcept;

    HWND window_;
    rich_text text_;
    HFONT font_ = static_cast<HFONT>(::GetStockObject(DEFAULT_GUI_FONT)); ///< the creator's, who may have none
    std::unique_ptr<rich_layout> layout_;                                 ///< null after a failure
    scroll_bar bar_{SB_VERT};
    int line_height_ = 1;
    int focused_ = -1;
    int hovered_ = -1;
    int pressed_ = -1;
    unique_com<rich_accessible> accessible_;
};

} // namespace girder::ui
