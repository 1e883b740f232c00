#include "update/json_escapes.h"

#include "base/utf.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <optional>
#include <span>
#include <utility>

namespace girder::json {
namespace {

struct escape {
    char letter;
    char meaning;
};

constexpr escape escapes[] = {{'"', '"'},  {'\\', '\\'}, {'t', '\t'}, {'n', '\n'},
                              {'r', '\r'}, {'/', '/'},   {'b', '\b'}, {'f', '\f'}};
/// As many of them are written.
constexpr std::size_t written_escapes = 5;

std::optional<char16_t> code_unit(std::string_view raw)
{
    constexpr std::size_t digits = 4;
    if (raw.size() < digits)
        return std::nullopt;
    unsigned unit = 0;
    for (const char digit : raw.substr(0, digits)) {
        constexpr std::string_view values = "0123456789abcdef";
        const bool is_letter = (digit >= 'A' && digit <= 'F');
        const std::size_t value = values.find(is_letter ? static_cast<char>(digit | 0x20) : digit);
        if (value == std::string_view::npos)
            return std::nullopt;
        unit = unit << 4 | static_cast<unsigned>(value);
    }
    return static_cast<char16_t>(unit);
}

/// Takes escapes one by one; a code unit is kept until it is known whether its partner follows.
class resolver {
public:
    explicit resolver(std::string_view raw) noexcept : rest_(raw) {}

    resolved_text resolve()
    {
        while (!rest_.empty()) {
            const std::size_t plain = std::min(rest_.find('\\'), rest_.size());
            if (plain > 0) {
                end_pair();
                text_ += to_utf16(rest_.substr(0, plain));
                rest_.remove_prefix(plain);
            } else if (!take_escape()) {
                return {.text = {}, .malformed = rest_.data()};
            }
        }
        end_pair();
        return {.text = std::move(text_)};
    }

private:
    bool take_escape()
    {
        constexpr std::size_t short_escape = 2;
        constexpr std::size_t long_escape = 6;
        if (rest_.size() < short_escape)
            return false;
        if (rest_[1] == 'u') {
            const std::optional<char16_t> unit = code_unit(rest_.substr(short_escape));
            if (!unit)
                return false;
            put(*unit);
            rest_.remove_prefix(long_escape);
            return true;
        }
        const auto* const known = std::ranges::find(escapes, rest_[1], &escape::letter);
        if (known == std::end(escapes))
            return false;
        end_pair();
        text_ += static_cast<char16_t>(known->meaning);
        rest_.remove_prefix(short_escape);
        return true;
    }

    void put(char16_t unit)
    {
        if (high_ != 0 && is_low_surrogate(unit)) {
            text_ += high_;
            text_ += unit;
            high_ = 0;
            return;
        }
        end_pair();
        if (is_high_surrogate(unit))
            high_ = unit;
        else
            text_ += is_low_surrogate(unit) ? replacement : unit;
    }

    void end_pair()
    {
        if (high_ != 0)
            text_ += replacement;
        high_ = 0;
    }

    static constexpr char16_t replacement = 0xFFFD;

    std::string_view rest_;
    std::u16string text_;
    char16_t high_ = 0; ///< the first half of a pair, still without its partner
};

} // namespace

void append_escaped(std::string& out, std::string_view text)
{
    const std::span written(escapes, written_escapes);
    for (const char unit : text) {
        const auto known = std::ranges::find(written, unit, &escape::meaning);
        if (known != written.end())
            out += '\\';
        out += known != written.end() ? known->letter : unit;
    }
}

resolved_text resolve_escapes(std::string_view raw)
{
    return resolver(raw).resolve();
}

} // namespace girder::json
