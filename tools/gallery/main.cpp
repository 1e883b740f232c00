// Shows every dialog of the program in one language and saves a picture of each as a bitmap file:
//
//     gallery.exe LOCALE FOLDER
//
// The display's DPI and colours are those of the Wine prefix.

#include "app/about_dialog.h"
#include "app/com_apartment.h"
#include "app/config_dialog.h"
#include "app/correction_box.h"
#include "app/message_texts.h"
#include "app/messages.h"
#include "app/restart_request.h"
#include "app/wait_dialog.h"
#include "async/ui_thread.h"
#include "base/handles.h"
#include "base/system_error.h"
#include "base/wide.h"
#include "base/win32_error.h"
#include "format/compile.h"
#include "format/format.h"
#include "localisation/string_tables.h"
#include "resource.h"
#include "settings/settings_store.h"
#include "string_ids.h"
#include "ui/message_box.h"

#include <windows.h>

#include <commctrl.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iostream>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>

namespace {

using namespace tidelink;

/// What a window shows, with its frame, into a file. \return false while it shows nothing
bool save_picture(HWND window, const std::wstring& path)
{
    RECT place{};
    ::GetWindowRect(window, &place);
    const LONG width = place.right - place.left;
    const LONG height = place.bottom - place.top;
    BITMAPINFO description{};
    description.bmiHeader.biSize = sizeof description.bmiHeader;
    description.bmiHeader.biWidth = width;
    description.bmiHeader.biHeight = height;
    description.bmiHeader.biPlanes = 1;
    description.bmiHeader.biBitCount = 32;
    void* bits = nullptr;
    const girder::unique_handle<girder::handle_traits::gdi<HBITMAP>> bitmap(
        ::CreateDIBSection(nullptr, &description, DIB_RGB_COLORS, &bits, nullptr, 0));
    if (!bitmap)
        girder::throw_last_error("CreateDIBSection");
    const HDC shown = ::GetWindowDC(window);
    const HDC device = ::CreateCompatibleDC(shown);
    const HGDIOBJ before = ::SelectObject(device, bitmap.get());
    ::BitBlt(device, 0, 0, width, height, shown, 0, 0, SRCCOPY);
    ::GdiFlush();
    const DWORD pixels = static_cast<DWORD>(width * height) * sizeof(std::uint32_t);
    BITMAPFILEHEADER header{};
    header.bfType = 0x4D42;
    header.bfOffBits = sizeof header + sizeof description.bmiHeader;
    header.bfSize = header.bfOffBits + pixels;
    std::ofstream file(path.c_str(), std::ios::binary);
    file.write(reinterpret_cast<const char*>(&header), sizeof header);
    file.write(reinterpret_cast<const char*>(&description.bmiHeader), sizeof description.bmiHeader);
    file.write(static_cast<const char*>(bits), pixels);
    ::SelectObject(device, before);
    ::DeleteDC(device);
    ::ReleaseDC(window, shown);
    if (!file)
        throw std::runtime_error("a picture cannot be written");
    const std::span shown_pixels(static_cast<const std::uint32_t*>(bits), pixels / sizeof(std::uint32_t));
    return std::ranges::any_of(shown_pixels, [&](std::uint32_t pixel) { return pixel != shown_pixels.front(); });
}

/// A picture of the foremost dialog once it has painted itself; then `finish` puts an end to it.
class photographer {
public:
    static void expect(std::wstring path, std::function<void(HWND)> finish)
    {
        pending() = {std::move(path), std::move(finish)};
        ::SetTimer(nullptr, 0, settling_ms, take);
    }

private:
    static constexpr UINT settling_ms = 300;

    static std::pair<std::wstring, std::function<void(HWND)>>& pending()
    {
        static std::pair<std::wstring, std::function<void(HWND)>> next;
        return next;
    }

    static void CALLBACK take(HWND, UINT, UINT_PTR timer, DWORD)
    {
        const HWND dialog = ::GetActiveWindow();
        ::SetForegroundWindow(dialog);
        ::RedrawWindow(dialog, nullptr, nullptr, RDW_INVALIDATE | RDW_FRAME | RDW_UPDATENOW | RDW_ALLCHILDREN);
        if (!save_picture(dialog, pending().first))
            return;
        ::KillTimer(nullptr, timer);
        pending().second(dialog);
    }
};

void press(HWND dialog, int button)
{
    ::PostMessageW(dialog, WM_COMMAND, static_cast<WPARAM>(button), 0);
}

void show_all(ConfigDialog& main, const std::wstring& prefix)
{
    const HWND owner = main.window();
    ::SendMessageW(main.control(IDC_SHARE_SELECTED), BM_CLICK, 0, 0);
    ::SetFocus(main.control(IDC_PORTS));
    bool done = false;
    photographer::expect(prefix + L"-1-main.bmp", [&](HWND) { done = true; });
    for (MSG message; !done && ::GetMessageW(&message, nullptr, 0, 0) > 0;)
        ::DispatchMessageW(&message);

    photographer::expect(prefix + L"-2-about.bmp", [](HWND dialog) { press(dialog, IDCANCEL); });
    AboutDialog().show(owner);

    photographer::expect(prefix + L"-3-message.bmp", [](HWND dialog) { press(dialog, IDNO); });
    const girder::ui::message_button answers[] = {{IDYES, text(string_id::yes)}, {IDNO, text(string_id::no)}};
    girder::ui::show_message_box(owner,
                                 {.title = text(string_id::product_name),
                                  .text = fmtkit::format(fmtkit::compile(text(string_id::replace_unread_settings)),
                                                         std::u16string_view(u"sharedPorts, language")),
                                  .icon = girder::ui::message_icon::warning,
                                  .buttons = answers,
                                  .check_box_text = text(string_id::do_not_display_again)});
    photographer::expect(prefix + L"-4-error.bmp", [](HWND dialog) { press(dialog, IDOK); });
    show_operation_error(owner, system_error_text(ERROR_ACCESS_DENIED));

    wait_dialog waiting({}, [] { return true; });
    photographer::expect(prefix + L"-5-wait.bmp", [&](HWND) { waiting.close(); });
    waiting.show(owner);

    photographer::expect(prefix + L"-6-correction.bmp", [](HWND dialog) { press(dialog, IDCANCEL); });
    ask_for_correction(owner, u"Share the following ports:", text(string_id::share_following_ports));
}

} // namespace

int wmain(int argc, wchar_t** argv)
try {
    if (argc != 3)
        throw std::runtime_error("usage: gallery.exe LOCALE FOLDER");
    constexpr INITCOMMONCONTROLSEX classes{.dwSize = sizeof(INITCOMMONCONTROLSEX),
                                           .dwICC = ICC_LISTVIEW_CLASSES | ICC_PROGRESS_CLASS | ICC_BAR_CLASSES |
                                                    ICC_STANDARD_CLASSES};
    ::InitCommonControlsEx(&classes);
    const com_apartment com;
    ServerSettings settings = DefaultServerSettings();
    settings.language = girder::as_utf16(argv[1]);
    SaveSettings(settings);
    girder::ui_thread thread(messages().ui_return);
    restart_request restart;
    ConfigDialog dialog(thread, restart);
    dialog.create();
    dialog.show(SW_SHOW);
    show_all(dialog, std::wstring(argv[2]) + L"\\" + argv[1]);
    return EXIT_SUCCESS;
} catch (const std::exception& error) {
    std::cerr << "gallery: " << error.what() << '\n';
    return EXIT_FAILURE;
}
