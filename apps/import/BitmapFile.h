#pragma once

#include <vxr/platform/imaging/ImportedBitmap.h>

#include <cstddef>
#include <functional>
#include <span>

struct _VipsImage;

namespace vxr::importing {

/// A bitmap file as libvips reads it, from top to bottom. Throws `Refusal` for what can't be read.
class BitmapFile {
public:
    /// Reads the header. The bytes must outlive the object.
    explicit BitmapFile(std::span<const std::byte> bytes);
    ~BitmapFile();
    BitmapFile(const BitmapFile&) = delete;
    BitmapFile& operator=(const BitmapFile&) = delete;

    /// What the file says, with sides as stored: the orientation is still to be applied.
    const BitmapInfo& info() const { return mInfo; }

    /// Calls `take` with each row, top to bottom. Rows can be read once.
    void readRows(const std::function<void(std::uint32_t row, const std::byte* samples)>& take);

private:
    void openPSD(std::span<const std::byte> bytes);
    void normaliseSamples();
    void readFormat();
    void readMetadata(std::span<const std::byte> bytes);

    _VipsImage* mImage = nullptr;
    BitmapInfo mInfo;
};

} // namespace vxr::importing
