#include "Compare.h"

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <map>
#include <utility>
#include <vector>

namespace vxr::bench {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int rounds = 9;
constexpr double roundSeconds = 0.03; ///< each side of each round runs at least this long

std::map<std::string, Target>& targets()
{
    static std::map<std::string, Target> all;
    return all;
}

double secondsFor(const Work& work, long calls)
{
    const auto start = Clock::now();
    for (long i = 0; i < calls; ++i)
        work();
    return std::chrono::duration<double>(Clock::now() - start).count();
}

/// Doubles the number of calls until they fill a round. Warms caches up on the way.
long callsPerRound(const Work& work)
{
    long calls = 1;
    while (secondsFor(work, calls) < roundSeconds && calls < (1L << 30))
        calls *= 2;
    return calls;
}

double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

double medianRatio(const Pair& pair, Target::Goal goal)
{
    const long subjectCalls = callsPerRound(pair.subject);
    const long baselineCalls = callsPerRound(pair.baseline);
    std::vector<double> ratios;
    for (int round = 0; round < rounds; ++round) {
        const double subject = secondsFor(pair.subject, subjectCalls) / static_cast<double>(subjectCalls);
        const double baseline = secondsFor(pair.baseline, baselineCalls) / static_cast<double>(baselineCalls);
        ratios.push_back(goal == Target::Goal::AtMost ? subject / baseline : baseline / subject);
    }
    return median(std::move(ratios));
}

int add(std::string name, Target target, std::function<double()> take)
{
    targets().emplace(name, target);
    benchmark::RegisterBenchmark(name.c_str(), [take = std::move(take)](benchmark::State& state) {
        for (auto _ : state)
            state.counters["ratio"] = take();
    })->Iterations(1);
    return 0;
}

/// One line a comparison: `AREA/NAME RATIO TARGET ok|short`.
class LineReporter final : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs) {
            const std::string name = run.run_name.function_name;
            if (run.error_occurred) {
                std::fputs(fmt::format("{} error: {}\n", name, run.error_message).c_str(), stderr);
                continue;
            }
            const double ratio = run.counters.at("ratio");
            const Target target = targets().at(name);
            const bool most = target.goal == Target::Goal::AtMost;
            const bool reached = most ? ratio <= target.value : ratio >= target.value;
            std::fputs(fmt::format("{} {:.4g} {}{:g} {}\n", name, ratio, most ? "<=" : ">=", target.value,
                           reached ? "ok" : "short")
                           .c_str(),
                stdout);
            std::fflush(stdout);
        }
    }
};

} // namespace

int compare(std::string name, Target target, std::function<Pair()> setUp)
{
    return add(std::move(name), target,
        [target, setUp = std::move(setUp)] { return medianRatio(setUp(), target.goal); });
}

int measure(std::string name, Target target, std::function<double()> take)
{
    return add(std::move(name), target, std::move(take));
}

double nanosecondsPerCall(const Work& work)
{
    const long calls = callsPerRound(work);
    std::vector<double> times;
    for (int round = 0; round < rounds; ++round)
        times.push_back(secondsFor(work, calls) * 1e9 / static_cast<double>(calls));
    return median(std::move(times));
}

} // namespace vxr::bench

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    vxr::bench::LineReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
