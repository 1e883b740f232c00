#include "base/handles.h"
#include "base/wide.h"
#include "harness.h"
#include "settings/settings_store.h"

#include <windows.h>

#include <random>
#include <string>

// Applying settings: replacing the stored key and signalling the server, beside the system's calls for it alone.

namespace {

using namespace tidelink;

constexpr const wchar_t* key_path = L"Software\\Zelmark\\Tidelink Server 7.01";
constexpr const wchar_t* event_name = L"Global\\tidelink_{35B11BAB-5238-4E93-B06A-92332C5D20FA}_v1.01";

ServerSettings drawn;

void save()
{
    SaveSettings(drawn);
}

void save_plainly()
{
    ::RegDeleteTreeW(HKEY_LOCAL_MACHINE, key_path);
    HKEY key = nullptr;
    ::RegCreateKeyExW(HKEY_LOCAL_MACHINE, key_path, 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_READ | KEY_WRITE, nullptr,
                      &key, nullptr);
    const auto set = [key](const wchar_t* name, DWORD type, const void* data, std::size_t size) {
        ::RegSetValueExW(key, name, 0, type, static_cast<const BYTE*>(data), static_cast<DWORD>(size));
    };
    const DWORD discovery = 0;
    set(L"autoDiscovery", REG_DWORD, &discovery, sizeof discovery);
    set(L"sharedPorts", REG_BINARY, drawn.sharedPorts.data(), drawn.sharedPorts.size() * sizeof(std::uint32_t));
    set(L"language", REG_SZ, drawn.language.c_str(), (drawn.language.size() + 1) * sizeof(char16_t));
    ::RegCloseKey(key);
    HANDLE event = ::OpenEventW(EVENT_MODIFY_STATE, FALSE, event_name);
    ::SetEvent(event);
    ::CloseHandle(event);
}

void draw(bench::random_source& random)
{
    drawn = DefaultServerSettings();
    drawn.autoDiscovery = false;
    drawn.language = random() % 2 == 0 ? u"de" : u"pt-br";
    drawn.sharedPorts.resize(16);
    for (std::uint32_t& port : drawn.sharedPorts)
        port = static_cast<std::uint32_t>(random() % 256);
}

/// Saves with `save`, from a key with other contents.
template <typename Save>
bench::participant saver(const char* name, const girder::unique_kernel_handle& event, Save save)
{
    return {.name = name, .run = save, .is_right = [save, &event] {
                SaveSettings(DefaultServerSettings());
                ::ResetEvent(event.get());
                save();
                return LoadSettings() == drawn && ::WaitForSingleObject(event.get(), 0) == WAIT_OBJECT_0;
            }};
}

} // namespace

int main()
{
    const girder::unique_kernel_handle event{::CreateEventW(nullptr, FALSE, FALSE, event_name)};
    bench::report report("Apply");
    report.compare({.work = "replace the stored settings and signal the server",
                    .goal = 0,
                    .subject = saver("SaveSettings", event, save),
                    .peers = {saver("the system's calls alone", event, save_plainly)},
                    .draw = draw,
                    .rounds = 201});
    ::RegDeleteTreeW(HKEY_LOCAL_MACHINE, key_path);
    return report.exit_code();
}
