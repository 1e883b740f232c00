#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace support {

using pack_bytes = std::vector<std::byte>;

template <typename Value>
void append(pack_bytes& bytes, const Value& value)
{
    const auto* const first = reinterpret_cast<const std::byte*>(&value);
    bytes.insert(bytes.end(), first, first + sizeof value);
}

template <typename Unit>
void append_text(pack_bytes& bytes, std::basic_string_view<Unit> text)
{
    append(bytes, static_cast<std::uint16_t>(text.size()));
    for (const Unit unit : text)
        append(bytes, unit);
    append(bytes, Unit{0});
}

inline constexpr std::array<std::uint8_t, 16> pack_signature = {0x79, 0x2B, 0x13, 0xEF, 0xBB, 0x4F, 0xF7, 0x43,
                                                                0x84, 0x1A, 0x26, 0x0C, 0x00, 0xFF, 0x99, 0x29};

/// Puts a string pack together, entry by entry.
class pack_builder {
public:
    /// \param locale_name  an even number of characters moves the texts to odd addresses
    explicit pack_builder(std::string_view locale_name = "ENU", std::string_view language_tag = "en")
    {
        append_text(header_, locale_name);
        append_text(header_, language_tag);
        append(header_, std::uint8_t{2});
        append(header_, std::uint16_t{0});
    }

    pack_builder& text(std::uint32_t id, std::uint32_t revision, std::u16string_view text)
    {
        begin_entry(id, revision << 2U);
        append_text(entries_, text);
        return *this;
    }

    pack_builder& list(std::uint32_t id, std::uint32_t revision,
                       std::initializer_list<std::pair<std::uint32_t, std::u16string_view>> items,
                       std::uint32_t kind = 1)
    {
        begin_entry(id, revision << 2U | kind);
        append(entries_, static_cast<std::uint32_t>(items.size()));
        for (const auto& [index, item] : items) {
            append(entries_, index);
            append_text(entries_, item);
        }
        return *this;
    }

    /// As in a module of a pack file.
    pack_bytes bare() const
    {
        pack_bytes bytes = header_;
        append(bytes, count_);
        bytes.insert(bytes.end(), entries_.begin(), entries_.end());
        return bytes;
    }
    /// As in a resource.
    pack_bytes with_signature() const
    {
        pack_bytes bytes = bare();
        const auto* const signature = reinterpret_cast<const std::byte*>(&pack_signature);
        bytes.insert(bytes.begin(), signature, signature + sizeof pack_signature);
        return bytes;
    }

private:
    void begin_entry(std::uint32_t id, std::uint32_t kind_and_revision)
    {
        append(entries_, id);
        append(entries_, kind_and_revision);
        ++count_;
    }

    pack_bytes header_;
    pack_bytes entries_;
    std::uint32_t count_ = 0;
};

} // namespace support
