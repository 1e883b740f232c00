#pragma once

#include "base/file_time.h"
#include "format/local_fields.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace fmtkit::details {

inline constexpr std::size_t longest_time_text = 40;

/// A point in time in local time by a strftime pattern, at most 40 characters of it. The program expands the
/// conversions itself, because the C runtime of Windows lacks most of those of C99 and writes a name for %z; those
/// whose text depends on the user's locale ask the system. E and O modifiers are ignored; an unknown conversion is
/// written as it stands.
class time_text {
public:
    /// \return false when the time cannot be converted
    bool write(girder::file_time time, std::u16string_view pattern);
    /// \param pattern  UTF-8
    bool write(girder::file_time time, std::string_view pattern);

    std::u16string_view view() const noexcept { return {units_.data(), size_}; }

private:
    /// The longest text that a conversion writes without looking at the limit.
    static constexpr std::size_t longest_conversion = 24;

    template <typename Char>
    bool write_pattern(girder::file_time time, std::basic_string_view<Char> pattern);
    template <typename Char>
    void expand(std::basic_string_view<Char> pattern);
    void put_text(std::u16string_view text);
    void put_text(std::string_view text);
    void convert(char16_t conversion);

    void put(char16_t unit) { units_[size_++] = unit; }
    void number(std::uint64_t value);
    void two_digits(int value);
    void three_numbers(int first, char16_t separator, int second, int third);
    void year(int value);
    void zone_offset();
    void system_text(char16_t conversion);

    local_fields local_;
    std::int64_t seconds_ = 0; ///< since 1970-01-01 UTC
    std::size_t size_ = 0;
    std::array<char16_t, longest_time_text + longest_conversion> units_;
};

} // namespace fmtkit::details
