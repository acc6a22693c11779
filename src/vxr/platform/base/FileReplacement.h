#pragma once

#include <vxr/platform/base/Export.h>

#include <cstddef>
#include <cstdio>
#include <string>

namespace vxr {

/// A file that appears under its name only when it is complete. Until `commit` the old file, if there is one,
/// stays as it is. Where the file system can do it the new content has no name before that, so nothing
/// remains of a process that is killed; elsewhere it stands beside the old file and goes with this object.
///
/// Operations throw `GenericException` with the reason, without the path.
class VXR_EXPORT FileReplacement {
public:
    /// Refuses what exists and is no regular file. A symbolic link stays, and what it leads to is replaced.
    explicit FileReplacement(const std::string& path);
    ~FileReplacement();
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;

    std::FILE* stream() const { return mStream; }
    void write(const void* bytes, std::size_t size);

    enum class Durability { Rename, SyncedRename };
    /// Puts the content in place. A synced one outlasts a failure of the power right after.
    void commit(Durability = Durability::Rename);

private:
    bool linkTo(const std::string& name) const;
    std::string unusedNameBeside() const;

    std::string mPath;
    std::string mBeside; ///< where the content stands while it is not in place; empty while it has no name
    std::FILE* mStream = nullptr;
};

} // namespace vxr
