#include "ui_driver/window.h"

#include "base/utf.h"
#include "base/wide.h"
#include "ui_driver/polling.h"

namespace ui_driver {

LRESULT send(HWND window, UINT message, WPARAM wparam, LPARAM lparam)
{
    DWORD_PTR result = 0;
    if (!::SendMessageTimeoutW(window, message, wparam, lparam, SMTO_NORMAL, static_cast<UINT>(patience.count()),
                               &result))
        throw timed_out("no answer to message " + std::to_string(message));
    return static_cast<LRESULT>(result);
}

std::u16string control::text() const
{
    const auto length = static_cast<std::size_t>(send(window_, WM_GETTEXTLENGTH));
    std::u16string text(length + 1, u'\0');
    text.resize(
        static_cast<std::size_t>(send(window_, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()))));
    return text;
}

bool control::checked() const
{
    return send(window_, BM_GETCHECK) == BST_CHECKED;
}

void control::click() const
{
    send(window_, BM_CLICK);
}

void control::post_click() const
{
    ::PostMessageW(window_, BM_CLICK, 0, 0);
}

control dialog::item(int id) const
{
    const HWND child = ::GetDlgItem(window_, id);
    if (!child)
        throw std::out_of_range("no control " + std::to_string(id));
    return control(child);
}

int dialog::focused() const noexcept
{
    GUITHREADINFO info{};
    info.cbSize = sizeof info;
    if (!::GetGUIThreadInfo(::GetWindowThreadProcessId(window_, nullptr), &info) || !info.hwndFocus)
        return 0;
    return ::GetDlgCtrlID(info.hwndFocus);
}

void dialog::post_close() const noexcept
{
    ::PostMessageW(window_, WM_CLOSE, 0, 0);
}

void dialog::wait_until_closed() const
{
    if (!eventually([this] { return !exists(); }))
        throw timed_out("a window stays open");
}

std::vector<dialog> find_dialogs(std::u16string_view title, DWORD process)
{
    const std::u16string terminated(title);
    std::vector<dialog> found;
    HWND window = nullptr;
    while ((window = ::FindWindowExW(nullptr, window, nullptr, girder::as_wide(terminated))) != nullptr) {
        DWORD owner = 0;
        ::GetWindowThreadProcessId(window, &owner);
        if (::IsWindowVisible(window) && (process == 0 || process == owner))
            found.emplace_back(window);
    }
    return found;
}

dialog wait_for_dialog(std::u16string_view title, DWORD process)
{
    HWND found = nullptr;
    const auto usable = [&] {
        for (const dialog& candidate : find_dialogs(title, process))
            if (::IsWindowEnabled(candidate.handle()))
                found = candidate.handle();
        return found != nullptr;
    };
    if (!eventually(usable))
        throw timed_out("no window titled " + girder::to_utf8(title));
    return dialog(found);
}

} // namespace ui_driver
