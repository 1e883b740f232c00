#pragma once

#include <string>
#include <string_view>

// Paths of Windows as texts: separators are `\` and `/`.

namespace girder {

/// A path without its last component and the separators before that.
std::u16string_view folder_of(std::u16string_view path) noexcept;

/// The last component of a path: everything behind its last separator.
std::u16string_view file_name_of(std::u16string_view path) noexcept;

/// A name in a folder. No separator is put between them when the folder is empty, ends with one, or is a bare drive
/// such as "C:".
std::u16string joined_path(std::u16string_view folder, std::u16string_view name);

} // namespace girder
