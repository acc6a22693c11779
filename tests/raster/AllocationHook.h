#pragma once

#include <cstddef>

namespace vxr::test {

/// Counts what the global operator new hands out, and lets it fail.
struct Allocations {
    static std::size_t count();
    static std::size_t bytesInUse();
    static std::size_t mostBytes(); ///< in use at once since `watch`
    static void watch(); ///< starts `mostBytes` anew
    /// The allocation after so many others fails, and all that follow until `stopFailing`.
    static void failAfter(std::size_t others);
    static bool stopFailing(); ///< whether one has failed
};

} // namespace vxr::test
