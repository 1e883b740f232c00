#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace tidelink {

/// Whether a file begins as a language pack does and its directory of modules is sound: all there, and no module
/// outside the part of the file behind it.
bool is_language_pack(std::span<const std::byte> file) noexcept;

/// Finds the string pack of a module in a language pack.
///
/// \param file    all of the file, mapped; its signature is not looked at
/// \param module  "common", or a program's file name; a folder in front of a backslash does not count, nor does
///                the case of A to Z
/// \return the file from the pack on, within `file`; at a null address when the file has no such module, when its
///         directory is cut short, or when the directory points out of the file
std::span<const std::byte> findModule(std::span<const std::byte> file, std::u16string_view module) noexcept;

} // namespace tidelink
