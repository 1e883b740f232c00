#include "base/debug_log.h"
#include "base/handles.h"
#include "base/path.h"
#include "base/wide.h"
#include "localisation/corrections.h"

namespace tidelink {

namespace {

void write(const girder::unique_file& file, std::string_view bytes) noexcept
{
    DWORD written = 0;
    ::WriteFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
}

} // namespace

void export_corrections(const StringTable& table, std::u16string_view module, std::u16string_view folder) noexcept
try {
    if (!table.corrections_mode() || table.corrections().empty())
        return;
    const std::string modules = corrections_module(module, table.corrections());
    const std::u16string path = girder::joined_path(folder, corrections_file_name(module, girder::system_now()));
    const girder::unique_file file(
        ::CreateFileW(girder::as_wide(path), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    if (!file)
        return;
    write(file, corrections_header);
    write(file, modules);
    write(file, corrections_trailer);
} catch (...) {
    girder::log_failure({.context = "corrections could not be exported"});
}

} // namespace tidelink
