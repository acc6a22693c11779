#pragma once

#include <apps/import/BitmapReader.h>

#include <memory>
#include <span>

namespace vxr::importing {

/// A JPEG of grey or RGB samples, read by its own library: with its rows going straight into drawable pixels
/// it takes less time than by way of a general one. Throws `JobForOthers` for any other JPEG and `Refusal`
/// for what can't be read.
class JpegFile final : public BitmapReader {
public:
    /// Reads the header. The bytes must outlive the object.
    explicit JpegFile(std::span<const std::byte> bytes);
    ~JpegFile() override;
    JpegFile(const JpegFile&) = delete;
    JpegFile& operator=(const JpegFile&) = delete;

    const BitmapInfo& info() const override { return mInfo; }
    void readRows(const TakeRow& take) override;
    bool readDrawableRows(const TakeRow& take) override;

private:
    struct Decoder;

    void readMarkers();
    void read(std::size_t pixelBytes, const TakeRow& take);

    std::unique_ptr<Decoder> mDecoder;
    BitmapInfo mInfo;
};

} // namespace vxr::importing
