#include "base/system_error.h"
#include "test_dialogs.h"
#include "ui/controls.h"
#include "ui/dialog.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <stdexcept>
#include <utility>

namespace girder::ui {
namespace {

const UINT second_message = ::RegisterWindowMessageW(L"girder_test_command");

/// A dialog whose behaviour each test fills in.
class probe : public dialog {
public:
    probe() { set_command_message(second_message); }

    void open() { create_modeless(IDD_PROBE, nullptr, "CreateDialogParamW"); }
    INT_PTR run(HWND owner) { return run_modal(IDD_PROBE, owner); }

    using dialog::create_modeless;
    using dialog::end;
    using dialog::end_with;

    std::function<void()> initialising = [] {};
    std::function<void()> pushed = [] {};
    std::function<std::optional<LRESULT>(UINT)> received = [](UINT) { return std::nullopt; };
    std::function<void(std::exception_ptr)> failed = [this](std::exception_ptr error) { errors.push_back(error); };
    std::vector<std::exception_ptr> errors;
    LRESULT notification_result = 0;

protected:
    bool on_initialise() override
    {
        initialising();
        return true;
    }
    bool on_command(WPARAM command, LPARAM) override;
    bool on_notify(const NMHDR& notification, LRESULT& result) override;
    bool on_message(UINT message, WPARAM, LPARAM, LRESULT& result) override
    {
        const std::optional<LRESULT> answer = received(message);
        result = answer.value_or(0);
        return answer.has_value();
    }
    void on_error(std::exception_ptr error) noexcept override { failed(std::move(error)); }

private:
    void on_push() { pushed(); }
    LRESULT on_click(const NMHDR&) { return notification_result; }

    static const command_route<probe> commands[];
    static const notify_route<probe> notifications[];
};

constexpr command_route<probe> probe::commands[] = {{IDC_PUSH, BN_CLICKED, &probe::on_push}};
constexpr notify_route<probe> probe::notifications[] = {{IDC_LIST, static_cast<UINT>(NM_CLICK), &probe::on_click}};

bool probe::on_command(WPARAM command, LPARAM)
{
    return route_command<probe>(*this, commands, command);
}

bool probe::on_notify(const NMHDR& notification, LRESULT& result)
{
    return route_notification<probe>(*this, notifications, notification, result);
}

[[noreturn]] void fail()
{
    throw std::runtime_error("handler");
}

LRESULT send_push(const probe& to, UINT message)
{
    return ::SendMessageW(to.window(), message, MAKEWPARAM(IDC_PUSH, BN_CLICKED), 0);
}

TEST(dialog_test, registered_message_is_a_command_with_result_1)
{
    probe dialog;
    dialog.open();
    int pushes = 0;
    dialog.pushed = [&] { ++pushes; };
    EXPECT_EQ(send_push(dialog, WM_COMMAND), 0);
    EXPECT_EQ(send_push(dialog, second_message), 1);
    EXPECT_EQ(pushes, 2);

    // A message inside the handler has a result of its own.
    bool inside = false;
    UINT inner_message = WM_COMMAND;
    dialog.pushed = [&] {
        if (!std::exchange(inside, true))
            send_push(dialog, inner_message);
        inside = false;
    };
    EXPECT_EQ(send_push(dialog, second_message), 1);
    inner_message = second_message;
    EXPECT_EQ(send_push(dialog, WM_COMMAND), 0);

    EXPECT_EQ(::SendMessageW(dialog.window(), second_message, MAKEWPARAM(IDC_PUSH, BN_DBLCLK), 0), 0);
    EXPECT_EQ(::SendMessageW(dialog.window(), second_message, MAKEWPARAM(IDC_CHECK, BN_CLICKED), 0), 0);
}

TEST(dialog_test, errors_of_handlers_stop_at_the_procedure)
{
    probe dialog;
    dialog.open();
    dialog.pushed = fail;
    EXPECT_EQ(send_push(dialog, WM_COMMAND), 0);
    EXPECT_EQ(send_push(dialog, second_message), 1);
    dialog.received = [](UINT message) -> std::optional<LRESULT> {
        return message == WM_APP ? (fail(), std::nullopt) : std::nullopt;
    };
    ::SendMessageW(dialog.window(), WM_APP, 0, 0);
    ASSERT_EQ(dialog.errors.size(), 3U);
    EXPECT_THROW(std::rethrow_exception(dialog.errors.back()), std::runtime_error);
}

TEST(dialog_test, results_of_messages_reach_the_sender)
{
    probe dialog;
    dialog.open();
    dialog.notification_result = 42;
    const NMHDR click{.hwndFrom = dialog.control(IDC_LIST), .idFrom = IDC_LIST, .code = static_cast<UINT>(NM_CLICK)};
    EXPECT_EQ(::SendMessageW(dialog.window(), WM_NOTIFY, IDC_LIST, reinterpret_cast<LPARAM>(&click)), 42);
    const NMHDR other{.hwndFrom = dialog.control(IDC_LIST), .idFrom = IDC_LIST, .code = static_cast<UINT>(NM_RCLICK)};
    EXPECT_EQ(::SendMessageW(dialog.window(), WM_NOTIFY, IDC_LIST, reinterpret_cast<LPARAM>(&other)), 0);

    dialog.received = [](UINT) -> std::optional<LRESULT> { return 77; };
    EXPECT_EQ(::SendMessageW(dialog.window(), WM_APP, 0, 0), 77);
    EXPECT_EQ(::SendMessageW(dialog.window(), WM_CTLCOLORSTATIC, 0, 0), 77);
    dialog.received = [](UINT) { return std::nullopt; };
}

TEST(dialog_test, errors_while_creating_come_out_of_the_creating_call)
{
    probe dialog;
    dialog.initialising = fail;
    EXPECT_THROW(dialog.open(), std::runtime_error);
    EXPECT_EQ(dialog.window(), nullptr);
    EXPECT_THROW(dialog.run(nullptr), std::runtime_error);
    EXPECT_EQ(dialog.window(), nullptr);

    dialog.initialising = [] {};
    dialog.received = [](UINT message) -> std::optional<LRESULT> {
        return message == WM_SETFONT ? (fail(), std::nullopt) : std::nullopt;
    };
    EXPECT_THROW(dialog.open(), std::runtime_error);
    EXPECT_TRUE(dialog.errors.empty());

    dialog.received = [](UINT) { return std::nullopt; };
    EXPECT_NO_THROW(dialog.open()) << "the object can be used again";
}

TEST(dialog_test, missing_template_is_a_system_error)
{
    probe dialog;
    try {
        dialog.create_modeless(9999, nullptr, "the call's name");
        FAIL();
    } catch (const system_error& error) {
        EXPECT_EQ(error.code(), DWORD{ERROR_RESOURCE_NAME_NOT_FOUND});
        EXPECT_STREQ(error.what(), "the call's name");
    }
}

TEST(dialog_test, modal_dialog_ends_with_a_result_or_an_error)
{
    probe dialog;
    dialog.initialising = [&] { dialog.end(-1); };
    EXPECT_EQ(dialog.run(nullptr), -1);

    dialog.initialising = [&] { ::PostMessageW(dialog.window(), WM_COMMAND, IDC_PUSH, 0); };
    dialog.pushed = fail;
    dialog.failed = [&](std::exception_ptr error) { dialog.end_with(std::move(error)); };
    EXPECT_THROW(dialog.run(nullptr), std::runtime_error);
}

TEST(dialog_test, owner_does_not_take_the_object_of_a_modal_dialog)
{
    probe owner;
    owner.open();
    ::ShowWindow(owner.window(), SW_SHOW);
    const HWND owner_window = owner.window();
    HWND modal_window = nullptr;
    owner.pushed = [&] {
        probe modal;
        modal.initialising = [&] {
            modal_window = modal.window();
            modal.end(5);
        };
        EXPECT_EQ(modal.run(owner.window()), 5);
    };
    send_push(owner, WM_COMMAND);
    EXPECT_EQ(owner.window(), owner_window);
    EXPECT_NE(modal_window, nullptr);
    EXPECT_NE(modal_window, owner_window);
}

TEST(dialog_test, handler_may_destroy_the_window)
{
    probe dialog;
    dialog.open();
    dialog.pushed = [&] { ::DestroyWindow(dialog.window()); };
    send_push(dialog, second_message);
    EXPECT_EQ(dialog.window(), nullptr);
}

TEST(dialog_test, destroyed_object_takes_its_window_along)
{
    HWND window = nullptr;
    {
        probe dialog;
        dialog.open();
        window = dialog.window();
    }
    EXPECT_FALSE(::IsWindow(window));
}

TEST(controls_test, disabling_the_focused_control_passes_the_focus_on)
{
    probe dialog;
    dialog.open();
    ::ShowWindow(dialog.window(), SW_SHOW);
    ::SetFocus(dialog.control(IDC_PUSH));
    ASSERT_EQ(::GetFocus(), dialog.control(IDC_PUSH));
    set_enabled(dialog.control(IDC_PUSH), false);
    EXPECT_EQ(::GetFocus(), dialog.control(IDOK));
    EXPECT_FALSE(::IsWindowEnabled(dialog.control(IDC_PUSH)));
}

} // namespace
} // namespace girder::ui
