#pragma once

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace girder::nsm::details {

/// Where in a text reading failed.
struct text_position {
    std::size_t line = 1;   ///< 1 plus the number of line feeds before
    std::size_t column = 0; ///< bytes since the last line feed, so the first line counts from 0 and the others from 1

    bool operator==(const text_position&) const = default;
};

/// A stored value that is not what its reader wants. what() is one of the texts below, for a text that is malformed
/// followed by its position, e.g. "bad json format (1,5)".
class load_exception : public std::runtime_error {
public:
    explicit load_exception(const char* text) : std::runtime_error(text) {}
    /// \param detail  says more, where the text alone would puzzle
    load_exception(const char* text, text_position where, std::string_view detail = {});

    /// what() in UTF-16.
    std::u16string message() const;
    /// Of a malformed text.
    const std::optional<text_position>& position() const noexcept { return position_; }

private:
    std::optional<text_position> position_;
};

inline constexpr const char* object_expected = "Object expected";
inline constexpr const char* array_expected = "Array expected";
inline constexpr const char* string_expected = "String expected";
inline constexpr const char* number_expected = "Number expected";
inline constexpr const char* boolean_expected = "Boolean expected";
inline constexpr const char* date_expected = "Date expected";
/// The value has the right kind but cannot be read: a wrong size, or a text that does not parse.
inline constexpr const char* bad_format = "Bad format";
/// The whole text is malformed.
inline constexpr const char* bad_json_format = "bad json format";

} // namespace girder::nsm::details
