#pragma once

#include "fixture.h"
#include "ui_driver/remote_memory.h"

#include <cstdint>
#include <cstdlib>

namespace e2e {

/// The time of day in a Wine prefix whose processes have been given shifted_clock.c. Shifted by nothing again with the
/// object.
class time_of_day {
public:
    /// \param program  its window is there
    explicit time_of_day(const utility& program)
        : program_(program.process()), memory_(program.window().handle(), sizeof(FILETIME))
    {
        set(std::chrono::hours(0));
        unshifted_ = seen();
    }
    time_of_day(const time_of_day&) = delete;
    time_of_day& operator=(const time_of_day&) = delete;
    ~time_of_day() { set(std::chrono::hours(0)); }

    /// Shifts it from the machine's, and fails where the program does not see that.
    void shift(std::chrono::hours by) const
    {
        set(by);
        const auto wrong = [&] { return std::chrono::abs(seen() - unshifted_ - by); };
        ASSERT_TRUE(ui_driver::eventually([&] { return wrong() < std::chrono::minutes(1); }, hang));
    }

private:
    using ticks = std::chrono::duration<long long, std::ratio<1, 10'000'000>>;

    static void set(std::chrono::hours shift)
    {
        const char* const name = std::getenv("TIDELINK_SHIFTED_CLOCK");
        const std::chrono::duration<std::int64_t> seconds = shift;
        std::fstream(name ? name : "", std::ios::in | std::ios::out | std::ios::binary)
            .write(reinterpret_cast<const char*>(&seconds), sizeof seconds);
    }

    /// What the program reads from its clock, less the time that passes meanwhile.
    ticks seen() const
    {
        // The system's libraries are at the same place in all processes.
        void* const read_clock = reinterpret_cast<void*>(&::GetSystemTimeAsFileTime);
        const girder::unique_kernel_handle thread(::CreateRemoteThread(
            program_, nullptr, 0, reinterpret_cast<LPTHREAD_START_ROUTINE>(read_clock), memory_.address(), 0, nullptr));
        ::WaitForSingleObject(thread.get(), INFINITE);
        ULARGE_INTEGER time{};
        memory_.read(&time, sizeof time);
        return ticks(time.QuadPart) -
               std::chrono::duration_cast<ticks>(std::chrono::steady_clock::now().time_since_epoch());
    }

    HANDLE program_;
    ui_driver::remote_memory memory_;
    ticks unshifted_{};
};

} // namespace e2e
