#include "script.h"

#include "base/program.h"
#include "base/wide.h"

#include <array>
#include <cstdlib>
#include <string>

namespace demo_server {
namespace {

DWORD number(const std::u16string& file, const wchar_t* section, const wchar_t* name)
{
    std::array<wchar_t, 32> text{};
    ::GetPrivateProfileStringW(section, name, L"0", text.data(), static_cast<DWORD>(text.size()),
                               girder::as_wide(file));
    return std::wcstoul(text.data(), nullptr, 0);
}

} // namespace

script read_script()
{
    const std::u16string file = girder::program_folder() + u"tl_server.ini";
    return {.install_delay_ms = number(file, L"install", L"delay_ms"),
            .install_exit_code = static_cast<HRESULT>(number(file, L"install", L"exit_code")),
            .connect_ms = number(file, L"service", L"connect_ms"),
            .start_ms = number(file, L"service", L"start_ms"),
            .start_error = number(file, L"service", L"start_error"),
            .stop_ms = number(file, L"service", L"stop_ms")};
}

} // namespace demo_server
