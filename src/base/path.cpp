#include "base/path.h"

namespace girder {
namespace {

constexpr std::u16string_view separators = u"\\/";

constexpr bool is_letter(char16_t unit) noexcept
{
    return (unit >= u'A' && unit <= u'Z') || (unit >= u'a' && unit <= u'z');
}

} // namespace

std::u16string_view folder_of(std::u16string_view path) noexcept
{
    path.remove_suffix(file_name_of(path).size());
    const std::size_t last = path.find_last_not_of(separators);
    return path.substr(0, last + 1);
}

std::u16string_view file_name_of(std::u16string_view path) noexcept
{
    return path.substr(path.find_last_of(separators) + 1);
}

std::u16string joined_path(std::u16string_view folder, std::u16string_view name)
{
    std::u16string path(folder);
    const bool ends_in_separator = !folder.empty() && separators.find(folder.back()) != std::u16string_view::npos;
    const bool is_drive = folder.size() == 2 && is_letter(folder[0]) && folder[1] == u':';
    if (!folder.empty() && !ends_in_separator && !is_drive)
        path += u'\\';
    return path.append(name);
}

} // namespace girder
