#include "base/handles.h"
#include "base/utf.h"
#include "fixture.h"
#include "support/generated_key.h"

#include <windows.h>

#include <sddl.h>

namespace {

using namespace e2e;
using testing::Contains;
using testing::HasSubstr;
using testing::Pair;

constexpr wchar_t key_path[] = L"Software\\Zelmark\\Tidelink Server 7.01";

using generated_settings_test = machine_test;

TEST_F(generated_settings_test, the_program_starts_names_what_it_could_not_read_and_writes_nothing)
{
    for (unsigned seed = 20'001; seed <= 20'050; ++seed) {
        SCOPED_TRACE(seed);
        support::generated_key key(seed, true);
        key.store(key_path);
        const stored_values before = settings_key::read();
        const utility program;
        if (!key.unreadable().empty()) {
            const ui_driver::dialog box = program.message(error_title);
            for (const std::u16string& name : key.unreadable())
                EXPECT_THAT(utility::text_of(box), HasSubstr(girder::to_utf8(name)));
            utility::answer(box, id::ok);
        }
        EXPECT_FALSE(program.apply_enabled());
        ASSERT_EQ(program.close(), 0U);
        ASSERT_EQ(settings_key::read(), before);
    }
}

/// Gives the settings key another access list, and everyone all access again at the end.
class restricted_key {
public:
    explicit restricted_key(const wchar_t* descriptor)
    {
        ::RegOpenKeyExW(HKEY_LOCAL_MACHINE, key_path, 0, KEY_ALL_ACCESS, key_.put());
        allow(descriptor);
    }
    restricted_key(const restricted_key&) = delete;
    restricted_key& operator=(const restricted_key&) = delete;
    ~restricted_key() { allow(L"D:P(A;;GA;;;WD)"); }

private:
    void allow(const wchar_t* text)
    {
        girder::unique_local_memory descriptor;
        EXPECT_TRUE(
            ::ConvertStringSecurityDescriptorToSecurityDescriptorW(text, SDDL_REVISION_1, descriptor.put(), nullptr));
        EXPECT_EQ(::RegSetKeySecurity(key_.get(), DACL_SECURITY_INFORMATION, descriptor.get()), ERROR_SUCCESS);
    }

    girder::unique_registry_key key_;
};

using restricted_key_test = machine_test;

// Wine lets anyone delete a key that may only be read, so that a save of it cannot be seen to fail here.
TEST_F(restricted_key_test, a_key_that_may_only_be_read_is_shown)
{
    settings_key::write(u"sharedPorts", ports({7}));
    const restricted_key readable(L"D:P(A;;KR;;;WD)");
    const utility program;
    EXPECT_THAT(program.checked_ports(), testing::ElementsAre(7));
    EXPECT_EQ(program.close(), 0U);
}

TEST_F(restricted_key_test, a_key_that_may_not_even_be_read_is_reported_and_left_alone)
{
    settings_key::write(u"sharedPorts", ports({7}));
    {
        const restricted_key denied(L"D:P(D;;GA;;;WD)");
        const utility program;
        const ui_driver::dialog box = program.message(error_title);
        EXPECT_THAT(utility::text_of(box), HasSubstr("(0x00000005)"));
        utility::answer(box, id::ok);
        EXPECT_TRUE(program.control(id::share_all).checked());
        EXPECT_EQ(program.close(), 0U);
    }
    EXPECT_THAT(settings_key::read(), Contains(Pair(u"sharedPorts", ports({7}))));
}

} // namespace
