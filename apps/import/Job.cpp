#include <apps/import/Job.h>

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace vxr::importing {

namespace {

void writeAt(int descriptor, std::uint64_t offset, const void* bytes, std::size_t size)
{
    const char* at = static_cast<const char*>(bytes);
    while (size > 0) {
        const ssize_t written = ::pwrite(descriptor, at, size, off_t(offset));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            throw OversizeError();
        at += written;
        offset += std::uint64_t(written);
        size -= std::size_t(written);
    }
}

} // namespace

JobInput::JobInput(int descriptor)
{
    struct stat status { };
    if (descriptor < 0 || ::fstat(descriptor, &status) != 0 || status.st_size <= 0)
        return;
    const auto size = std::size_t(status.st_size);
    void* mapped = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, descriptor, 0);
    if (mapped == MAP_FAILED)
        throw Refusal("The file can't be mapped.");
    mBytes = { static_cast<const std::byte*>(mapped), size };
}

JobInput::~JobInput()
{
    if (!mBytes.empty())
        ::munmap(const_cast<std::byte*>(mBytes.data()), mBytes.size());
}

void JobOutput::setPayloadSize(std::uint64_t bytes)
{
    if (bytes > mMostBytes || ::ftruncate(mPayload, off_t(bytes)) != 0)
        throw OversizeError();
}

void JobOutput::writePayload(std::uint64_t offset, const void* bytes, std::size_t size)
{
    writeAt(mPayload, offset, bytes, size);
}

void JobOutput::writePayload(std::string_view bytes)
{
    setPayloadSize(bytes.size());
    writeAt(mPayload, 0, bytes.data(), bytes.size());
}

std::byte* JobOutput::mapPayload(std::uint64_t bytes)
{
    setPayloadSize(bytes);
    void* mapped = ::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, mPayload, 0);
    if (mapped == MAP_FAILED)
        throw OversizeError();
    mMapped = { static_cast<std::byte*>(mapped), std::size_t(bytes) };
    return mMapped.data();
}

void JobOutput::finish(ImportOutcome outcome, std::string_view message)
{
    if (!mMapped.empty()) // it could not be sealed
        ::munmap(mMapped.data(), mMapped.size());
    mMapped = {};
    report.outcome = outcome;
    report.trailingBytes = trailing.size();
    message.copy(report.message, sizeof report.message - 1);
    writeAt(mReport, 0, &report, sizeof report);
    writeAt(mReport, sizeof report, trailing.data(), trailing.size());
}

} // namespace vxr::importing
