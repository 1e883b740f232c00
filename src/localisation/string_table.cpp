#include "localisation/string_table.h"

#include <optional>
#include <stdexcept>
#include <utility>

namespace tidelink {

StringTable StringTable::above(const StringTable& lower)
{
    StringTable table;
    table.top_ = lower.top_;
    table.corrections_mode_ = lower.corrections_mode_;
    return table;
}

bool StringTable::layer(std::span<const std::byte> pack, pack_form form)
{
    if (pack.data() == nullptr)
        return true;
    if (std::optional<StringLayer> read = StringLayer::read(pack, form, top_.get()))
        top_ = std::make_shared<const StringLayer>(*std::move(read));
    return top_ != nullptr;
}

bool StringTable::load(std::span<const std::byte> built_in, std::span<const std::byte> translation)
{
    const std::shared_ptr<const StringLayer> before = top_;
    const bool goes_on = layer(built_in, pack_form::with_signature);
    loaded_ = top_ != before;
    if (!goes_on || translation.data() == nullptr)
        return true;
    const std::shared_ptr<const StringLayer> english = top_;
    layer(translation, pack_form::bare);
    return top_ != english;
}

void StringTable::correct(std::u16string_view key, std::u16string_view text)
{
    if (corrections_mode_)
        corrections_.insert_or_assign(std::u16string(key), std::u16string(text));
}

void StringTable::throw_not_found()
{
    throw std::runtime_error("string not found");
}

} // namespace tidelink
