#pragma once

#include <string>

namespace vxr::importing {

/// A folder that nobody else may enter. It goes with everything in it, also what a killed process has left.
class TemporaryFolder {
public:
    explicit TemporaryFolder(bool isWanted);
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::string& path() const { return mPath; } ///< empty when none is wanted or can be made

private:
    std::string mPath;
};

} // namespace vxr::importing
