#pragma once

#include <functional>
#include <string>

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

/// Registers the comparison `AREA/NAME`. `setUp` runs when its turn comes, and what it made is freed
/// before the next one. The sides alternate within each of nine rounds; the median of the rounds' ratios is
/// reported. Returns a number so that a namespace-scope constant can call it.
int compare(std::string name, Target target, std::function<Pair()> setUp);

/// Registers a single figure, such as bytes or nanoseconds, that `take` measures; reported in place of
/// a ratio.
int measure(std::string name, Target target, std::function<double()> take);

/// Median time of one call of `work` in nanoseconds, from at least seven rounds; for `measure`.
double nanosecondsPerCall(const Work& work);

} // namespace vxr::bench
