#include "Compare.h"

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <map>
#include <utility>
#include <vector>

namespace vxr::bench {

namespace {

constexpr int rounds = 9;
constexpr double roundSeconds = 0.03; ///< each side of each round runs at least this long

std::map<std::string, Target>& targets()
{
    static std::map<std::string, Target> all;
    return all;
}

double now(TimeOf time)
{
    timespec t {};
    clock_gettime(time == TimeOf::Processor ? CLOCK_PROCESS_CPUTIME_ID : CLOCK_MONOTONIC, &t);
    return double(t.tv_sec) + double(t.tv_nsec) * 1e-9;
}

double secondsFor(const Work& work, long calls, TimeOf time)
{
    const double start = now(time);
    for (long i = 0; i < calls; ++i)
        work();
    return now(time) - start;
}

/// Doubles the number of calls until they fill a round. Warms caches up on the way.
long callsPerRound(const Work& work, TimeOf time)
{
    long calls = 1;
    while (secondsFor(work, calls, time) < roundSeconds && calls < (1L << 30))
        calls *= 2;
    return calls;
}

double medianRatio(const Pair& pair, Target::Goal goal, TimeOf time)
{
    const long subjectCalls = callsPerRound(pair.subject, time);
    const long baselineCalls = callsPerRound(pair.baseline, time);
    std::vector<double> ratios;
    for (int round = 0; round < rounds; ++round) {
        const double subject
            = secondsFor(pair.subject, subjectCalls, time) / static_cast<double>(subjectCalls);
        const double baseline
            = secondsFor(pair.baseline, baselineCalls, time) / static_cast<double>(baselineCalls);
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

int compare(std::string name, Target target, std::function<Pair()> setUp, TimeOf time)
{
    return add(std::move(name), target,
        [target, time, setUp = std::move(setUp)] { return medianRatio(setUp(), target.goal, time); });
}

int measure(std::string name, Target target, std::function<double()> take)
{
    return add(std::move(name), target, std::move(take));
}

double nanosecondsPerCall(const Work& work)
{
    const long calls = callsPerRound(work, TimeOf::Wall);
    std::vector<double> times;
    for (int round = 0; round < rounds; ++round)
        times.push_back(secondsFor(work, calls, TimeOf::Wall) * 1e9 / static_cast<double>(calls));
    return median(std::move(times));
}

double processorSeconds(const Work& work) { return secondsFor(work, 1, TimeOf::Processor); }

double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

double growth(const std::vector<Work>& works)
{
    std::vector<long> calls;
    for (const Work& work : works)
        calls.push_back(callsPerRound(work, TimeOf::Processor));
    std::vector<std::vector<double>> ratios(works.size());
    for (int round = 0; round < rounds; ++round) {
        double first = 0;
        for (std::size_t i = 0; i < works.size(); ++i) {
            const double time = secondsFor(works[i], calls[i], TimeOf::Processor) / double(calls[i]);
            if (i == 0)
                first = time;
            ratios[i].push_back(time / first);
        }
    }
    double greatest = 0;
    for (std::size_t i = 1; i < works.size(); ++i)
        greatest = std::max(greatest, median(ratios[i]));
    return greatest;
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
