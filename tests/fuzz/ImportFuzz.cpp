#include <vxr/platform/imaging/ImportAnswers.h>
#include <vxr/platform/imaging/MemoryFile.h>

#include <cstdlib>
#include <cstring>

// The answers of an import program that a hostile file has taken over: a report, then a payload's size in its
// first bytes. What is accepted is read to its last byte.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace vxr;
    using namespace vxr::importing;
    if (size < sizeof(std::uint32_t))
        return 0;
    std::uint32_t payloadBytes = 0;
    std::memcpy(&payloadBytes, data, sizeof payloadBytes);
    payloadBytes %= 1u << 20;
    // Most inputs are a good report with something changed, so that they get past the first numbers.
    Report good;
    good.bitmap.source = { 40, 30, 3, 3, 8, 0, 0, 0, 120 };
    good.bitmap.pixels = { 40, 30, 3, 4, 8, 0, 1, 0, 160 };
    std::memcpy(good.bitmap.kind, "png", 3);
    good.document.pages = 1;
    std::vector<std::byte> bytes(std::max(sizeof good, size));
    std::memcpy(bytes.data(), &good, sizeof good);
    std::size_t at = sizeof payloadBytes;
    for (; at + 3 <= size; at += 3) {
        const std::size_t place = data[at] | std::size_t(data[at + 1]) << 8;
        if (place < bytes.size())
            bytes[place] = std::byte(data[at + 2]);
    }
    const std::uint64_t trailing = bytes.size() - sizeof good;
    if (size % 2)
        std::memcpy(bytes.data() + offsetof(Report, trailingBytes), &trailing, sizeof trailing);

    readFileTypes(bytes);
    const auto report = readReport(bytes);
    if (!report)
        return 0;
    readMessage(*report);
    readDocumentInfo(*report);
    if (const auto info = readBitmapInfo(bytes); info && info->profile.size() > bytes.size())
        std::abort();
    if (const auto format = readPixelFormat(*report, payloadBytes)) {
        const std::vector<std::byte> payload(payloadBytes);
        volatile std::byte seen {};
        const std::size_t row
            = std::size_t(format->width) * format->samplesPerPixel * (format->bitsPerSample / 8);
        for (std::uint32_t y = 0; y < format->height; ++y)
            seen = payload[std::size_t(y * format->bytesPerRow) + row - 1];
        static_cast<void>(seen);
    }
    return 0;
}
