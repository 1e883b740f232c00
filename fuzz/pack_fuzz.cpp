// String packs and language packs out of any bytes: nothing outside them is read, and what is served lies inside them.

#include "localisation/language_pack.h"
#include "localisation/little_endian.h"
#include "localisation/string_layer.h"
#include "require.h"
#include "served_text.h"

#include <optional>
#include <span>

namespace {

using fuzz::bytes;
using fuzz::require;
using namespace tidelink;

/// Looks for every number that stands in `candidates` as if it were an id.
void look_up(const StringLayer& layer, bytes candidates, bytes lower, bytes upper)
{
    for (std::size_t at = 0; at + sizeof(std::uint32_t) <= candidates.size(); ++at) {
        const auto id = load_number<std::uint32_t>(candidates.data() + at);
        const StringEntry* const entry = layer.find(id);
        if (entry == nullptr)
            continue;
        require(entry->id() == id);
        fuzz::require_served_from(entry->text(), {lower, upper});
        for (const std::uint32_t index : {0U, 1U, 0xFFFFFFFFU})
            fuzz::require_served_from(entry->item(index), {lower, upper});
    }
}

void lay_over(bytes lower, bytes upper, pack_form form)
{
    const std::optional<StringLayer> beneath = StringLayer::read(lower, pack_form::bare, nullptr);
    if (beneath)
        look_up(*beneath, lower, lower, {});
    const std::optional<StringLayer> layer = StringLayer::read(upper, form, beneath ? &*beneath : nullptr);
    if (!layer)
        return;
    look_up(*layer, lower, lower, upper);
    look_up(*layer, upper, lower, upper);
    require(layer->locale_name().data()[layer->locale_name().size()] == '\0');
    require(layer->language_tag().data()[layer->language_tag().size()] == '\0');
}

} // namespace

/// The first byte says how long the lower pack is, in eighths of the rest.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t eighths = 8;
    if (size == 0)
        return 0;
    const bytes rest(reinterpret_cast<const std::byte*>(data) + 1, size - 1);
    const std::size_t lower_size = rest.size() * (data[0] % eighths) / eighths;
    const bytes lower = rest.first(lower_size);
    const bytes upper = rest.subspan(lower_size);
    lay_over(lower, upper, pack_form::bare);
    lay_over(lower, upper, pack_form::with_signature);
    lay_over(findModule(rest, u"common"), findModule(rest, u"folder\\tl_server_config.exe"), pack_form::bare);
    return 0;
}
