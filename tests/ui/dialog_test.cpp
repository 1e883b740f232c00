#include "base/system_error.h"
#include "test_dialogs.h"
#include "ui/dialog.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace girder::ui {
namespace {

/// A dialog that fails at one message.
class probe : public dialog {
public:
    void open(int template_id = IDD_PROBE) { create_modeless(template_id, nullptr, "the call's name"); }
    void run() { run_modal(IDD_PROBE, nullptr); }

    UINT failing = WM_NULL;

protected:
    bool on_initialise() override
    {
        fail_at(WM_INITDIALOG);
        return true;
    }
    bool on_message(UINT message, WPARAM, LPARAM, LRESULT&) override
    {
        fail_at(message);
        return false;
    }
    void on_error(std::exception_ptr) noexcept override { ADD_FAILURE(); }

private:
    void fail_at(UINT message) const
    {
        if (message == failing)
            throw std::runtime_error("handler");
    }
};

TEST(dialog_test, errors_while_creating_come_out_of_the_creating_call_and_leave_no_window)
{
    probe dialog;
    for (const UINT message : {UINT{WM_INITDIALOG}, UINT{WM_SETFONT}}) {
        dialog.failing = message;
        EXPECT_THROW(dialog.open(), std::runtime_error);
        EXPECT_EQ(dialog.window(), nullptr);
        EXPECT_THROW(dialog.run(), std::runtime_error);
        EXPECT_EQ(dialog.window(), nullptr);
    }
    dialog.failing = WM_NULL;
    try {
        dialog.open(9999);
        FAIL() << "there is no such template";
    } catch (const system_error& error) {
        EXPECT_EQ(error.code(), DWORD{ERROR_RESOURCE_NAME_NOT_FOUND});
        EXPECT_STREQ(error.what(), "the call's name");
    }
    EXPECT_NO_THROW(dialog.open()) << "the object can be used again";
}

} // namespace
} // namespace girder::ui
