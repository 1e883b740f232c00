#include "static_controls.h"

#include "base/unique_handle.h"
#include "base/win32_error.h"

#include <commctrl.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace soak {

namespace {

struct window_traits {
    using raw_type = HWND;
    static constexpr raw_type empty() noexcept { return nullptr; }
    static void close(raw_type window) noexcept { ::DestroyWindow(window); }
};
using unique_window = girder::unique_handle<window_traits>;

struct event_hook_traits {
    using raw_type = HWINEVENTHOOK;
    static constexpr raw_type empty() noexcept { return nullptr; }
    static void close(raw_type hook) noexcept { ::UnhookWinEvent(hook); }
};
using unique_event_hook = girder::unique_handle<event_hook_traits>;

std::size_t bytes_taken(HANDLE heap)
{
    std::size_t taken = 0;
    PROCESS_HEAP_ENTRY entry{};
    while (::HeapWalk(heap, &entry))
        if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0)
            taken += entry.cbData + entry.cbOverhead;
    return taken;
}

unique_window make_static_control(HWND parent, DWORD style)
{
    unique_window control(::CreateWindowExW(0, WC_STATICW, L"", style, 0, 0, 1, 1, parent, nullptr, nullptr, nullptr));
    if (!control)
        girder::throw_last_error("CreateWindowExW");
    return control;
}

void make_static_controls(int count)
{
    const unique_window parent = make_static_control(nullptr, WS_POPUP);
    const auto font = reinterpret_cast<WPARAM>(::GetStockObject(DEFAULT_GUI_FONT));
    for (int i = 0; i < count; ++i)
        ::SendMessageW(make_static_control(parent.get(), WS_CHILD).get(), WM_SETFONT, font, 0);
}

/// Those that show a picture keep nothing.
bool is_static_text(HWND window)
{
    const LONG_PTR kind = ::GetWindowLongPtrW(window, GWL_STYLE) & SS_TYPEMASK;
    if (kind == SS_ICON || kind == SS_BITMAP)
        return false;
    std::array<wchar_t, 16> name{};
    ::GetClassNameW(window, name.data(), static_cast<int>(name.size()));
    return ::CompareStringOrdinal(name.data(), -1, WC_STATICW, -1, TRUE) == CSTR_EQUAL;
}

/// The count of the counter whose thread this is: events come without a word of whose they are.
thread_local std::atomic<std::size_t>* count_of_this_thread = nullptr;

void CALLBACK on_created(HWINEVENTHOOK, DWORD, HWND window, LONG object, LONG, DWORD, DWORD)
{
    if (object == OBJID_WINDOW && is_static_text(window))
        ++*count_of_this_thread;
}

} // namespace

std::size_t bytes_kept_for_a_static_control()
{
    constexpr int controls = 1000;
    make_static_controls(controls);
    const std::size_t before = bytes_taken(::GetProcessHeap());
    make_static_controls(controls);
    return (std::max(bytes_taken(::GetProcessHeap()), before) - before) / controls;
}

static_control_counter::static_control_counter(DWORD process)
{
    std::promise<DWORD> begun;
    std::future<DWORD> thread_id = begun.get_future();
    thread_ = std::thread(&static_control_counter::listen, this, process, std::move(begun));
    try {
        thread_id_ = thread_id.get();
    } catch (...) {
        thread_.join();
        throw;
    }
}

static_control_counter::~static_control_counter()
{
    ::PostThreadMessageW(thread_id_, WM_QUIT, 0, 0);
    thread_.join();
}

void static_control_counter::listen(DWORD process, std::promise<DWORD> begun)
try {
    count_of_this_thread = &count_;
    const unique_event_hook hook(::SetWinEventHook(EVENT_OBJECT_CREATE, EVENT_OBJECT_CREATE, nullptr, on_created,
                                                   process, 0, WINEVENT_OUTOFCONTEXT));
    if (!hook)
        girder::throw_last_error("SetWinEventHook");
    begun.set_value(::GetCurrentThreadId());
    MSG message{};
    while (::GetMessageW(&message, nullptr, 0, 0) > 0) {
    }
} catch (...) {
    begun.set_exception(std::current_exception());
}

} // namespace soak
