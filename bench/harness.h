#pragma once

#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <vector>

// Comparisons of run times. Only ratios are reported: participants are timed in turn, many times over, on the same
// fresh arguments, and every round gives one ratio; the median of those is steady where absolute times are not.

namespace bench {

/// Makes the compiler believe that the value is used.
template <typename T>
void keep(const T& value)
{
    asm volatile("" : : "g"(&value) : "memory");
}

/// The arguments of a round are drawn from this.
using random_source = std::mt19937_64;

struct participant {
    std::string name;
    /// The whole work of a round, on the arguments drawn last: ideally 50 microseconds to a few milliseconds.
    std::function<void()> run;
    /// Whether the results for the arguments drawn last are the expected ones. Not timed.
    std::function<bool()> is_right;
    /// Clears up after `run`, untimed; may be empty.
    std::function<void()> finish = {};
};

struct comparison {
    std::string work;    ///< what is done, a row's title
    double goal;         ///< highest ratio that holds; 0: none, the row only informs
    participant subject; ///< ours
    std::vector<participant> peers;
    std::function<void(random_source&)> draw;
    int checked_draws = 20;
    int rounds = 301;
};

/// Runs comparisons and prints them as a Markdown table to standard output.
class report {
public:
    explicit report(const std::string& title);

    /// Checks all participants on several draws, then times them and prints the row: the best peer by its median time,
    /// the ratio to it, and whether the goal holds. Ends the process where a participant's result is wrong.
    void compare(const comparison& works);

    /// Prints a row for a figure that is no run time: at most `goal` holds.
    /// \param unit  of both, e.g. "KiB"
    void state(const std::string& what, double figure, double goal, const char* unit);

    /// Exit code of a benchmark: 0, or 2 where a goal was missed.
    int exit_code() const { return missed_ ? 2 : 0; }

private:
    random_source random_{std::random_device{}()};
    bool missed_ = false;
};

} // namespace bench
