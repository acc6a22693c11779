#pragma once

#include <vxr/platform/base/Export.h>

#include <cstddef>
#include <cstdio>
#include <string>

namespace vxr {

/// A file that appears under its name only once it is complete. Until `commit` an existing file stays as it
/// is. Where the file system supports it, the new content has no name before that, so a killed process
/// leaves nothing behind; elsewhere it is a temporary file beside the old one, removed with this object.
///
/// Operations throw `GenericException` with the reason; the path is not part of the message.
class VXR_EXPORT FileReplacement {
public:
    /// Refuses an existing path that is not a regular file. A symbolic link is kept and its target replaced.
    explicit FileReplacement(const std::string& path);
    ~FileReplacement();
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;

    std::FILE* stream() const { return mStream; }
    void write(const void* bytes, std::size_t size);

    enum class Durability { Rename, SyncedRename };
    /// Puts the content in place. Synced content survives a power failure right after the call.
    void commit(Durability = Durability::Rename);

private:
    bool linkTo(const std::string& name) const;
    std::string unusedNameBeside() const;

    std::string mPath;
    std::string mBeside; ///< path of the temporary file; empty while the content has no name
    std::FILE* mStream = nullptr;
};

} // namespace vxr
