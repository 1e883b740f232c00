#include "app/background_operation.h"

#include "app/error_log.h"
#include "app/wait_dialog.h"
#include "async/srw_lock.h"

namespace tidelink {
namespace {

constexpr DWORD patience_ms = 500;

/// The pointer is an hourglass while this lives.
class wait_cursor {
public:
    wait_cursor() noexcept : previous_(::SetCursor(::LoadCursorW(nullptr, IDC_WAIT))) {}
    wait_cursor(const wait_cursor&) = delete;
    wait_cursor& operator=(const wait_cursor&) = delete;
    ~wait_cursor() { ::SetCursor(previous_); }

private:
    HCURSOR previous_;
};

/// Shows the wait dialog until the end of the operation is told.
class end_watch {
public:
    end_watch(details::operation_end& end, girder::ui_thread& thread, const girder::cancellation_source& cancel)
        : end_(end), box_(std::make_shared<wait_dialog>(cancel, [this, &thread] { return close_at_end(thread); }))
    {}
    end_watch(const end_watch&) = delete;
    end_watch& operator=(const end_watch&) = delete;
    ~end_watch() { end_.do_not_call(); }

    void show(HWND owner) const { box_->show(owner); }

private:
    /// \return whether the end is still to come
    bool close_at_end(girder::ui_thread& thread) const
    {
        const std::weak_ptr<wait_dialog> weak = box_;
        return end_.call_at_end([&thread, weak] {
            thread.post([weak] {
                if (const auto box = weak.lock())
                    box->close();
            });
        });
    }

    details::operation_end& end_;
    std::shared_ptr<wait_dialog> box_;
};

} // namespace

namespace details {

void operation_end::tell(std::exception_ptr error) noexcept
{
    const girder::exclusive_lock guard(lock_);
    told_ = true;
    error_ = std::move(error);
    ::WakeConditionVariable(&ended_);
    try {
        // Called under the lock, so that the waiting side cannot be gone meanwhile.
        if (notice_)
            notice_();
    } catch (...) {
        // The dialog stays open. Esc ends it, because it finds the end told.
        log_error(std::current_exception());
    }
}

bool operation_end::wait_briefly() noexcept
{
    const girder::exclusive_lock guard(lock_);
    while (!told_)
        if (!::SleepConditionVariableSRW(&ended_, &lock_, patience_ms, 0))
            break;
    return told_;
}

void operation_end::await(HWND owner, girder::ui_thread& thread, const girder::cancellation_source& cancel)
{
    if (!wait_briefly()) {
        const wait_cursor cursor;
        try {
            end_watch(*this, thread, cancel).show(owner);
        } catch (...) {
            cancel.request();
            throw;
        }
    }
    if (!told()) {
        cancel.request();
        throw girder::operation_cancelled();
    }
    if (error_)
        std::rethrow_exception(error_);
}

bool operation_end::call_at_end(std::function<void()> notice)
{
    const girder::exclusive_lock guard(lock_);
    if (!told_)
        notice_ = std::move(notice);
    return !told_;
}

void operation_end::do_not_call() noexcept
{
    const girder::exclusive_lock guard(lock_);
    notice_ = nullptr;
}

bool operation_end::told() noexcept
{
    const girder::exclusive_lock guard(lock_);
    return told_;
}

} // namespace details
} // namespace tidelink
