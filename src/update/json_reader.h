#pragma once

#include "serialisation/load_exception.h"
#include "serialisation/visitor.h"
#include "update/text_scan.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// JSON text (RFC 8259) as a store of named, typed values, for reading. Nothing is built: members and elements are found
// by scanning the text once, and a value is converted when it is asked for.
//
// More lenient than the RFC: commas count as white space before any token; `]`, `}` and the end of the text each end
// the innermost array or object; a number may begin or end with its decimal point and may be -inf or -nan; a text
// "0x1F" is a number. Stricter: at most 64 arrays and objects inside each other.

namespace girder::json {

/// The kinds that a value may be asked for as; a value's first characters say which, as a set of bits. 0: null, or
/// nothing there.
enum kind : std::uint32_t {
    boolean_kind = 0x001,
    number_kind = 0x002,
    string_kind = 0x004,
    array_or_blob_kind = 0x008,
    object_kind = 0x010,
    guid_kind = 0x020,
    present = 0x080,
    date_kind = 0x100,
};

inline constexpr unsigned deepest_nesting = 64;

/// One value. A malformed text is refused by every function that comes across the malformed place, with a
/// load_exception that has a position.
///
/// Text is UTF-8, ill-formed sequences become U+FFFD; the escapes \" \\ \/ \b \f \n \r \t and \u with four digits are
/// resolved, half of a surrogate pair becomes U+FFFD, other escapes are malformed. Dates are "%FT%T%z" or "%FT%T",
/// which is UTC. Bytes are base64, with or without padding.
class reader final : public nsm::value_reader {
public:
    /// The first value in `text`, which outlives the reader and what it visits.
    explicit reader(std::string_view text) noexcept;

    /// Set of `kind`.
    std::uint32_t kinds() const;

    /// The first member of that name; one of no kind when the object has none.
    /// \throws load_exception "Object expected"
    reader find(std::string_view name) const;

    /// \throws load_exception when something follows the value
    void expect_end() const;

    /// None: arrays are written as arrays, and members come as they were written.
    std::uint32_t capabilities() const noexcept override { return 0; }
    bool is_null() const override { return kinds() == 0; }
    /// Any text, which is read as base64.
    bool is_binary() const override;

    // A text that is no date is "Date expected", one that is no GUID or no base64 "String expected". A number with
    // fraction or exponent, or out of range, is "Number expected" where an integer is asked for.

    file_time as_date() const override;
    std::u16string as_string() const override;
    nsm::guid as_guid() const override;
    std::uint64_t as_unsigned() const override;
    std::int64_t as_signed() const override;
    double as_double() const override;
    float as_float() const override;
    bool as_boolean() const override;
    std::vector<std::byte> as_binary() const override;
    void visit_members(const member_visitor& visit) const override;
    void visit_named(std::span<const std::string_view> names, const named_visitor& visit) const override;
    void visit_elements(const element_visitor& visit) const override;
    /// 0: JSON has no place for it.
    std::uint32_t structure_version() const override { return 0; }

private:
    struct text_token;
    struct expected_names;

    reader(const char* text, const char* end, unsigned depth, const char* at) noexcept
        : text_(text), end_(end), at_(at), depth_(depth)
    {}

    [[noreturn]] void refuse(const char* at, std::string_view detail = {}) const;
    void require(std::uint32_t wanted, const char* otherwise) const;

    const char* next_token(const char* at) const noexcept;
    bool closes(const char* at) const noexcept;
    text_token scan_text(const char* at) const;
    /// \param stretch  the text's first, which does not end it
    text_token scan_escaped_text(const char* at, plain_stretch stretch) const;
    std::uint32_t kinds_of_text(const char* at) const noexcept;
    std::string_view number_at(const char* at) const;
    const char* after_word(const char* at, std::string_view word) const;
    text_token name_at(const char* at) const;
    const char* value_behind_name(const char* at) const;
    const char* after_scalar(const char* at) const;
    const char* after_value() const { return after_ ? after_ : after_unread_value(); }
    const char* after_unread_value() const;
    /// Calls read_into(value, at) for each member or element, which `value` is to be set to.
    template <typename ReadInto>
    void for_each_inside(const ReadInto& read_into) const;
    void check_depth(const char* at, unsigned depth) const;

    void read_at(const char* at) noexcept
    {
        at_ = at;
        after_ = nullptr;
    }
    std::u16string resolved(const text_token& token) const;
    std::u16string text_value() const;
    template <typename Value>
    Value as_number(std::optional<Value> (*parse)(std::string_view)) const;

    const char* text_;
    const char* end_;
    const char* at_;                      ///< first character of the value
    mutable const char* after_ = nullptr; ///< behind the value, once that is known
    unsigned depth_;                      ///< arrays and objects around the value
};

} // namespace girder::json
