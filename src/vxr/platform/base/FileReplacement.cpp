#include <vxr/platform/base/Exceptions.h>
#include <vxr/platform/base/FileReplacement.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <utility>

namespace vxr {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void throwErrno(int code = errno) { throw GenericException(std::strerror(code)); }

std::string folderOf(const std::string& path)
{
    const std::string folder = fs::path(path).parent_path().string();
    return folder.empty() ? "." : folder;
}

} // namespace

FileReplacement::FileReplacement(const std::string& path)
    : mPath(path)
{
    std::error_code error;
    if (fs::is_symlink(mPath, error)) {
        const fs::path target = fs::canonical(mPath, error);
        if (!error)
            mPath = target.string();
    }
    struct stat old { };
    const bool exists = ::stat(mPath.c_str(), &old) == 0;
    if (exists && !S_ISREG(old.st_mode))
        throw GenericException("is there already and is no file");
    int descriptor = ::open(folderOf(mPath).c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0666);
    for (int attempt = 0; descriptor < 0 && attempt < 100; ++attempt) {
        mBeside = unusedNameBeside();
        descriptor = ::open(mBeside.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0666);
        if (descriptor < 0 && errno != EEXIST)
            break;
    }
    if (descriptor < 0)
        throwErrno();
    if (exists)
        static_cast<void>(::fchmod(descriptor, old.st_mode & 07777)); // best effort: another user may own it
    mStream = ::fdopen(descriptor, "wb");
    if (!mStream) {
        const int code = errno;
        ::close(descriptor);
        if (!mBeside.empty())
            ::unlink(mBeside.c_str());
        throwErrno(code);
    }
}

FileReplacement::~FileReplacement()
{
    if (mStream)
        std::fclose(mStream);
    if (!mBeside.empty())
        ::unlink(mBeside.c_str());
}

std::string FileReplacement::unusedNameBeside() const
{
    static int serial = 0;
    const fs::path place(mPath);
    const std::string name = "." + place.filename().string().substr(0, 200) + ".part"
        + std::to_string(::getpid()) + "-" + std::to_string(serial++);
    return (place.parent_path() / name).string();
}

void FileReplacement::write(const void* bytes, std::size_t size)
{
    errno = 0;
    if (std::fwrite(bytes, 1, size, mStream) != size)
        throwErrno();
}

/// Links the nameless content to a name. False if the name is taken.
bool FileReplacement::linkTo(const std::string& name) const
{
    const std::string content = "/proc/self/fd/" + std::to_string(::fileno(mStream));
    if (::linkat(AT_FDCWD, content.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0)
        return true;
    if (errno != EEXIST)
        throwErrno();
    return false;
}

void FileReplacement::commit(Durability durability)
{
    const bool synced = durability == Durability::SyncedRename;
    if (std::fflush(mStream) != 0 || (synced && ::fsync(::fileno(mStream)) != 0))
        throwErrno();
    // A link cannot replace an existing name, so an old file is replaced by linking the content to a
    // temporary name and renaming that.
    const bool wasNameless = mBeside.empty();
    bool isInPlace = wasNameless && linkTo(mPath);
    if (wasNameless && !isInPlace) {
        std::string name;
        do
            name = unusedNameBeside();
        while (!linkTo(name));
        mBeside = name;
    }
    // Some file systems report a full disk only here.
    const bool closed = std::fclose(std::exchange(mStream, nullptr)) == 0;
    const int code = errno;
    if (!closed) {
        if (isInPlace)
            ::unlink(mPath.c_str());
        throwErrno(code);
    }
    if (!isInPlace && std::rename(mBeside.c_str(), mPath.c_str()) != 0)
        throwErrno();
    mBeside.clear();
    if (!synced)
        return;
    const int folder = ::open(folderOf(mPath).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder >= 0) {
        ::fsync(folder); // the directory entry, too; not every file system supports it
        ::close(folder);
    }
}

} // namespace vxr
