#pragma once

#include <functional>
#include <string>
#include <vector>

namespace vxr::bench {

/// What a ratio has to reach. `atMost` targets cost: subject time over baseline time. `atLeast` targets
/// speed-up: baseline time over subject time.
struct Target {
    enum class Goal { AtMost, AtLeast } goal;
    double value;
};
inline Target atMost(double value) { return { Target::Goal::AtMost, value }; }
inline Target atLeast(double value) { return { Target::Goal::AtLeast, value }; }

using Work = std::function<void()>;

/// The two sides of a comparison. Each call does the same amount of work; what they draw into and read
/// from is captured.
struct Pair {
    Work subject;
    Work baseline;
};

/// Which time counts. The processor's is that of this process alone, which other programs disturb less; it
/// is for sides that wait for nobody.
enum class TimeOf { Wall, Processor };

/// Registers the comparison `AREA/NAME`. `setUp` runs when its turn comes, and what it made is freed
/// before the next one. The sides alternate within each of nine rounds; the median of the rounds' ratios is
/// reported. Returns a number so that a namespace-scope constant can call it.
int compare(std::string name, Target target, std::function<Pair()> setUp, TimeOf time = TimeOf::Wall);

/// Registers a single figure, such as bytes or nanoseconds, that `take` measures; reported in place of
/// a ratio.
int measure(std::string name, Target target, std::function<double()> take);

/// Median time of one call of `work` in nanoseconds, from at least seven rounds; for `measure`.
double nanosecondsPerCall(const Work& work);

// For measures that take turns by themselves.
double processorSeconds(const Work& work); ///< of one call
double median(std::vector<double> values);
/// How many times the first one's processor time the other works take: the greatest of them, each the median
/// over nine rounds in which all take turns.
double growth(const std::vector<Work>& works);

} // namespace vxr::bench
