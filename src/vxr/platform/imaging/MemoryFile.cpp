#include <vxr/platform/imaging/MemoryFile.h>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace vxr {

namespace {

constexpr int contentSeals = F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_WRITE;

int createFile() { return ::memfd_create("vxr", MFD_CLOEXEC | MFD_ALLOW_SEALING); }

bool writeAll(int descriptor, const std::byte* bytes, std::size_t size)
{
    while (size > 0) {
        const ssize_t written = ::write(descriptor, bytes, size);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        bytes += written;
        size -= std::size_t(written);
    }
    return true;
}

/// What is left of `source` goes to `target`.
bool copyAll(int source, int target)
{
    std::byte buffer[1 << 16];
    for (;;) {
        const ssize_t count = ::read(source, buffer, sizeof buffer);
        if (count == 0)
            return true;
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0 || !writeAll(target, buffer, std::size_t(count)))
            return false;
    }
}

bool seal(int descriptor) { return ::fcntl(descriptor, F_ADD_SEALS, contentSeals | F_SEAL_SEAL) == 0; }

std::shared_ptr<const MemoryFile> sealed(int descriptor)
{
    if (!seal(descriptor)) {
        ::close(descriptor);
        return nullptr;
    }
    return MemoryFile::createWithSealedDescriptor(descriptor, SIZE_MAX);
}

} // namespace

MemoryFile::MemoryFile(int descriptor, const std::byte* bytes, std::size_t size)
    : mDescriptor(descriptor)
    , mBytes(bytes)
    , mSize(size)
{
}

MemoryFile::~MemoryFile()
{
    if (mBytes)
        ::munmap(const_cast<std::byte*>(mBytes), mSize);
    ::close(mDescriptor);
}

std::shared_ptr<const MemoryFile> MemoryFile::createWithCopy(std::span<const std::byte> bytes)
{
    const int descriptor = createFile();
    if (descriptor < 0)
        return nullptr;
    if (!writeAll(descriptor, bytes.data(), bytes.size())) {
        ::close(descriptor);
        return nullptr;
    }
    return sealed(descriptor);
}

std::shared_ptr<const MemoryFile> MemoryFile::createWithCopy(const void* bytes, std::size_t size)
{
    return createWithCopy(std::span(static_cast<const std::byte*>(bytes), size));
}

std::shared_ptr<const MemoryFile> MemoryFile::createWithContentsOfFile(
    const std::string& path, std::string* error)
{
    const auto failed = [&]() -> std::shared_ptr<const MemoryFile> {
        if (error)
            *error = path + ": " + std::strerror(errno);
        return nullptr;
    };
    // A pipe that nobody writes to must not stop the host.
    const int source = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (source < 0)
        return failed();
    struct stat status { };
    int target = -1;
    if (::fstat(source, &status) == 0 && !S_ISREG(status.st_mode))
        errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
    else
        target = createFile();
    const bool copied = target >= 0 && copyAll(source, target);
    const int reason = errno;
    ::close(source);
    if (copied)
        if (auto file = sealed(target))
            return file;
    if (!copied && target >= 0)
        ::close(target);
    errno = reason;
    return failed();
}

std::shared_ptr<const MemoryFile> MemoryFile::createWithSealedDescriptor(
    int descriptor, std::size_t mostBytes)
{
    struct stat status { };
    const int seals = ::fcntl(descriptor, F_GET_SEALS);
    const bool usable = seals >= 0 && (seals & contentSeals) == contentSeals
        && ::fstat(descriptor, &status) == 0 && std::uintmax_t(status.st_size) <= mostBytes;
    const auto size = std::size_t(status.st_size);
    void* mapped = nullptr;
    // Private, since kernels before 6.7 refuse a shared map of a file that is sealed against writing.
    if (usable && size > 0)
        mapped = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, descriptor, 0);
    if (!usable || mapped == MAP_FAILED) {
        ::close(descriptor);
        return nullptr;
    }
    return std::shared_ptr<const MemoryFile>(
        new MemoryFile(descriptor, static_cast<const std::byte*>(mapped), size));
}

bool MemoryFile::isEqual(const Object& other) const
{
    const auto* file = dynamic_cast<const MemoryFile*>(&other);
    return file && std::ranges::equal(bytes(), file->bytes());
}

} // namespace vxr
