#pragma once

#include <vxr/platform/imaging/ImportProtocol.h>

#include <cstddef>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace vxr::importing {

/// The file can't be read; `what()` is a sentence.
class Refusal : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The result would be larger than a job may make it.
class OversizeError : public std::runtime_error {
public:
    OversizeError()
        : std::runtime_error("The picture is larger than a job may make it.")
    {
    }
};

/// The bytes of the sealed memory file that came with the request.
class JobInput {
public:
    explicit JobInput(int descriptor); ///< -1 for none; throws `Refusal` when it can't be mapped
    JobInput(const JobInput&) = delete;
    JobInput& operator=(const JobInput&) = delete;
    ~JobInput();

    std::span<const std::byte> bytes() const { return mBytes; }
    std::string_view text() const { return { reinterpret_cast<const char*>(mBytes.data()), mBytes.size() }; }
    bool startsWith(std::string_view prefix) const { return text().substr(0, prefix.size()) == prefix; }

private:
    std::span<const std::byte> mBytes;
};

/// Where a job leaves its result.
class JobOutput {
public:
    JobOutput(int reportDescriptor, int payloadDescriptor, std::uint64_t mostBytes)
        : mReport(reportDescriptor)
        , mPayload(payloadDescriptor)
        , mMostBytes(mostBytes)
    {
    }

    Report report;
    std::vector<std::byte> trailing; ///< goes behind the report

    int payloadDescriptor() const { return mPayload; }
    /// Gives the payload its size. Throws `OversizeError` beyond the limit.
    void setPayloadSize(std::uint64_t bytes);
    void writePayload(std::uint64_t offset, const void* bytes, std::size_t size);
    void writePayload(std::string_view bytes); ///< the whole of it
    /// The payload in memory, for jobs that write here and there; until `finish`.
    std::byte* mapPayload(std::uint64_t bytes);
    void finish(ImportOutcome outcome, std::string_view message = {});

private:
    int mReport, mPayload;
    std::uint64_t mMostBytes;
    std::span<std::byte> mMapped;
};

} // namespace vxr::importing
