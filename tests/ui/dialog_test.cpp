#include "base/system_error.h"
#include "test_dialogs.h"
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

    void open(int template_id = IDD_PROBE) { create_modeless(template_id, nullptr, "the call's name"); }
    INT_PTR run(HWND owner) { return run_modal(IDD_PROBE, owner); }
    LRESULT push(UINT message, WPARAM notification = BN_CLICKED) const
    {
        return ::SendMessageW(window(), message, MAKEWPARAM(IDC_PUSH, notification), 0);
    }
    LRESULT notify(UINT code) const
    {
        const NMHDR sent{.hwndFrom = control(IDC_LIST), .idFrom = IDC_LIST, .code = code};
        return ::SendMessageW(window(), WM_NOTIFY, IDC_LIST, reinterpret_cast<LPARAM>(&sent));
    }

    using dialog::end;
    using dialog::end_with;

    std::function<void()> initialising = [] {};
    std::function<void()> pushed = [] {};
    std::function<std::optional<LRESULT>(UINT)> received = [](UINT) { return std::nullopt; };
    std::function<void(std::exception_ptr)> failed = [this](const std::exception_ptr&) { ++failures; };
    int failures = 0;

protected:
    bool on_initialise() override
    {
        initialising();
        return true;
    }
    bool on_command(WPARAM command, LPARAM) override
    {
        static constexpr command_route<probe> commands[] = {{IDC_PUSH, BN_CLICKED, &probe::on_push}};
        return route_command<probe>(*this, commands, command);
    }
    bool on_notify(const NMHDR& notification, LRESULT& result) override
    {
        static constexpr notify_route<probe> clicks[] = {{IDC_LIST, NM_CLICK, &probe::on_click}};
        return route_notification<probe>(*this, clicks, notification, result);
    }
    bool on_message(UINT message, WPARAM, LPARAM, LRESULT& result) override
    {
        const std::optional<LRESULT> answer = received(message);
        result = answer.value_or(0);
        return answer.has_value();
    }
    void on_error(std::exception_ptr error) noexcept override { failed(std::move(error)); }

private:
    void on_push() { pushed(); }
    LRESULT on_click(const NMHDR&) { return 42; }
};

[[noreturn]] void fail()
{
    throw std::runtime_error("handler");
}

TEST(dialog_test, registered_message_is_a_command_with_result_1)
{
    probe dialog;
    dialog.open();
    int handled = 0;
    dialog.pushed = [&] {
        if (++handled % 3 != 1)
            return;
        EXPECT_EQ(dialog.push(WM_COMMAND), 0) << "inside a handler";
        EXPECT_EQ(dialog.push(second_message), 1) << "inside a handler";
    };
    EXPECT_EQ(dialog.push(WM_COMMAND), 0);
    EXPECT_EQ(dialog.push(second_message), 1);
    EXPECT_EQ(handled, 6);
    EXPECT_EQ(dialog.push(second_message, BN_DBLCLK), 0);
}

TEST(dialog_test, errors_of_handlers_stop_at_the_procedure)
{
    probe dialog;
    dialog.open();
    dialog.pushed = fail;
    EXPECT_EQ(dialog.push(WM_COMMAND), 0);
    EXPECT_EQ(dialog.push(second_message), 1);
    dialog.received = [](UINT message) -> std::optional<LRESULT> {
        return message == WM_APP ? (fail(), std::nullopt) : std::nullopt;
    };
    ::SendMessageW(dialog.window(), WM_APP, 0, 0);
    EXPECT_EQ(dialog.failures, 3);
}

TEST(dialog_test, results_of_messages_reach_the_sender)
{
    probe dialog;
    dialog.open();
    EXPECT_EQ(dialog.notify(NM_CLICK), 42);
    EXPECT_EQ(dialog.notify(NM_RCLICK), 0);
    dialog.received = [](UINT) { return 77; };
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
    EXPECT_EQ(dialog.failures, 0);

    dialog.received = [](UINT) { return std::nullopt; };
    try {
        dialog.open(9999);
        FAIL() << "there is no such template";
    } catch (const system_error& error) {
        EXPECT_EQ(error.code(), DWORD{ERROR_RESOURCE_NAME_NOT_FOUND});
        EXPECT_STREQ(error.what(), "the call's name");
    }
    EXPECT_NO_THROW(dialog.open()) << "the object can be used again";
}

TEST(dialog_test, modal_dialog_ends_with_a_result_or_an_error)
{
    probe owner;
    owner.open();
    ::ShowWindow(owner.window(), SW_SHOW);
    const HWND owner_window = owner.window();
    probe dialog;
    dialog.initialising = [&] { dialog.end(-1); };
    EXPECT_EQ(dialog.run(owner_window), -1);
    EXPECT_EQ(owner.window(), owner_window) << "the owner does not take the new window's object";

    dialog.initialising = [&] { ::PostMessageW(dialog.window(), WM_COMMAND, IDC_PUSH, 0); };
    dialog.pushed = fail;
    dialog.failed = [&](std::exception_ptr error) { dialog.end_with(std::move(error)); };
    EXPECT_THROW(dialog.run(nullptr), std::runtime_error);
}

TEST(dialog_test, handler_may_destroy_the_window)
{
    probe dialog;
    dialog.open();
    dialog.pushed = [&] { ::DestroyWindow(dialog.window()); };
    dialog.push(second_message);
    EXPECT_EQ(dialog.window(), nullptr);
}

} // namespace
} // namespace girder::ui
