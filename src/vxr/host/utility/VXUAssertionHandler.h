#pragma once

#include <vxr/platform/base/Export.h>

#include <deque>
#include <string>

namespace vxr {

/// The utility framework's assertion handler: keeps what failed and lets the caller go on. (The
/// platform's own, `raiseAssertion`, throws.)
class VXR_EXPORT VXUAssertionHandler {
public:
    struct Failure {
        std::string file; ///< source file name
        int line = 0;
        std::string description;

        friend bool operator==(const Failure&, const Failure&) = default;
    };

    /// Failures beyond this many push out the oldest.
    static constexpr std::size_t capacity = 256;

    static VXUAssertionHandler& currentHandler();

    void handleFailureInFile(std::string file, int line, std::string description);

    const std::deque<Failure>& failures() const { return mFailures; } ///< oldest first
    void removeAllFailures() { mFailures.clear(); }

private:
    std::deque<Failure> mFailures;
};

} // namespace vxr
