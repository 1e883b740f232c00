#include "async/byte_lock.h"
#include "async/continuation.h"
#include "async/task.h"
#include "observed.h"
#include "support/counted.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <thread>

// The part of suspending and resuming that knows no operating system, on plain threads: made for ThreadSanitizer.

namespace {

using namespace std::chrono_literals;
using girder::cancellation;
using girder::task;
using support::counted;

constexpr auto for_ever = 1h;

TEST(byte_lock_test, one_holder_at_a_time)
{
    constexpr int rounds = 20'000;
    girder::byte_lock lock;
    int counter = 0;
    const auto count = [&] {
        for (int round = 0; round < rounds; ++round) {
            const std::lock_guard guard(lock);
            ++counter;
        }
    };
    {
        const std::jthread workers[] = {std::jthread(count), std::jthread(count), std::jthread(count)};
    }
    EXPECT_EQ(counter, 3 * rounds);
}

/// Continues on a thread of its own. Not a detached one: the runtime library of Windows sometimes loses a thread that
/// is detached while it starts.
struct hop {
    std::jthread& thread;

    bool await_ready() const noexcept { return false; }
    void await_suspend(std::coroutine_handle<> operation) const
    {
        const auto travelling = std::make_shared<girder::details::hand_off>(operation);
        std::jthread& outlives_this = thread;
        outlives_this = std::jthread([travelling] { travelling->arrive(); });
    }
    void await_resume() const noexcept {}
};

/// An event on a thread of its own, with the shape that the thread pool's have.
class thread_event {
public:
    using target = std::chrono::microseconds;
    using call = thread_event*;

    thread_event(void (*on_end)(void*, call), void* context)
        : thread_([this, on_end, context] {
              while (clock::now() < due_.load())
                  std::this_thread::yield();
              on_end(context, this);
          })
    {}
    thread_event(const thread_event&) = delete;
    thread_event& operator=(const thread_event&) = delete;
    ~thread_event() { start_returned_ = false; }

    void start(target delay)
    {
        due_ = clock::now() + delay;
        // The system's call may still be busy with the object when the event has long been told.
        std::this_thread::yield();
        start_returned_ = true;
    }
    void end_now(target) { due_ = clock::time_point(); }
    static void detach(call each) { each->thread_.detach(); }

private:
    using clock = std::chrono::steady_clock;

    std::atomic<clock::time_point> due_ = clock::time_point::max();
    bool start_returned_ = false;
    std::thread thread_;
};

class thread_wait {
public:
    thread_wait(std::chrono::microseconds delay, cancellation cancelled)
        : delay_(delay), cancelled_(std::move(cancelled))
    {}
    thread_wait(const thread_wait&) = delete;
    thread_wait& operator=(const thread_wait&) = delete;
    ~thread_wait()
    {
        if (wait_)
            wait_->close();
    }

    bool await_ready() const noexcept { return false; }
    void await_suspend(std::coroutine_handle<> operation)
    {
        const auto wait = std::make_shared<girder::details::cancellable_wait<thread_event>>(operation, cancelled_);
        wait_ = wait;
        wait->start(delay_);
    }
    void await_resume() const { girder::throw_if_cancelled(cancelled_); }

private:
    std::chrono::microseconds delay_;
    cancellation cancelled_;
    std::shared_ptr<girder::details::cancellable_wait<thread_event>> wait_;
};

task<> hop_and_wait(std::jthread& thread, std::chrono::microseconds delay, cancellation cancelled)
{
    const counted owned;
    co_await hop(thread);
    co_await thread_wait(delay, std::move(cancelled));
}

TEST(cancellable_wait_test, ends_once_whether_by_itself_or_by_a_cancellation)
{
    int cancelled = 0;
    constexpr int rounds = 300;
    for (int round = 0; round < rounds; ++round) {
        const girder::cancellation_source source;
        const std::jthread canceller([&source, round] {
            std::this_thread::sleep_for(std::chrono::microseconds(round % 40));
            source.request();
        });
        const std::chrono::microseconds delay = round % 3 == 0 ? for_ever : std::chrono::microseconds(round % 50);
        std::jthread hopping;
        support::outcome result;
        const support::running operation = support::observe(hop_and_wait(hopping, delay, source.get()), result);
        ASSERT_TRUE(result.wait());
        cancelled += result.was_cancelled ? 1 : 0;
    }
    EXPECT_GE(cancelled, rounds / 3);
    EXPECT_EQ(counted::alive, 0);
}

} // namespace
