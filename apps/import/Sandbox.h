#pragma once

#include <linux/filter.h>

#include <cstdint>
#include <string>
#include <vector>

namespace vxr::importing {

/// What the processes of jobs may not do: no new privileges, no network, no other process, no file to write,
/// and to read only what fonts, character tables and profiles need. Filters are made once, before the first
/// job, and put on by each. Where the kernel has no Landlock, files outside can be opened for reading.
class Sandbox {
public:
    Sandbox();
    ~Sandbox();
    Sandbox(const Sandbox&) = delete;
    Sandbox& operator=(const Sandbox&) = delete;

    /// For the calling process, and for good. Closes descriptors from `firstToClose` on. False when the
    /// kernel refuses.
    bool enter(int firstToClose) const;
    /// The same, but the process may become Ghostscript, which reads its own files and writes below
    /// `folder`.
    bool enterForPostScript(int firstToClose, const std::string& folder) const;

private:
    std::vector<sock_filter> mFilter, mPostScriptFilter;
    int mReadRules = -1;
};

} // namespace vxr::importing
