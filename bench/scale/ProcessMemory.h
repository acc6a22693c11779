#pragma once

#include <cstddef>
#include <functional>
#include <string>

namespace vxr::bench {

// Of this process, in bytes.
std::size_t residentBytes();
std::size_t peakBytes(); ///< most resident bytes since the last reset
void resetPeak();
std::size_t allocatedBytes(); ///< by the heap, with what it needs for itself
void returnFreeMemory(); ///< of the heap, to the system

/// What `take` answers in a process of its own, in which nothing was measured before. `name` is the measure
/// that calls this.
double inFreshProcess(const std::string& name, const std::function<double()>& take);

} // namespace vxr::bench
