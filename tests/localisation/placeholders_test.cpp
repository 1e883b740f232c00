#include "localisation/placeholders.h"
#include "localisation/string_layer.h"
#include "pack_builder.h"

#include <gtest/gtest.h>

namespace tidelink {
namespace {

using support::pack_builder;
using support::pack_bytes;

/// Whether the second one of two packs replaces the text, or the item of a list, of the first one.
bool replaces(const pack_bytes& english, const pack_bytes& translation)
{
    const auto lower = StringLayer::read(english, pack_form::bare, nullptr);
    const auto upper = StringLayer::read(translation, pack_form::bare, &*lower);
    const StringEntry& entry = *upper->find(1);
    const auto* const served =
        reinterpret_cast<const std::byte*>(entry.is_list() ? entry.item(1).data() : entry.text().data());
    return served >= translation.data() && served < translation.data() + translation.size();
}

TEST(placeholders_test, decide_whether_a_translation_is_shown)
{
    const std::u16string longest = std::u16string(1'021, u'x') + u"{0}";
    const std::u16string too_long = u"x" + longest;
    const struct {
        const char* name;
        std::u16string_view english;
        std::u16string_view translation;
        bool fits;
    } cases[] = {
        {"same", u"Error {0} ({1ub016xp})", u"Fehler {0} ({1ub016xp})", true},
        {"other_order", u"{0} of {1}", u"{1}: {0}", true},
        {"numbered_by_position", u"{} of {}", u"{1} {0}", true},
        {"one_left_out", u"{0} {1}", u"{1}", true},
        {"one_too_many_by_position", u"{}", u"{} {}", false},
        {"in_a_text_without_any", u"OK", u"{0}", false},
        {"unknown_specifier", u"{0}", u"{0q}", false},
        {"brace_at_the_end", u"{0}", u"{0} {", false},
        {"doubled_brace", u"{0}", u"{{ {0}", true},
        // U+7B00 and U+007B share a byte, and so do U+7BXX over two units.
        {"low_byte_zero", u"OK", u"\u7B00\u4E7B\u007D", true},
        {"longest", longest, longest, true},
        {"too_long", u"{0}", too_long, false},
        {"too_long_beneath", too_long, u"{0}", false},
    };
    const auto text = [](const char* locale_name, std::u16string_view single) {
        return pack_builder(locale_name).text(1, 0, single).bare();
    };
    const auto list = [](const char* locale_name, std::u16string_view item) {
        return pack_builder(locale_name).list(1, 0, {{0, u"x"}, {1, item}}).bare();
    };
    // The even length of a locale name moves the texts to odd addresses.
    for (const char* const locale : {"DEU", "German"})
        for (const auto& [name, english, translation, fits] : cases) {
            EXPECT_EQ(replaces(text(locale, english), text(locale, translation)), fits) << name;
            EXPECT_EQ(replaces(list(locale, english), list(locale, translation)), fits) << name;
        }
}

} // namespace
} // namespace tidelink
