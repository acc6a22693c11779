#include <apps/import/TemporaryFolder.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <vector>

namespace vxr::importing {

namespace {

namespace files = std::filesystem;

constexpr const char* namePrefix = "vxr-import-";

/// Follows no links.
void removeAll(const files::path& folder)
{
    std::error_code ignored;
    files::remove_all(folder, ignored);
}

/// A descriptor that holds the folder's lock; -1 when somebody else does.
int lock(const std::string& path)
{
    const int folder = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (folder < 0)
        return -1;
    struct stat status { };
    // Taken away between being made and being locked, it has no name left.
    if (::flock(folder, LOCK_EX | LOCK_NB) == 0 && ::fstat(folder, &status) == 0 && status.st_nlink > 0
        && status.st_uid == ::geteuid())
        return folder;
    ::close(folder);
    return -1;
}

} // namespace

TemporaryFolder::TemporaryFolder()
{
    removeAbandoned();
    std::error_code error;
    const std::string name = (files::temp_directory_path(error) / namePrefix).string() + "XXXXXX";
    constexpr int attempts = 10;
    for (int i = 0; i < attempts && !error && mLock < 0; ++i) {
        mPath = name;
        mLock = ::mkdtemp(mPath.data()) ? lock(mPath) : -1;
    }
    if (mLock < 0)
        mPath.clear();
}

TemporaryFolder::~TemporaryFolder()
{
    if (mLock < 0)
        return;
    removeAll(mPath);
    ::close(mLock);
}

void TemporaryFolder::removeAbandoned()
{
    std::error_code error;
    std::vector<files::path> found;
    for (files::directory_iterator entry(files::temp_directory_path(error), error), end;
         !error && entry != end; entry.increment(error))
        if (entry->path().filename().string().starts_with(namePrefix))
            found.push_back(entry->path());
    for (const files::path& path : found)
        if (const int folder = lock(path.string()); folder >= 0) {
            removeAll(path);
            ::close(folder);
        }
}

} // namespace vxr::importing
