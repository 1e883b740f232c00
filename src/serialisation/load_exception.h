#pragma once

#include <stdexcept>

namespace girder::nsm::details {

/// A stored value that is not what its reader wants. what() is one of the texts below.
class load_exception : public std::runtime_error {
public:
    explicit load_exception(const char* text) : std::runtime_error(text) {}
};

inline constexpr const char* object_expected = "Object expected";
inline constexpr const char* array_expected = "Array expected";
inline constexpr const char* string_expected = "String expected";
inline constexpr const char* number_expected = "Number expected";
inline constexpr const char* boolean_expected = "Boolean expected";
inline constexpr const char* date_expected = "Date expected";
/// The value has the right kind but cannot be read: a wrong size, or a text that does not parse.
inline constexpr const char* bad_format = "Bad format";

} // namespace girder::nsm::details
