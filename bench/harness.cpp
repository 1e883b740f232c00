#include "harness.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace bench {
namespace {

using seconds = std::chrono::duration<double>;

constexpr int warm_up_rounds = 5;

double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

double time_of(const participant& timed)
{
    const auto start = std::chrono::steady_clock::now();
    timed.run();
    const seconds taken = std::chrono::steady_clock::now() - start;
    if (timed.finish)
        timed.finish();
    return taken.count();
}

std::vector<const participant*> participants_of(const comparison& works)
{
    std::vector<const participant*> all{&works.subject};
    for (const participant& peer : works.peers)
        all.push_back(&peer);
    return all;
}

void check(const comparison& works, random_source& random)
{
    for (int draw = 0; draw < works.checked_draws; ++draw) {
        works.draw(random);
        for (const participant* each : participants_of(works)) {
            if (!each->is_right()) {
                std::fprintf(stderr, "%s: wrong result of %s\n", works.work.c_str(), each->name.c_str());
                std::exit(1);
            }
        }
    }
}

/// One row for each participant, one column for each round.
std::vector<std::vector<double>> measure(const comparison& works, random_source& random)
{
    const auto all = participants_of(works);
    std::vector<std::vector<double>> times(all.size());
    for (int round = -warm_up_rounds; round < works.rounds; ++round) {
        works.draw(random);
        for (std::size_t turn = 0; turn < all.size(); ++turn) {
            // Whoever comes first pays for cold caches: take it in turns.
            const std::size_t index = (turn + static_cast<std::size_t>(round + warm_up_rounds)) % all.size();
            const double time = time_of(*all[index]);
            if (round >= 0)
                times[index].push_back(time);
        }
    }
    return times;
}

double median_ratio(const std::vector<double>& own, const std::vector<double>& other)
{
    std::vector<double> ratios(own.size());
    std::ranges::transform(own, other, ratios.begin(), std::divides<>());
    return median(std::move(ratios));
}

} // namespace

report::report(const std::string& title)
{
    std::printf("\n## %s\n\n| work | subject | best peer | ratio | goal | |\n|---|---|---|---|---|---|\n",
                title.c_str());
}

void report::compare(const comparison& works)
{
    check(works, random_);
    const auto times = measure(works, random_);
    std::size_t best = 1;
    for (std::size_t peer = 2; peer < times.size(); ++peer)
        if (median(times[peer]) < median(times[best]))
            best = peer;
    const double ratio = median_ratio(times[0], times[best]);
    char goal[32] = "-";
    if (works.goal > 0)
        std::snprintf(goal, sizeof goal, "%.2f", works.goal);
    const bool missed = works.goal > 0 && ratio > works.goal;
    missed_ = missed_ || missed;
    const char* const verdict = works.goal == 0 ? "" : missed ? "**not held**" : "held";
    std::printf("| %s | %s | %s | %.2f | %s | %s |\n", works.work.c_str(), works.subject.name.c_str(),
                works.peers[best - 1].name.c_str(), ratio, goal, verdict);
    std::fflush(stdout);
}

void report::state(const std::string& what, double figure, double goal, const char* unit)
{
    const bool missed = figure > goal;
    missed_ = missed_ || missed;
    std::printf("| %s | %.0f %s | - | - | %.0f %s | %s |\n", what.c_str(), figure, unit, goal, unit,
                missed ? "**not held**" : "held");
    std::fflush(stdout);
}

} // namespace bench
