#pragma once

#include <apps/import/BitmapReader.h>

#include <cstddef>
#include <span>

struct _VipsImage;

namespace vxr::importing {

/// A bitmap file as libvips reads it, from top to bottom. Throws `Refusal` for what can't be read.
class BitmapFile final : public BitmapReader {
public:
    /// Reads the header. The bytes must outlive the object.
    explicit BitmapFile(std::span<const std::byte> bytes);
    ~BitmapFile() override;
    BitmapFile(const BitmapFile&) = delete;
    BitmapFile& operator=(const BitmapFile&) = delete;

    const BitmapInfo& info() const override { return mInfo; }
    void readRows(const TakeRow& take) override;

private:
    void openPSD(std::span<const std::byte> bytes);
    void normaliseSamples();
    void readFormat();
    void readMetadata(std::span<const std::byte> bytes);

    _VipsImage* mImage = nullptr;
    BitmapInfo mInfo;
};

} // namespace vxr::importing
