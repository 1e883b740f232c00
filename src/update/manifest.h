#pragma once

#include "base/file_time.h"

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What the vendor's web site answers to the question for a newer release: one JSON object. It comes from the network;
// its texts are plain text, whatever they look like.

namespace tidelink {

/// A day, counted from 1601-01-01 in UTC.
struct day_number {
    std::int64_t days = 0;

    auto operator<=>(const day_number&) const = default;
};

inline constexpr std::int64_t ticks_per_day = 864'000'000'000;

/// The day that a point in time lies in.
constexpr day_number day_of(girder::file_time time) noexcept
{
    return {time.ticks / ticks_per_day};
}

struct Promo {
    std::u16string title;
    std::u16string url;    ///< the page that it leads to
    day_number expires_on; ///< its last day

    bool operator==(const Promo&) const = default;
};

struct Credit {
    std::u16string name;
    std::u16string email;

    bool operator==(const Credit&) const = default;
};

struct OfferedPack {
    std::u16string name;
    std::u16string locale;
    std::uint32_t version = 0;
    std::uint32_t client_version = 0; ///< encoded version of the utility that it was made for
    std::vector<Credit> credits;

    bool operator==(const OfferedPack&) const = default;
};

struct sha256_digest {
    std::array<std::byte, 32> bytes{};

    bool operator==(const sha256_digest&) const = default;
};

/// The file that installs the newest release.
struct Installer {
    std::u16string url; ///< see address_below()
    sha256_digest sha256;
    std::uint64_t size = 0; ///< in bytes

    bool operator==(const Installer&) const = default;
};

struct Manifest {
    std::uint32_t version = 0; ///< encoded version of the newest release
    std::optional<Promo> promo;
    std::optional<std::vector<OfferedPack>> language_packs;
    std::optional<Installer> installer;

    bool operator==(const Manifest&) const = default;
};

/// Members that are not listed here are ignored; those of an object that is there are all required.
/// \param text  the whole document, in UTF-8
/// \throws girder::nsm::details::load_exception
Manifest read_manifest(std::string_view text);

/// The path and query that ask for the newest release.
std::u16string check_path(std::uint32_t own_version);

/// Where a file of the vendor's is: an https address stands for itself, a path that begins with one slash is on `host`.
/// Empty for everything else, in particular what would continue the host's name.
/// \param host  e.g. u"https://updates.example"
std::optional<std::u16string> address_below(std::u16string_view host, std::u16string_view url);

/// Whether a release is offered to a program of `own_version`, both encoded.
constexpr bool is_newer(std::uint32_t release, std::uint32_t own_version) noexcept
{
    return release > own_version;
}

} // namespace tidelink
