#include "update/json_reader.h"

#include "base/utf.h"
#include "serialisation/date_text.h"
#include "serialisation/guid_text.h"
#include "update/base64.h"
#include "update/json_escapes.h"
#include "update/json_number.h"
#include "update/text_scan.h"

#include <algorithm>
#include <optional>
#include <type_traits>
#include <utility>

namespace girder::json {
namespace {

using nsm::details::load_exception;

constexpr std::uint32_t boolean_kinds = present | boolean_kind;
constexpr std::uint32_t number_kinds = present | number_kind;
constexpr std::uint32_t text_kinds = present | string_kind | array_or_blob_kind | date_kind;
constexpr std::uint32_t braced_text_kinds = text_kinds | guid_kind;
constexpr std::uint32_t array_kinds = present | array_or_blob_kind;
constexpr std::uint32_t object_kinds = present | object_kind;

constexpr bool is_space(char unit)
{
    return unit <= ' ' && (unit == ' ' || unit == '\t' || unit == '\n' || unit == '\r');
}

constexpr bool is_space_or_comma(char unit)
{
    return unit == ',' || is_space(unit);
}

// Brackets and braces differ in one bit.
constexpr bool is_opening(char unit)
{
    return (unit | 0x20) == '{';
}

constexpr bool is_closing(char unit)
{
    return (unit | 0x20) == '}';
}

constexpr bool is_digit(char unit)
{
    return unit >= '0' && unit <= '9';
}

constexpr bool begins_number(char unit)
{
    return is_digit(unit) || unit == '-' || unit == '.';
}

constexpr bool is_in_number(char unit)
{
    return ((unit | 0x20) >= 'a' && (unit | 0x20) <= 'z') || begins_number(unit) || unit == '+';
}

} // namespace

/// A text between its quotes, as it stands.
struct reader::text_token {
    std::string_view raw;
    bool escaped = false;
    bool ascii = true;

    const char* after() const noexcept { return raw.data() + raw.size() + 1; }
};

/// Finds names by looking for them where one begins, which is quicker than to look for its end.
struct reader::expected_names {
    std::span<const std::string_view> names;
    std::size_t next = 0; ///< index of the most likely one

    bool next_is_at(const char* at, const char* end) const noexcept
    {
        return next < names.size() && is_at(at, end, names[next]);
    }

    /// \return names.size() for another name, or one that has escapes
    std::size_t index_of(const char* at, const char* end) const noexcept
    {
        const auto found = std::ranges::find_if(names, [&](std::string_view name) { return is_at(at, end, name); });
        return static_cast<std::size_t>(found - names.begin());
    }

    /// With its quotes.
    static std::size_t written_size(std::string_view name) noexcept { return name.size() + 2; }

private:
    static bool is_at(const char* at, const char* end, std::string_view name) noexcept
    {
        const std::string_view rest(at, end);
        return rest.size() >= written_size(name) && rest[name.size() + 1] == '"' && rest.front() == '"' &&
               rest.substr(1, name.size()) == name;
    }
};

reader::reader(std::string_view text) noexcept : reader(text.data(), text.data() + text.size(), 0, text.data())
{
    at_ = next_token(at_);
}

void reader::refuse(const char* at, std::string_view detail) const
{
    const std::string_view before(text_, static_cast<std::size_t>(at - text_));
    const std::size_t last = before.rfind('\n');
    throw load_exception(nsm::details::bad_json_format,
                         {.line = 1 + static_cast<std::size_t>(std::ranges::count(before, '\n')),
                          .column = last == std::string_view::npos ? before.size() : before.size() - last},
                         detail);
}

void reader::require(std::uint32_t wanted, const char* otherwise) const
{
    if ((kinds() & wanted) == 0)
        throw load_exception(otherwise);
}

const char* reader::next_token(const char* at) const noexcept
{
    while (at != end_ && is_space_or_comma(*at))
        ++at;
    return at;
}

bool reader::closes(const char* at) const noexcept
{
    return at == end_ || is_closing(*at);
}

std::uint32_t reader::kinds() const
{
    if (closes(at_))
        return 0;
    switch (*at_) {
    case '"':
        return kinds_of_text(at_);
    case '{':
        return object_kinds;
    case '[':
        return array_kinds;
    case 't':
    case 'f':
        return boolean_kinds;
    case 'n':
        after_word(at_, "null");
        return 0;
    default:
        if (begins_number(*at_))
            return number_kinds;
        refuse(at_);
    }
}

std::uint32_t reader::kinds_of_text(const char* at) const noexcept
{
    const std::string_view rest(at + 1, end_);
    if (rest.starts_with('{'))
        return braced_text_kinds;
    return rest.starts_with("0x") || rest.starts_with("0X") ? number_kinds : text_kinds;
}

inline reader::text_token reader::scan_text(const char* at) const
{
    const plain_stretch all = scan_plain(at + 1, end_);
    if (all.end == end_ || *all.end != '"')
        return scan_escaped_text(at, all);
    return {.raw = {at + 1, all.end}, .escaped = false, .ascii = all.ascii};
}

reader::text_token reader::scan_escaped_text(const char* at, plain_stretch stretch) const
{
    bool ascii = stretch.ascii;
    while (stretch.end == end_ || *stretch.end != '"') {
        if (end_ - stretch.end < 2)
            refuse(at);
        stretch = scan_plain(stretch.end + 2, end_);
        ascii = ascii && stretch.ascii;
    }
    return {.raw = {at + 1, stretch.end}, .escaped = true, .ascii = ascii};
}

const char* reader::after_word(const char* at, std::string_view word) const
{
    if (!std::string_view(at, end_).starts_with(word))
        refuse(at);
    return at + word.size();
}

std::string_view reader::number_at(const char* at) const
{
    const char* const after = begins_number(*at) ? after_number(at, end_) : nullptr;
    if (!after || (after != end_ && is_in_number(*after)))
        refuse(at);
    return {at, after};
}

const char* reader::after_scalar(const char* at) const
{
    switch (*at) {
    case '"':
        return scan_text(at).after();
    case 't':
        return after_word(at, "true");
    case 'f':
        return after_word(at, "false");
    case 'n':
        return after_word(at, "null");
    default: {
        const std::string_view number = number_at(at);
        return number.data() + number.size();
    }
    }
}

inline reader::text_token reader::name_at(const char* at) const
{
    if (*at != '"')
        refuse(at);
    return scan_text(at);
}

inline const char* reader::value_behind_name(const char* at) const
{
    while (at != end_ && is_space(*at))
        ++at;
    if (at == end_ || *at != ':')
        refuse(at);
    const char* const value = next_token(at + 1);
    if (closes(value))
        refuse(value);
    return value;
}

void reader::check_depth(const char* at, unsigned depth) const
{
    if (depth >= deepest_nesting)
        refuse(at, "nested too deep");
}

const char* reader::after_unread_value() const
{
    const char* at = at_;
    unsigned open = 0;
    std::uint64_t objects = 0; // one bit for each array or object that is open, the innermost lowest
    for (;;) {
        if (closes(at)) {
            if (at == end_)
                return end_;
            ++at;
            --open;
            objects >>= 1;
        } else if (is_opening(*at)) {
            check_depth(at, depth_ + open);
            ++open;
            objects = objects << 1 | (*at == '{' ? 1 : 0);
            ++at;
        } else if (*at == '"') {
            at = scan_text(at).after();
        } else {
            at = after_scalar(at);
        }
        if (open == 0)
            return at;
        at = next_token(at);
        if ((objects & 1) != 0 && !closes(at))
            at = value_behind_name(name_at(at).after());
    }
}

void reader::expect_end() const
{
    if (closes(at_) && at_ != end_)
        refuse(at_);
    const char* const rest = next_token(after_value());
    if (rest != end_)
        refuse(rest);
}

template <typename ReadInto>
void reader::for_each_inside(const ReadInto& read_into) const
{
    check_depth(at_, depth_);
    reader value(text_, end_, depth_ + 1, at_);
    const char* at = next_token(at_ + 1);
    while (!closes(at)) {
        read_into(value, at);
        at = next_token(value.after_value());
    }
    after_ = at == end_ ? at : at + 1;
}

void reader::visit_members(const member_visitor& visit) const
{
    require(object_kind, nsm::details::object_expected);
    for_each_inside([&](reader& value, const char* at) {
        const text_token name = name_at(at);
        value.read_at(value_behind_name(name.after()));
        if (name.escaped)
            visit(std::string_view(to_utf8(resolved(name))), value);
        else
            visit(name.raw, value);
    });
}

void reader::visit_named(std::span<const std::string_view> names, const named_visitor& visit) const
{
    require(object_kind, nsm::details::object_expected);
    expected_names expected{names};
    for_each_inside([&](reader& value, const char* at) {
        std::size_t index = expected.next_is_at(at, end_) ? expected.next : expected.index_of(at, end_);
        if (index != names.size()) {
            value.read_at(value_behind_name(at + expected_names::written_size(names[index])));
        } else {
            const text_token other = name_at(at);
            value.read_at(value_behind_name(other.after()));
            if (other.escaped)
                index = static_cast<std::size_t>(std::ranges::find(names, to_utf8(resolved(other))) - names.begin());
        }
        if (index != names.size()) {
            expected.next = index + 1;
            visit(index, value);
        }
    });
}

reader reader::find(std::string_view name) const
{
    require(object_kind, nsm::details::object_expected);
    check_depth(at_, depth_);
    const char* at = next_token(at_ + 1);
    while (!closes(at)) {
        const text_token other = name_at(at);
        const char* const value = value_behind_name(other.after());
        const bool wanted = other.escaped ? to_utf8(resolved(other)) == name : other.raw == name;
        if (wanted)
            return {text_, end_, depth_ + 1, value};
        at = next_token(reader(text_, end_, depth_ + 1, value).after_value());
    }
    return {text_, end_, depth_ + 1, at};
}

void reader::visit_elements(const element_visitor& visit) const
{
    if (kinds() != array_kinds)
        throw load_exception(nsm::details::array_expected);
    for_each_inside([&](reader& value, const char* at) {
        value.read_at(at);
        visit(value);
    });
}

std::u16string reader::resolved(const text_token& token) const
{
    if (!token.escaped)
        return to_utf16(token.raw);
    resolved_text result = resolve_escapes(token.raw);
    if (result.malformed)
        refuse(result.malformed);
    return std::move(result.text);
}

inline std::u16string reader::text_value() const
{
    const text_token token = scan_text(at_);
    after_ = token.after();
    if (token.ascii && !token.escaped)
        return widen_ascii(token.raw, end_);
    return resolved(token);
}

bool reader::is_binary() const
{
    return (kinds() & string_kind) != 0;
}

std::u16string reader::as_string() const
{
    // What begins like this is a text; whether others are is a longer question.
    const bool certainly_text = end_ - at_ > 1 && at_[0] == '"' && at_[1] != '0';
    if (!certainly_text)
        require(string_kind, nsm::details::string_expected);
    return text_value();
}

file_time reader::as_date() const
{
    require(date_kind, nsm::details::date_expected);
    const std::optional<file_time> date = nsm::parse_date(text_value());
    if (!date)
        throw load_exception(nsm::details::date_expected);
    return *date;
}

nsm::guid reader::as_guid() const
{
    require(guid_kind, nsm::details::string_expected);
    const std::optional<nsm::guid> value = nsm::parse_guid(text_value());
    if (!value)
        throw load_exception(nsm::details::string_expected);
    return *value;
}

std::vector<std::byte> reader::as_binary() const
{
    require(string_kind, nsm::details::string_expected);
    std::optional<std::vector<std::byte>> bytes = from_base64(text_value());
    if (!bytes)
        throw load_exception(nsm::details::string_expected);
    return std::move(*bytes);
}

bool reader::as_boolean() const
{
    require(boolean_kind, nsm::details::boolean_expected);
    const bool value = *at_ == 't';
    after_ = after_word(at_, value ? "true" : "false");
    return value;
}

template <typename Value>
Value reader::as_number(std::optional<Value> (*parse)(std::string_view)) const
{
    require(number_kind, nsm::details::number_expected);
    std::optional<Value> value;
    if (*at_ == '"') {
        constexpr std::size_t prefix = 2; // 0x
        const text_token token = scan_text(at_);
        after_ = token.after();
        const std::optional<std::uint64_t> number = parse_hexadecimal(token.raw.substr(prefix));
        if (number && (!std::is_same_v<Value, std::int64_t> || std::in_range<std::int64_t>(*number)))
            value = static_cast<Value>(*number);
    } else {
        const std::string_view number = number_at(at_);
        after_ = number.data() + number.size();
        value = parse(number);
    }
    if (!value)
        throw load_exception(nsm::details::number_expected);
    return *value;
}

std::uint64_t reader::as_unsigned() const
{
    // Most numbers are nothing but digits.
    const char* after = at_;
    const std::optional<std::uint64_t> digits = take_integer(after, end_);
    if (digits && (after == end_ || !is_in_number(*after))) {
        after_ = after;
        return *digits;
    }
    return as_number(&parse_integer<std::uint64_t>);
}

std::int64_t reader::as_signed() const
{
    return as_number(&parse_integer<std::int64_t>);
}

double reader::as_double() const
{
    return as_number(&parse_real<double>);
}

float reader::as_float() const
{
    return as_number(&parse_real<float>);
}

} // namespace girder::json
