#include "base/handles.h"
#include "base/wide.h"
#include "base/win32_error.h"
#include "format/format.h"
#include "format/literals.h"
#include "update/secured_folder.h"

#include <windows.h>

#include <objbase.h>
#include <sddl.h>

#include <array>
#include <utility>

namespace tidelink {
namespace {

using namespace fmtkit::literals;
using girder::as_wide;

/// Owned by the administrators; full access for the system and them, inherited by the files; nothing from the parent.
constexpr char16_t descriptor_text[] = u"O:BAG:BAD:P(A;OICI;FA;;;SY)(A;OICI;FA;;;BA)";

std::u16string windows_folder()
{
    std::array<wchar_t, MAX_PATH + 1> buffer{};
    const UINT length = ::GetSystemWindowsDirectoryW(buffer.data(), static_cast<UINT>(buffer.size()));
    if (length == 0)
        girder::throw_last_error("GetSystemWindowsDirectoryW");
    return girder::as_utf16(buffer.data());
}

/// Nobody can guess it and be there first.
std::u16string unique_name()
{
    GUID id{};
    girder::throw_if_failed(::CoCreateGuid(&id), "CoCreateGuid");
    std::array<wchar_t, 39> text{};
    ::StringFromGUID2(id, text.data(), static_cast<int>(text.size()));
    return girder::as_utf16(text.data());
}

void for_each_file(const std::u16string& folder, void (*action)(const wchar_t* path))
{
    WIN32_FIND_DATAW entry{};
    const girder::unique_find search(::FindFirstFileW(as_wide(folder + u"\\*"), &entry));
    if (!search)
        return;
    do {
        if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
            action(as_wide(folder + u'\\' + girder::as_utf16(entry.cFileName)));
    } while (::FindNextFileW(search.get(), &entry));
}

void delete_at_restart(const wchar_t* path)
{
    ::MoveFileExW(path, nullptr, MOVEFILE_DELAY_UNTIL_REBOOT);
}

} // namespace

secured_folder::secured_folder()
    : path_(fmtkit::format(u"{0}\\Temp\\tidelink-{1}"_fmt, windows_folder(), unique_name()))
{
    girder::unique_local_memory descriptor;
    if (!::ConvertStringSecurityDescriptorToSecurityDescriptorW(as_wide(descriptor_text), SDDL_REVISION_1,
                                                                descriptor.put(), nullptr))
        girder::throw_last_error("ConvertStringSecurityDescriptorToSecurityDescriptorW");
    SECURITY_ATTRIBUTES attributes{
        .nLength = sizeof attributes, .lpSecurityDescriptor = descriptor.get(), .bInheritHandle = FALSE};
    if (!::CreateDirectoryW(as_wide(path_), &attributes))
        girder::throw_last_error("CreateDirectoryW");
}

secured_folder::secured_folder(secured_folder&& other) noexcept : path_(std::exchange(other.path_, {}))
{}

secured_folder::~secured_folder()
{
    if (path_.empty())
        return;
    for_each_file(path_, [](const wchar_t* path) { ::DeleteFileW(path); });
    ::RemoveDirectoryW(as_wide(path_));
}

void secured_folder::keep_until_restart()
{
    const std::u16string kept = std::exchange(path_, {});
    for_each_file(kept, delete_at_restart);
    delete_at_restart(as_wide(kept));
}

std::u16string secured_folder::path_of(std::u16string_view name) const
{
    return fmtkit::format(u"{0}\\{1}"_fmt, path_, name);
}

} // namespace tidelink
