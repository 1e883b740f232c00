#include "async/byte_lock.h"
#include "async/continuation.h"
#include "async/task.h"
#include "support/detached.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

// The part of suspending and resuming that knows no operating system, on plain threads: made for ThreadSanitizer.

namespace {

using namespace std::chrono_literals;
using girder::cancellation;
using girder::task;
using support::running;

TEST(byte_lock_test, one_holder_at_a_time)
{
    constexpr int threads = 4;
    constexpr int rounds = 20'000;
    girder::byte_lock lock;
    int counter = 0;
    {
        std::vector<std::jthread> workers;
        for (int i = 0; i < threads; ++i)
            workers.emplace_back([&] {
                for (int round = 0; round < rounds; ++round) {
                    const std::lock_guard guard(lock);
                    ++counter;
                }
            });
    }
    EXPECT_EQ(counter, threads * rounds);
}

/// A thread that runs what it is given, in order.
class worker {
public:
    void post(std::function<void()> callable)
    {
        const std::lock_guard guard(mutex_);
        queue_.push_back(std::move(callable));
        changed_.notify_one();
    }

private:
    void work(const std::stop_token& stop)
    {
        std::unique_lock guard(mutex_);
        while (changed_.wait(guard, stop, [this] { return !queue_.empty(); })) {
            const auto next = std::move(queue_.front());
            queue_.pop_front();
            guard.unlock();
            next();
            guard.lock();
        }
    }

    std::mutex mutex_;
    std::condition_variable_any changed_;
    std::deque<std::function<void()>> queue_;
    std::jthread thread_{[this](const std::stop_token& stop) { work(stop); }};
};

/// Continues on the worker, as the awaitables of the program do on theirs.
class hop_to {
public:
    explicit hop_to(worker& target) noexcept : target_(target) {}
    hop_to(const hop_to&) = delete;
    hop_to& operator=(const hop_to&) = delete;
    ~hop_to()
    {
        if (travelling_)
            travelling_->close();
    }

    bool await_ready() const noexcept { return false; }
    void await_suspend(std::coroutine_handle<> operation)
    {
        travelling_ = std::make_shared<girder::details::hand_off>(operation);
        target_.post([arriving = travelling_] { arriving->arrive(); });
    }
    void await_resume() const noexcept {}

private:
    worker& target_;
    std::shared_ptr<girder::details::hand_off> travelling_;
};

task<int> hop_between(worker& first, worker& second, int times)
{
    int hops = 0;
    for (int i = 0; i < times; ++i) {
        co_await hop_to(first);
        ++hops;
        co_await hop_to(second);
        ++hops;
    }
    co_return hops;
}

running sum_up(task<int> operation, int& sum, std::atomic<int>& ended)
{
    sum = co_await std::move(operation);
    ++ended;
    ended.notify_one();
}

TEST(hand_off_test, tasks_hop_between_threads)
{
    constexpr int tasks = 50;
    constexpr int hops = 200;
    std::vector<int> sums(tasks);
    std::atomic<int> ended = 0;
    std::vector<running> operations;
    // Destroyed first: no thread runs an operation any more when it is destroyed.
    worker first;
    worker second;
    for (int& sum : sums)
        operations.push_back(sum_up(hop_between(first, second, hops), sum, ended));
    for (int seen = ended; seen < tasks; seen = ended)
        ended.wait(seen);
    EXPECT_EQ(sums, std::vector<int>(tasks, 2 * hops));
}

/// An event on a thread of its own, with the shape that the thread pool's have.
class thread_event {
public:
    using target = std::chrono::microseconds;
    using call = thread_event*;

    thread_event(void (*on_end)(void*, call), void* context)
        : thread_([this, on_end, context] {
              {
                  std::unique_lock guard(mutex_);
                  changed_.wait(guard, [this] { return started_ || taken_back_; });
                  changed_.wait_until(guard, due_, [this] { return taken_back_ || due_ <= now(); });
                  if (taken_back_)
                      return;
              }
              on_end(context, this);
          })
    {}
    thread_event(const thread_event&) = delete;
    thread_event& operator=(const thread_event&) = delete;
    ~thread_event()
    {
        {
            const std::lock_guard guard(mutex_);
            taken_back_ = true;
            changed_.notify_one();
        }
        if (thread_.joinable())
            thread_.join();
        start_returned_ = false;
    }

    void start(target delay)
    {
        set(now() + delay);
        // The system's call may still be busy with the object when the event has long been told.
        std::this_thread::yield();
        start_returned_ = true;
    }
    void end_now(target) { set(now()); }
    static void detach(call each) { each->thread_.detach(); }

private:
    static std::chrono::steady_clock::time_point now() { return std::chrono::steady_clock::now(); }
    void set(std::chrono::steady_clock::time_point due)
    {
        const std::lock_guard guard(mutex_);
        due_ = due;
        started_ = true;
        changed_.notify_one();
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    std::chrono::steady_clock::time_point due_;
    bool started_ = false;
    bool taken_back_ = false;
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

/// The last step of an operation: whoever sees the mark may destroy it.
struct mark_and_stay {
    std::atomic<int>& mark;

    bool await_ready() const noexcept { return false; }
    void await_suspend(std::coroutine_handle<>) const noexcept
    {
        std::atomic<int>& outlives_this = mark;
        outlives_this = 1;
        outlives_this.notify_one();
    }
    void await_resume() const noexcept {}
};

running wait_once(std::chrono::microseconds delay, cancellation cancelled, bool& was_cancelled, std::atomic<int>& ended)
{
    try {
        co_await thread_wait(delay, std::move(cancelled));
    } catch (const girder::operation_cancelled&) {
        was_cancelled = true;
    }
    co_await mark_and_stay(ended);
}

TEST(cancellable_wait_test, ends_once_whether_by_itself_or_by_a_cancellation)
{
    int cancelled = 0;
    constexpr int rounds = 300;
    for (int round = 0; round < rounds; ++round) {
        std::stop_source source;
        std::jthread canceller([&source, round] {
            std::this_thread::sleep_for(std::chrono::microseconds(round % 40));
            source.request_stop();
        });
        bool was_cancelled = false;
        std::atomic<int> ended = 0;
        const running operation =
            wait_once(std::chrono::microseconds(round % 50), source.get_token(), was_cancelled, ended);
        ended.wait(0);
        cancelled += was_cancelled ? 1 : 0;
    }
    EXPECT_GT(cancelled, 0);
}

TEST(cancellable_wait_test, a_cancellation_that_comes_before_the_wait_ends_it_too)
{
    std::stop_source source;
    source.request_stop();
    bool was_cancelled = false;
    std::atomic<int> ended = 0;
    const running operation = wait_once(1h, source.get_token(), was_cancelled, ended);
    ended.wait(0);
    EXPECT_TRUE(was_cancelled);
}

TEST(cancellable_wait_test, an_abandoned_wait_is_taken_back)
{
    bool was_cancelled = false;
    std::atomic<int> ended = 0;
    {
        const running operation = wait_once(1h, {}, was_cancelled, ended);
    }
    EXPECT_EQ(ended, 0);
}

} // namespace
