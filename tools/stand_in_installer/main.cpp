// Stands in for the product's installer: waits for the process whose handle --wait-process names, and writes what it
// saw to the file that the environment variable TIDELINK_INSTALLER_RECORD names: "waited" when the process
// has ended with 0.

#include <windows.h>

#include <cstdlib>
#include <cwchar>
#include <filesystem>
#include <fstream>

namespace {

void record(const char* what)
{
    if (const wchar_t* const path = ::_wgetenv(L"TIDELINK_INSTALLER_RECORD"))
        std::ofstream(std::filesystem::path(path), std::ios::app | std::ios::binary) << what;
}

bool has_ended_well(HANDLE process)
{
    constexpr DWORD patience_ms = 20'000;
    DWORD code = 1;
    return ::WaitForSingleObject(process, patience_ms) == WAIT_OBJECT_0 && ::GetExitCodeProcess(process, &code) &&
           code == 0;
}

} // namespace

int wmain(int argc, wchar_t** argv)
{
    if (argc != 3 || std::wcscmp(argv[1], L"--wait-process") != 0)
        return EXIT_FAILURE;
    const auto process = reinterpret_cast<HANDLE>(std::wcstoull(argv[2], nullptr, 10));
    if (!has_ended_well(process))
        return EXIT_FAILURE;
    record("waited\n");
    return EXIT_SUCCESS;
}
