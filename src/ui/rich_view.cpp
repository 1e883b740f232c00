#include "ui/rich_view.h"

#include "base/debug_log.h"
#include "base/wide.h"
#include "base/win32_error.h"
#include "ui/controls.h"
#include "ui/rich_view_window.h"
#include "ui/shell_link.h"

#include <algorithm>
#include <bit>
#include <memory>
#include <utility>

namespace girder::ui {
namespace {

/// wParam: the width; the result is the extent itself. No address comes with it: other programs can send it too.
constexpr UINT measure_message = WM_USER + 1;

/// BeginPaint, and EndPaint with the object.
class window_paint {
public:
    explicit window_paint(HWND window) noexcept : window_(window), device_(::BeginPaint(window, &painted_)) {}
    window_paint(const window_paint&) = delete;
    window_paint& operator=(const window_paint&) = delete;
    ~window_paint() { ::EndPaint(window_, &painted_); }

    HDC device() const noexcept { return device_; }

private:
    HWND window_;
    PAINTSTRUCT painted_{};
    HDC device_;
};

} // namespace

RECT rich_view::inside() const noexcept
{
    RECT inside{};
    ::GetClientRect(window_, &inside);
    return inside;
}

LRESULT rich_view::set_text(const char16_t* markup)
{
    text_ = parse_markup(markup ? markup : u"");
    focused_ = text_.addresses.empty() ? -1 : 0;
    hovered_ = pressed_ = -1;
    bar_.scroll_to(window_, 0);
    // Whoever asks for the text, a screen reader for example, gets it without the markup.
    const LRESULT result = ::DefWindowProcW(window_, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(as_wide(text_.text)));
    renew_layout();
    ::NotifyWinEvent(EVENT_OBJECT_NAMECHANGE, window_, OBJID_CLIENT, CHILDID_SELF);
    return result;
}

void rich_view::set_font(HFONT font, bool redraw)
{
    font_ = font ? font : static_cast<HFONT>(::GetStockObject(DEFAULT_GUI_FONT));
    renew_layout();
    if (redraw)
        invalidate();
}

void rich_view::renew_layout()
{
    layout_ = nullptr;
    std::unique_ptr<rich_layout> made = make_direct_layout(text_, font_);
    use(made ? std::move(made) : make_gdi_layout(text_, font_));
}

/// There is no layout that does not fit: after a failure the next message that needs one makes it.
void rich_view::use(std::unique_ptr<rich_layout> layout)
try {
    layout_ = std::move(layout);
    fit();
} catch (...) {
    layout_ = nullptr;
    throw;
}

rich_layout& rich_view::layout()
{
    if (!layout_)
        renew_layout();
    return *layout_;
}

/// Breaks the text to the window's width and sets what follows from its height. Whether a scroll bar is needed is
/// decided by the width without one: one that is there would be a reason for itself.
void rich_view::fit()
{
    RECT outer{};
    ::GetWindowRect(window_, &outer);
    const int room = outer.bottom - outer.top;
    int height = layout_->arrange(outer.right - outer.left).height;
    if (height > room)
        height =
            std::max(room + 1, layout_->arrange(outer.right - outer.left - ::GetSystemMetrics(SM_CXVSCROLL)).height);
    line_height_ = std::max(1, height / static_cast<int>(1 + std::ranges::count(text_.text, u'\n')));
    bar_.fit(window_, height, room);
    layout_->arrange(inside().right);
    const auto style = static_cast<DWORD>(::GetWindowLongPtrW(window_, GWL_STYLE));
    const bool reachable = link_count() > 0 || bar_.needed();
    ::SetWindowLongPtrW(window_, GWL_STYLE,
                        static_cast<LONG_PTR>(reachable ? style | WS_TABSTOP : style & ~DWORD{WS_TABSTOP}));
    invalidate();
}

extent rich_view::measure(int width)
{
    const extent needed = layout().arrange(width);
    layout().arrange(inside().right);
    return needed;
}

void rich_view::paint(HDC device)
{
    const RECT room = inside();
    if (!layout().paint(device, room, bar_.position(), hovered_)) {
        use(make_gdi_layout(text_, font_));
        layout_->paint(device, room, bar_.position(), hovered_);
    }
    if (focused_link() >= 0)
        draw_focus(device);
    else if (::GetFocus() == window_)
        ::DrawFocusRect(device, &room);
}

void rich_view::draw_focus(HDC device)
{
    ::SetTextColor(device, ::GetSysColor(COLOR_BTNTEXT));
    ::SetBkColor(device, ::GetSysColor(COLOR_BTNFACE));
    for (const link_area& each : visible_links()) {
        const RECT around = as_rectangle(each.place);
        if (each.link == focused_)
            ::DrawFocusRect(device, &around);
    }
}

std::vector<link_area> rich_view::visible_links()
{
    std::vector<link_area> areas = layout().link_areas();
    for (link_area& each : areas)
        each.place.y -= bar_.position();
    return areas;
}

int rich_view::link_at(LPARAM position)
{
    const POINT point{.x = static_cast<short>(LOWORD(position)), .y = static_cast<short>(HIWORD(position))};
    for (const link_area& each : visible_links()) {
        const RECT place = as_rectangle(each.place);
        if (::PtInRect(&place, point))
            return each.link;
    }
    return -1;
}

void rich_view::hover(int link)
{
    if (std::exchange(hovered_, link) != link)
        invalidate();
}

void rich_view::on_mouse_move(LPARAM position)
{
    TRACKMOUSEEVENT leaving{.cbSize = sizeof leaving, .dwFlags = TME_LEAVE, .hwndTrack = window_, .dwHoverTime = 0};
    ::TrackMouseEvent(&leaving);
    hover(link_at(position));
}

void rich_view::on_button_down(LPARAM position)
{
    pressed_ = link_at(position);
    if (pressed_ >= 0)
        focus_link(pressed_);
}

void rich_view::on_button_up(LPARAM position)
{
    const int pressed = std::exchange(pressed_, -1);
    if (pressed >= 0 && link_at(position) == pressed)
        open_link(pressed);
}

bool rich_view::show_cursor()
{
    const DWORD position = ::GetMessagePos();
    POINT point{.x = static_cast<short>(LOWORD(position)), .y = static_cast<short>(HIWORD(position))};
    ::ScreenToClient(window_, &point);
    if (link_at(MAKELPARAM(point.x, point.y)) < 0)
        return false;
    ::SetCursor(::LoadCursorW(nullptr, IDC_HAND));
    return true;
}

void rich_view::focus_link(int link)
{
    focused_ = link;
    if (::GetFocus() == window_)
        on_focus();
    else
        ::SetFocus(window_);
}

void rich_view::on_focus()
{
    for (const link_area& each : layout().link_areas())
        if (each.link == focused_)
            bar_.reveal(window_, each.place.y, each.place.y + each.place.height);
    invalidate();
    ::NotifyWinEvent(EVENT_OBJECT_FOCUS, window_, OBJID_CLIENT, focused_ + 1);
}

void rich_view::open_link(int link)
{
    const std::u16string address = text_.addresses.at(static_cast<std::size_t>(link));
    const rich_view_click click{.header = {.hwndFrom = window_,
                                           .idFrom = static_cast<UINT_PTR>(::GetDlgCtrlID(window_)),
                                           .code = static_cast<UINT>(NM_CLICK)},
                                .address = address};
    const HWND parent = ::GetParent(window_);
    if (::SendMessageW(parent, WM_NOTIFY, click.header.idFrom, reinterpret_cast<LPARAM>(&click)) == 0)
        open_by_shell(parent, address);
}

int rich_view::next_link(bool backwards) const noexcept
{
    const int next = focused_ + (backwards ? -1 : 1);
    return next >= 0 && next < link_count() ? next : -1;
}

LRESULT rich_view::wanted_keys(const MSG* key) const noexcept
{
    const LRESULT arrows = bar_.needed() ? DLGC_WANTARROWS : 0;
    if (!key || key->message != WM_KEYDOWN)
        return arrows;
    const bool moves_on = key->wParam == VK_TAB && next_link(::GetKeyState(VK_SHIFT) < 0) >= 0;
    const bool opens = key->wParam == VK_RETURN && focused_ >= 0;
    return moves_on || opens ? arrows | DLGC_WANTMESSAGE : arrows;
}

bool rich_view::on_key(WPARAM key)
{
    switch (key) {
    case VK_TAB:
        if (const int next = next_link(::GetKeyState(VK_SHIFT) < 0); next >= 0)
            focus_link(next);
        return true;
    case VK_RETURN:
        if (focused_ >= 0)
            open_link(focused_);
        return true;
    case VK_UP:
        scrolled(bar_.on_scroll(window_, SB_LINEUP, line_height_));
        return true;
    case VK_DOWN:
        scrolled(bar_.on_scroll(window_, SB_LINEDOWN, line_height_));
        return true;
    case VK_PRIOR:
        scrolled(bar_.on_scroll(window_, SB_PAGEUP, line_height_));
        return true;
    case VK_NEXT:
        scrolled(bar_.on_scroll(window_, SB_PAGEDOWN, line_height_));
        return true;
    case VK_HOME:
        scrolled(bar_.on_scroll(window_, SB_TOP, line_height_));
        return true;
    case VK_END:
        scrolled(bar_.on_scroll(window_, SB_BOTTOM, line_height_));
        return true;
    default:
        return false;
    }
}

void rich_view::scrolled(int distance)
{
    if (distance != 0)
        invalidate();
}

LRESULT rich_view::give_object(WPARAM wparam, LPARAM lparam)
{
    if (static_cast<LONG>(lparam) != OBJID_CLIENT)
        return ::DefWindowProcW(window_, WM_GETOBJECT, wparam, lparam);
    if (!accessible_)
        accessible_ = make_accessible(*this);
    return hand_out_accessible(*accessible_.get(), wparam);
}

LRESULT rich_view::handle(UINT message, WPARAM wparam, LPARAM lparam)
{
    switch (message) {
    case WM_CREATE:
        set_text(as_utf16(reinterpret_cast<const CREATESTRUCTW*>(lparam)->lpszName));
        return 0;
    case WM_SETTEXT:
        return set_text(as_utf16(reinterpret_cast<const wchar_t*>(lparam)));
    case WM_SETFONT:
        set_font(reinterpret_cast<HFONT>(wparam), LOWORD(lparam) != 0);
        return 0;
    case WM_GETFONT:
        return reinterpret_cast<LRESULT>(font_);
    case measure_message:
        return std::bit_cast<LRESULT>(measure(static_cast<int>(wparam)));
    case WM_SIZE:
        if (layout_)
            fit();
        return 0;
    case WM_SYSCOLORCHANGE:
    case WM_THEMECHANGED:
        invalidate();
        return 0;
    case WM_ERASEBKGND:
        return 1;
    case WM_PAINT:
        paint(window_paint(window_).device());
        return 0;
    case WM_PRINTCLIENT:
        paint(reinterpret_cast<HDC>(wparam));
        return 0;
    case WM_GETOBJECT:
        return give_object(wparam, lparam);
    default:
        return handle_input(message, wparam, lparam);
    }
}

/// Mouse, keyboard and scroll bar; what is none of them goes to the system.
LRESULT rich_view::handle_input(UINT message, WPARAM wparam, LPARAM lparam)
{
    switch (message) {
    case WM_MOUSEMOVE:
        on_mouse_move(lparam);
        return 0;
    case WM_MOUSELEAVE:
        hover(-1);
        return 0;
    case WM_LBUTTONDOWN:
        on_button_down(lparam);
        return 0;
    case WM_LBUTTONUP:
        on_button_up(lparam);
        return 0;
    case WM_SETCURSOR:
        if (LOWORD(lparam) == HTCLIENT && show_cursor())
            return TRUE;
        break;
    case WM_GETDLGCODE:
        return wanted_keys(reinterpret_cast<const MSG*>(lparam));
    case WM_KEYDOWN:
        if (on_key(wparam))
            return 0;
        break;
    case WM_SETFOCUS:
        // Tab comes in at the near end.
        if (pressed_ < 0 && link_count() > 0 && ::GetKeyState(VK_TAB) < 0)
            focused_ = ::GetKeyState(VK_SHIFT) < 0 ? link_count() - 1 : 0;
        on_focus();
        return 0;
    case WM_KILLFOCUS:
        invalidate();
        return 0;
    case WM_VSCROLL:
        scrolled(bar_.on_scroll(window_, LOWORD(wparam), line_height_));
        return 0;
    case WM_MOUSEWHEEL:
        if (!bar_.needed())
            break;
        scrolled(bar_.on_wheel(window_, wparam, line_height_));
        return 0;
    default:
        break;
    }
    return ::DefWindowProcW(window_, message, wparam, lparam);
}

namespace {

/// Nothing is thrown into the system. Whoever uses the view hears that something did not work.
LRESULT guarded(rich_view& view, UINT message, WPARAM wparam, LPARAM lparam) noexcept
try {
    return view.handle(message, wparam, lparam);
} catch (const std::exception& error) {
    const auto* const failed_call = dynamic_cast<const system_error*>(&error);
    log_failure({.code = failed_call ? failed_call->code() : 0, .context = error.what()});
    ::MessageBeep(MB_ICONERROR);
    return 0;
}

/// The view object belongs to its window.
rich_view* make_view(HWND window)
{
    auto made = std::make_unique<rich_view>(window);
    ::SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(made.get()));
    return made.release();
}

LRESULT CALLBACK view_procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) noexcept
{
    auto* view = reinterpret_cast<rich_view*>(::GetWindowLongPtrW(window, GWLP_USERDATA));
    if (!view && message == WM_NCCREATE)
        view = make_view(window);
    // NOLINTBEGIN(clang-analyzer-cplusplus.NewDeleteLeaks): the window keeps the pointer
    if (message == WM_NCDESTROY) {
        const std::unique_ptr<rich_view> last(view);
        ::SetWindowLongPtrW(window, GWLP_USERDATA, 0);
    } else if (view) {
        return guarded(*view, message, wparam, lparam);
    }
    // NOLINTEND(clang-analyzer-cplusplus.NewDeleteLeaks)
    return ::DefWindowProcW(window, message, wparam, lparam);
}

} // namespace

void register_rich_view()
{
    WNDCLASSEXW description{};
    description.cbSize = sizeof description;
    description.style = CS_HREDRAW | CS_VREDRAW;
    description.lpfnWndProc = view_procedure;
    description.hInstance = ::GetModuleHandleW(nullptr);
    description.hCursor = ::LoadCursorW(nullptr, IDC_ARROW);
    description.lpszClassName = rich_view_class;
    if (!::RegisterClassExW(&description) && ::GetLastError() != ERROR_CLASS_ALREADY_EXISTS)
        throw_last_error("RegisterClassExW");
}

void replace_by_rich_view(HWND dialog, int id)
{
    register_rich_view();
    const HWND replaced = ::GetDlgItem(dialog, id);
    RECT place{};
    ::GetWindowRect(replaced, &place);
    ::MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&place), 2);
    const HWND view =
        ::CreateWindowExW(0, rich_view_class, as_wide(window_text(replaced)), WS_CHILD | WS_VISIBLE, place.left,
                          place.top, place.right - place.left, place.bottom - place.top, dialog,
                          reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), ::GetModuleHandleW(nullptr), nullptr);
    if (!view)
        throw_last_error("CreateWindowExW");
    ::SendMessageW(view, WM_SETFONT, static_cast<WPARAM>(::SendMessageW(dialog, WM_GETFONT, 0, 0)), FALSE);
    ::SetWindowPos(view, replaced, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    ::DestroyWindow(replaced);
}

extent rich_view_extent(HWND view, int width) noexcept
{
    return std::bit_cast<extent>(::SendMessageW(view, measure_message, static_cast<WPARAM>(width), 0));
}

} // namespace girder::ui
