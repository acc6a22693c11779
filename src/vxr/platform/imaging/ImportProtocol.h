#pragma once

#include <vxr/platform/imaging/Importer.h>

#include <cstdint>

namespace vxr::importing {

// Messages between the library and the import program: one request, one reply, over a socket that keeps
// messages apart. Both come from one build, so numbers are in the machine's order.

constexpr std::uint32_t protocolMagic = 0x56495031;

enum class Job : std::uint32_t {
    FileTypes = 1,
    MeasureBitmap,
    DecodeBitmap,
    MeasureDocument,
    RenderPageArea,
    NormaliseDocument,
    ConvertEPS,
    ConvertPICT,
    PlacePages,
    Misbehave = 100, ///< see `Misdeed`
};

/// What a job does when a test wants to see the program survive it.
enum class Misdeed : std::int32_t {
    Crash = 1,
    Loop,
    Sleep,
    HugeOutput,
    HugeMemory,
    Network,
    Spawn,
    Write,
    Lie
};

/// What a job may use before it is ended.
struct Limits {
    std::uint64_t memoryBytes = std::uint64_t { 1 } << 30;
    std::uint64_t outputBytes = std::uint64_t { 1 } << 31;
    std::uint32_t processorSeconds = 10;
    std::uint32_t waitMilliseconds = 20000;
};

/// Comes with one descriptor: the sealed memory file to read. `FileTypes` comes with none.
struct Request {
    std::uint32_t magic = protocolMagic;
    std::uint32_t id = 0;
    Job job = Job::FileTypes;
    std::uint32_t drawable = 0, useProfile = 1; ///< `DecodeBitmap`
    Limits limits;
    double scaleX = 1, scaleY = 1, offsetX = 0, offsetY = 0; ///< `RenderPageArea`
    std::int32_t x = 0, y = 0, width = 0, height = 0;
    std::int32_t misdeed = 0;
};

/// When the outcome is `Done`, two descriptors come along: the report and the payload, sealed memory files
/// that the job has written. Nobody has looked at either.
struct Reply {
    std::uint32_t magic = protocolMagic;
    std::uint32_t id = 0;
    ImportOutcome outcome = ImportOutcome::Done;
    std::uint32_t signal = 0; ///< that ended the job
};

struct FormatRecord {
    std::uint32_t width, height, model, samplesPerPixel, bitsPerSample, hasAlpha, isDrawable, unused;
    std::uint64_t bytesPerRow;
};

struct BitmapRecord {
    FormatRecord source, pixels; ///< `pixels` is empty when only the header was read
    float horizontalResolution, verticalResolution;
    std::uint32_t orientation, frames, isPlainJPEG;
    char kind[12];
    char profileName[64];
};

struct DocumentRecord {
    double boxes[5][4]; ///< media, crop, bleed, trim, art: x, y, width, height
    std::uint32_t pages;
    std::int32_t rotation;
    char version[16];
};

/// First bytes of a report. What follows it: the profile of a bitmap, or the lines of `FileTypes`. The
/// payload holds pixels or a document.
struct Report {
    std::uint32_t magic = protocolMagic;
    ImportOutcome outcome = ImportOutcome::Done; ///< `Done`, `Refused` or `TooLarge`
    std::uint64_t trailingBytes = 0;
    char message[256] = {};
    BitmapRecord bitmap {};
    DocumentRecord document {};
};

/// First bytes of the input of `PlacePages`, followed by `count` records and the bytes that they name.
struct PlaceHeader {
    std::uint32_t magic = protocolMagic, count = 0;
    std::uint64_t writtenOffset = 0, writtenBytes = 0;
};

struct PlaceRecord {
    char mark[64];
    std::uint64_t offset, bytes; ///< of the page's document; the same for pages of one document
};

/// Number of the socket's descriptor in the program.
constexpr int programSocket = 3;

/// Larger sides are refused.
constexpr std::uint32_t mostPixelsPerSide = 1u << 20;

} // namespace vxr::importing
