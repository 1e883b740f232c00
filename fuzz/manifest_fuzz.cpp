// Any text as a manifest: it is read, or refused with a listed text.

#include "require.h"
#include "serialisation/load_exception.h"
#include "update/manifest.h"

#include <algorithm>
#include <array>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace girder::nsm::details;
    try {
        const tidelink::Manifest manifest = tidelink::read_manifest({reinterpret_cast<const char*>(data), size});
        if (manifest.installer)
            tidelink::address_below(u"https://host.example", manifest.installer->url);
    } catch (const load_exception& error) {
        constexpr std::array listed{object_expected, array_expected, string_expected, number_expected, date_expected};
        const std::string_view text = error.what();
        fuzz::require(error.position() ? text.starts_with(bad_json_format)
                                       : std::ranges::find(listed, text) != listed.end());
    }
    return 0;
}
