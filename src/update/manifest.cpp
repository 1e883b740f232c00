#include "update/manifest.h"

#include "base/hexadecimal.h"
#include "format/format.h"
#include "format/literals.h"
#include "serialisation/record.h"
#include "update/https.h"
#include "update/json_reader.h"

namespace tidelink {
namespace {

using namespace fmtkit::literals;
using namespace girder;
using nsm::details::load_exception;

std::optional<sha256_digest> parse_digest(std::u16string_view text)
{
    sha256_digest digest;
    if (text.size() != 2 * digest.bytes.size())
        return std::nullopt;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::optional<std::uint8_t> digit = hexadecimal_digit(text[i]);
        if (!digit)
            return std::nullopt;
        digest.bytes[i / 2] = digest.bytes[i / 2] << 4 | std::byte{*digit};
    }
    return digest;
}

constexpr nsm::field_table promo_fields{
    nsm::field{.name = "Title", .member = &Promo::title},
    nsm::field{.name = "Url", .member = &Promo::url},
    nsm::field{.name = "ExpiresOn", .member = &Promo::expires_on},
};
constexpr nsm::field_table credit_fields{
    nsm::field{.name = "Name", .member = &Credit::name},
    nsm::field{.name = "EMail", .member = &Credit::email},
};
constexpr nsm::field_table pack_fields{
    nsm::field{.name = "Name", .member = &OfferedPack::name},
    nsm::field{.name = "Locale", .member = &OfferedPack::locale},
    nsm::field{.name = "Version", .member = &OfferedPack::version},
    nsm::field{.name = "ClientVersion", .member = &OfferedPack::client_version},
    nsm::field{.name = "Credits", .member = &OfferedPack::credits},
};
constexpr nsm::field_table installer_fields{
    nsm::field{.name = "Url", .member = &Installer::url},
    nsm::field{.name = "Sha256", .member = &Installer::sha256},
    nsm::field{.name = "Size", .member = &Installer::size},
};
constexpr nsm::field_table manifest_fields{
    nsm::field{.name = "Version", .member = &Manifest::version},
    nsm::field{.name = "Promo", .member = &Manifest::promo},
    nsm::field{.name = "LanguagePacks", .member = &Manifest::language_packs},
    nsm::field{.name = "Installer", .member = &Manifest::installer},
};

} // namespace

// How the fields are read; found by their types' namespace.
// NOLINTBEGIN(misc-use-internal-linkage)

void read_value(const nsm::value_reader& reader, day_number& value)
{
    value = day_of(reader.as_date());
}

void read_value(const nsm::value_reader& reader, sha256_digest& value)
{
    const std::optional<sha256_digest> digest = parse_digest(reader.as_string());
    if (!digest)
        throw load_exception(nsm::details::string_expected);
    value = *digest;
}

void read_value(const nsm::value_reader& reader, Promo& value)
{
    nsm::read_complete_record(promo_fields, reader, value);
}

void read_value(const nsm::value_reader& reader, Credit& value)
{
    nsm::read_complete_record(credit_fields, reader, value);
}

void read_value(const nsm::value_reader& reader, OfferedPack& value)
{
    nsm::read_complete_record(pack_fields, reader, value);
}

void read_value(const nsm::value_reader& reader, Installer& value)
{
    nsm::read_complete_record(installer_fields, reader, value);
}

// NOLINTEND(misc-use-internal-linkage)

Manifest read_manifest(std::string_view text)
{
    const girder::json::reader document(text);
    Manifest manifest;
    nsm::read_complete_record(manifest_fields, document, manifest);
    document.expect_end();
    return manifest;
}

std::u16string check_path(std::uint32_t own_version)
{
    return fmtkit::format(u"/dispatch/tps-server7/checkforupdates?ver={}"_fmt, own_version);
}

std::optional<std::u16string> address_below(std::u16string_view host, std::u16string_view url)
{
    if (http::is_https(url))
        return std::u16string(url);
    // Two slashes, or a backslash, which browsers take for one, would name another host.
    if (!url.starts_with(u'/') || url.substr(1).starts_with(u'/') || url.find(u'\\') != std::u16string_view::npos)
        return std::nullopt;
    return fmtkit::format(u"{0}{1}"_fmt, host, url);
}

} // namespace tidelink
