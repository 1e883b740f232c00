#include "base/program.h"
#include "base/wide.h"
#include "base/win32_error.h"

namespace girder {

std::u16string program_path()
{
    std::u16string path(MAX_PATH, u'\0');
    for (;;) {
        const DWORD length = ::GetModuleFileNameW(nullptr, as_wide(path.data()), static_cast<DWORD>(path.size()));
        if (length == 0)
            throw_last_error("GetModuleFileNameW");
        if (length < path.size()) {
            path.resize(length);
            return path;
        }
        path.resize(path.size() * 2);
    }
}

std::u16string program_folder()
{
    const std::u16string path = program_path();
    return path.substr(0, path.rfind(u'\\') + 1);
}

} // namespace girder
