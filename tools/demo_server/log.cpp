#include "log.h"

#include "base/file_time.h"
#include "base/handles.h"
#include "base/program.h"
#include "base/wide.h"
#include "base/win32_error.h"
#include "format/format.h"
#include "format/literals.h"

namespace demo_server {

using namespace fmtkit::literals;

void log_line(std::u16string_view text)
{
    const std::string line = fmtkit::format("{0t(%FT%T%z)} {1}\r\n"_fmt, girder::system_now(), text);
    const std::u16string path = girder::program_folder() + u"tl_server.log";
    const girder::unique_file file(::CreateFileW(girder::as_wide(path), FILE_APPEND_DATA,
                                                 FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                                 OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file)
        girder::throw_last_error("CreateFileW");
    DWORD written = 0;
    if (!::WriteFile(file.get(), line.data(), static_cast<DWORD>(line.size()), &written, nullptr))
        girder::throw_last_error("WriteFile");
}

} // namespace demo_server
