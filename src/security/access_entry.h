#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace tidelink {

/// Whether an access entry allows or denies: the type number in the header of the system's ACE structures. Other
/// numbers are kinds (audit, object, conditional) that only the stored form can have.
enum class access_kind : std::uint8_t { allowed = 0, denied = 1 };

/// A bit of access_entry::flags: the entry is there for descendants to inherit and does not apply to the server itself.
inline constexpr std::uint8_t inherit_only = 0x08;

/// One entry of an access list.
struct access_entry {
    access_kind kind = access_kind::allowed;
    std::uint8_t flags = 0;     ///< inheritance bits, as in the header of an ACE
    std::uint32_t mask = 0;     ///< the rights
    std::vector<std::byte> sid; ///< whom it is about, in the system's binary form; empty for the other kinds

    bool operator==(const access_entry&) const = default;
};

using access_list = std::vector<access_entry>;

/// Rights of the stored form, as the server reads them.
namespace stored_right {
inline constexpr std::uint32_t server_specific = 0x4; ///< marks the service's own entry, which people are not shown
inline constexpr std::uint32_t service =
    0xC0100004; ///< the service's own entry: read, write, synchronise, and the mark
inline constexpr std::uint32_t connect = 0xC0100000; ///< read, write, synchronise: what people grant or deny
inline constexpr std::uint32_t closing = 0xC0000000; ///< read, write: denied to everyone where nobody else is listed
} // namespace stored_right

/// The one right of the editor's form: to connect to the server.
inline constexpr std::uint32_t editor_right = 1;

namespace detail {

constexpr std::array<std::byte, 12> sid_of_one_part(std::uint8_t authority, std::uint8_t part)
{
    constexpr std::byte revision{1};
    constexpr std::byte parts{1};
    return {revision, parts, {}, {}, {}, {}, {}, std::byte{authority}, std::byte{part}, {}, {}, {}};
}

} // namespace detail

/// S-1-5-6: whoever has logged on as a service.
inline constexpr std::array<std::byte, 12> service_sid = detail::sid_of_one_part(5, 6);
/// S-1-1-0.
inline constexpr std::array<std::byte, 12> everyone_sid = detail::sid_of_one_part(1, 0);

} // namespace tidelink
