// What stands in the settings key, what the window shows of it, and what it stores there.

#include "base/handles.h"
#include "base/utf.h"
#include "fixture.h"
#include "support/cases.h"
#include "support/generated_key.h"

#include <windows.h>

#include <sddl.h>

#include <algorithm>
#include <array>
#include <optional>

namespace {

using namespace e2e;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using ui_driver::list_row;

constexpr wchar_t key_path[] = L"Software\\Zelmark\\Tidelink Server 7.01";

class settings_test : public machine_test {
protected:
    support::reload_listener server_;
};

TEST_F(settings_test, sharing_one_port_reaches_the_registry_and_the_server_and_is_shown_again)
{
    const utility first;
    EXPECT_THAT(first.list().rows(),
                ElementsAre(list_row{u"Communications Port (COM1)", 1, true},
                            list_row{u"USB Serial Port (COM3)", 3, true}, list_row{u"USB Serial Port (COM7)", 7, true},
                            list_row{u"USB Serial Port (COM10)", 10, true}));
    EXPECT_TRUE(first.control(id::share_all).checked());
    EXPECT_FALSE(first.control(id::port_list).enabled());
    EXPECT_TRUE(first.control(id::auto_discovery).checked());
    EXPECT_FALSE(first.apply_enabled());

    first.control(id::share_selected).click();
    EXPECT_TRUE(first.control(id::port_list).enabled());
    first.check_ports({3});
    EXPECT_TRUE(first.apply_enabled());
    EXPECT_THAT(settings_key::read(), IsEmpty()) << "nothing is written before Apply";

    first.control(id::apply).click();
    EXPECT_THAT(settings_key::read(), ElementsAre(Pair(u"sharedPorts", binary({3, 0, 0, 0}))));
    EXPECT_TRUE(heard(server_, 1));
    EXPECT_FALSE(first.apply_enabled());
    EXPECT_EQ(first.close(), 0U);

    const utility second;
    EXPECT_TRUE(second.control(id::share_selected).checked());
    EXPECT_TRUE(second.control(id::port_list).enabled());
    EXPECT_THAT(second.checked_ports(), ElementsAre(3));
    second.list().click_text(2);
    EXPECT_FALSE(second.apply_enabled()) << "a selection is no change";
    second.control(id::ok).post_click();
    EXPECT_EQ(second.exit_code(), 0U);
    EXPECT_TRUE(heard(server_, 1)) << "OK without a change writes nothing";
}

struct change_case {
    const char* name;
    stored_values before;
    std::vector<int> clicks; ///< controls
    std::vector<int> checks; ///< ports that then have their check marks
    int button;
    stored_values stored;      ///< then
    std::vector<int> reopened; ///< the ports that are checked when it is opened again
};

class change_test : public settings_test, public testing::WithParamInterface<change_case> {};

TEST_P(change_test, is_stored_as_a_whole_or_not_at_all)
{
    const auto& [name, before, clicks, checks, button, stored, reopened] = GetParam();
    for (const auto& [value, data] : before)
        settings_key::write(value, data);
    const utility program;
    EXPECT_FALSE(program.apply_enabled());
    for (const int control : clicks)
        program.control(control).click();
    program.check_ports(checks);
    EXPECT_TRUE(program.apply_enabled());
    EXPECT_EQ(program.control(id::port_list).enabled(), program.control(id::share_selected).checked());
    EXPECT_EQ(settings_key::read(), before);
    program.control(button).post_click();
    EXPECT_EQ(program.exit_code(), 0U);
    EXPECT_EQ(settings_key::read(), stored);
    EXPECT_TRUE(heard(server_, button == id::ok ? 1 : 0));
    const utility again;
    EXPECT_EQ(again.checked_ports(), reopened);
    EXPECT_EQ(again.control(id::share_all).checked(), !stored.contains(u"sharedPorts"));
}

const std::vector<int> every_port = {1, 3, 7, 10};
const stored_values nothing;
const stored_values only_7 = {{u"sharedPorts", ports({7})}};
const stored_values all_ports = {{u"sharedPorts", ports({1, 3, 7, 10})}};
const stored_values not_discovered_7_10 = {{u"autoDiscovery", number(0)}, {u"sharedPorts", ports({7, 10})}};
const stored_values with_others = {{u"autoDiscovery", number(0)}, {u"x", text(u"y")}};

INSTANTIATE_TEST_SUITE_P(
    of, change_test,
    testing::ValuesIn(std::to_array<change_case>({
        {"several", nothing, {id::auto_discovery, id::share_selected}, {7, 10}, id::ok, not_discovered_7_10, {7, 10}},
        {"the_share_mode_which_keeps_the_check_marks", only_7, {id::share_all}, {7}, id::ok, only_7, {7}},
        {"the_last_check_mark_which_shares_all_ports", only_7, {}, {}, id::ok, nothing, every_port},
        {"one_to_its_default", with_others, {id::auto_discovery}, every_port, id::ok, all_ports, every_port},
        {"a_check_mark_that_is_cancelled", only_7, {}, {3, 7}, id::cancel, only_7, {7}},
    })),
    support::name_of_row);

TEST_F(settings_test, what_a_save_would_lose_is_named_and_asked_first)
{
    settings_key::write(u"autoDiscovery", number(0));
    settings_key::write(u"language", number(7));
    settings_key::write(u"sharedPorts", ports({3, 7, 12}));
    device_database::remove_port_device(u"COM7");
    const stored_values before = settings_key::read();
    const utility program;
    const auto answer = [&program](const char16_t* title, const char* named, int button) {
        const ui_driver::dialog box = program.message(title);
        EXPECT_THAT(utility::text_of(box), AllOf(HasSubstr(named), Not(HasSubstr("autoDiscovery"))));
        utility::answer(box, button);
    };
    answer(error_title, "language: ", id::ok);
    EXPECT_THAT(program.checked_ports(), ElementsAre(3));
    EXPECT_FALSE(program.control(id::auto_discovery).checked());
    EXPECT_FALSE(program.apply_enabled());

    for (const int replaced : {id::no, id::yes}) {
        program.check_ports({});
        program.control(id::ok).post_click();
        answer(question_title, "replaced: language.", replaced);
        if (replaced == id::yes)
            answer(question_title, "all ports will be shared: COM7, COM12.", id::no);
        EXPECT_TRUE(program.apply_enabled());
        EXPECT_EQ(settings_key::read(), before);
        EXPECT_TRUE(heard(server_, 0));
    }

    program.check_ports({1});
    program.control(id::apply).post_click();
    answer(question_title, "replaced: language.", id::yes);
    answer(question_title, ": COM7, COM12.", id::yes);
    EXPECT_TRUE(heard(server_, 1));
    EXPECT_THAT(settings_key::read(), ElementsAre(Pair(u"autoDiscovery", number(0)), Pair(u"sharedPorts", ports({1}))));

    program.check_ports({3});
    program.control(id::apply).click();
    EXPECT_TRUE(heard(server_, 2)) << "asked once only";
}

using access_test = machine_test;

TEST_F(access_test, ok_in_the_systems_editor_is_a_change_and_apply_stores_the_normalised_list)
{
    const auto stored = [] { return settings_key::read()[u"securityDescriptor"]; };
    const stored_value before = text(u"D:(A;;0xc0100000;;;BA)");
    settings_key::write(u"securityDescriptor", before);
    const utility program;
    EXPECT_EQ(program.control(id::access_words).text(), u"1 account or group");
    program.control(id::security).post_click();
    utility::answer(program.access_editor(), id::ok);
    EXPECT_TRUE(ui_driver::eventually([&] { return program.apply_enabled(); }));
    EXPECT_EQ(stored(), before) << "not before Apply";
    program.control(id::apply).click();
    EXPECT_FALSE(program.apply_enabled());
    EXPECT_EQ(stored(), text(u"D:(A;;0xc0100004;;;SU)(A;;0xc0100000;;;BA)"));
}

using generated_settings_test = machine_test;

TEST_F(generated_settings_test, what_can_be_read_is_shown_the_rest_named_once_and_nothing_written)
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
            EXPECT_TRUE(ui_driver::find_dialogs(error_title, program.process_id()).empty()) << "told twice";
        }
        const auto stored = before.find(u"autoDiscovery");
        const bool by_default = stored == before.end() || key.unreadable().contains(u"autoDiscovery");
        EXPECT_EQ(program.control(id::auto_discovery).checked(),
                  by_default || std::ranges::any_of(stored->second.data, [](std::uint8_t byte) { return byte != 0; }));
        EXPECT_FALSE(program.apply_enabled());
        ASSERT_EQ(program.close(), 0U);
        ASSERT_EQ(settings_key::read(), before);
    }
}

// Wine lets anyone delete a key that may only be read, so that a save of it cannot be seen to fail here.
TEST_F(settings_test, a_key_that_may_only_be_read_is_shown_and_one_that_may_not_is_reported_and_left_alone)
{
    settings_key::write(u"sharedPorts", ports({7}));
    girder::unique_registry_key key;
    ::RegOpenKeyExW(HKEY_LOCAL_MACHINE, key_path, 0, KEY_ALL_ACCESS, key.put());
    const auto protect = [&key](const wchar_t* text) {
        girder::unique_local_memory descriptor;
        EXPECT_TRUE(
            ::ConvertStringSecurityDescriptorToSecurityDescriptorW(text, SDDL_REVISION_1, descriptor.put(), nullptr));
        EXPECT_EQ(::RegSetKeySecurity(key.get(), DACL_SECURITY_INFORMATION, descriptor.get()), ERROR_SUCCESS);
    };
    for (const auto& [rights, shown] :
         {std::pair(L"D:P(A;;KR;;;WD)", std::vector{7}), {L"D:P(D;;GA;;;WD)", {1, 3, 7, 10}}}) {
        protect(rights);
        const utility program;
        if (shown.size() > 1) {
            const ui_driver::dialog box = program.message(error_title);
            EXPECT_THAT(utility::text_of(box), HasSubstr("(0x00000005)"));
            utility::answer(box, id::ok);
        }
        EXPECT_EQ(program.checked_ports(), shown);
        EXPECT_EQ(program.close(), 0U);
    }
    protect(L"D:P(A;;GA;;;WD)");
    EXPECT_THAT(settings_key::read(), ElementsAre(Pair(u"sharedPorts", ports({7}))));
}

} // namespace
