#pragma once

#include <vxr/platform/base/Export.h>

#include <deque>
#include <string>

namespace vxr {

/// The utility framework's assertion handler: records the failure and lets the caller continue. (The
/// platform's own handler, `raiseAssertion`, throws.)
class VXR_EXPORT VXUAssertionHandler {
public:
    struct Failure {
        std::string file; ///< source file name
        int line = 0;
        std::string description;

        friend bool operator==(const Failure&, const Failure&) = default;
    };

    /// Once this many failures are stored, each new one replaces the oldest.
    static constexpr std::size_t capacity = 256;

    static VXUAssertionHandler& currentHandler();

    void handleFailureInFile(std::string file, int line, std::string description);

    const std::deque<Failure>& failures() const { return mFailures; } ///< oldest first
    void removeAllFailures() { mFailures.clear(); }

private:
    std::deque<Failure> mFailures;
};

} // namespace vxr
