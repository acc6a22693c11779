#pragma once

#include <string>

namespace vxr::importing {

/// A folder that nobody else may enter. It goes with everything in it, also what a killed process has left.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::string& path() const { return mPath; } ///< empty when none can be made

    /// Removes the folders of programs that were killed. A folder in use is locked by its owner.
    static void removeAbandoned();

private:
    std::string mPath;
    int mLock = -1;
};

} // namespace vxr::importing
