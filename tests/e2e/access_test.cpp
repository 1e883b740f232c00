#include "base/utf.h"
#include "fixture.h"
#include "ui_driver/polling.h"

namespace {

using namespace e2e;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Pair;

constexpr char16_t security_title[] = u"Tidelink Port Server Security";

class access_test : public machine_test {
protected:
    static void store(const std::u16string& sddl) { settings_key::write(u"securityDescriptor", text(sddl)); }

    static std::string words(const utility& program)
    {
        return girder::to_utf8(program.control(id::access_words).text());
    }

    static ui_driver::dialog main_window(const utility& program)
    {
        return ui_driver::find_dialogs(main_window_title, program.process_id()).at(0);
    }

    /// The system's editor, whose title is the system's: the window that the main window is disabled for.
    static ui_driver::dialog open_editor(const utility& program)
    {
        const HWND main = main_window(program).handle();
        HWND editor = nullptr;
        const auto is_open = [&] {
            for (HWND window = nullptr; (window = ::FindWindowExW(nullptr, window, nullptr, nullptr)) != nullptr;)
                if (::GetWindow(window, GW_OWNER) == main && ::IsWindowVisible(window) && ::IsWindowEnabled(window))
                    editor = window;
            return editor != nullptr && !::IsWindowEnabled(main);
        };
        if (!ui_driver::eventually(is_open))
            throw ui_driver::timed_out("no editor");
        return ui_driver::dialog(editor);
    }

    static void edit(const utility& program)
    {
        program.control(id::security).post_click();
        utility::answer(open_editor(program), id::ok);
    }
};

TEST_F(access_test, ok_in_the_systems_editor_is_a_change_and_apply_stores_the_normalised_list)
{
    store(u"D:(A;;0xc0100000;;;BA)");
    const utility program;
    EXPECT_EQ(words(program), "1 account or group");
    edit(program);
    EXPECT_TRUE(ui_driver::eventually([&] { return program.apply_enabled(); }));
    EXPECT_THAT(settings_key::read(), testing::Contains(Pair(u"securityDescriptor", text(u"D:(A;;0xc0100000;;;BA)"))))
        << "not before Apply";
    program.control(id::apply).click();
    EXPECT_FALSE(program.apply_enabled());
    EXPECT_THAT(settings_key::read(),
                testing::Contains(Pair(u"securityDescriptor", text(u"D:(A;;0xc0100004;;;SU)(A;;0xc0100000;;;BA)"))));
    EXPECT_EQ(program.close(), 0U);
}

TEST_F(access_test, the_default_list_edited_without_a_change_is_not_stored)
{
    const utility program;
    EXPECT_EQ(words(program), "Everyone");
    edit(program);
    EXPECT_TRUE(ui_driver::eventually([&] { return program.apply_enabled(); }));
    program.control(id::apply).click();
    EXPECT_THAT(settings_key::read(), ElementsAre(Pair(u"sharedPorts", ports({1, 3, 7, 10}))));
}

TEST_F(access_test, an_unreadable_list_is_reported_kept_and_replaced_when_that_is_wanted)
{
    store(u"garbage");
    const utility program;
    EXPECT_THAT(words(program), HasSubstr("Warning"));
    program.control(id::security).post_click();
    utility::answer(program.message(error_title), id::ok);
    utility::answer(program.message(security_title), id::no);
    EXPECT_FALSE(program.apply_enabled());
    program.control(id::auto_discovery).click();
    program.control(id::apply).click();
    EXPECT_THAT(settings_key::read(), testing::Contains(Pair(u"securityDescriptor", text(u"garbage"))));

    program.control(id::security).post_click();
    utility::answer(program.message(error_title), id::ok);
    utility::answer(program.message(security_title), id::yes);
    utility::answer(open_editor(program), id::ok);
    EXPECT_TRUE(ui_driver::eventually([&] { return program.apply_enabled(); }));
    program.control(id::apply).click();
    EXPECT_EQ(words(program), "Everyone");
    EXPECT_THAT(settings_key::read(), testing::Not(testing::Contains(testing::Key(u"securityDescriptor"))))
        << "the default is not stored";
}

TEST_F(access_test, the_main_window_closes_under_the_open_editor)
{
    const utility program;
    program.control(id::security).post_click();
    open_editor(program);
    main_window(program).post_close();
    EXPECT_EQ(program.exit_code(), 0U);
    EXPECT_FALSE(settings_key::read().contains(u"securityDescriptor"));
}

} // namespace
