#pragma once

#include <apps/import/BitmapReader.h>

#include <memory>
#include <span>

namespace vxr::importing {

/// A PNG, read by its own library. Throws `JobForOthers` for one with a camera's notes and `Refusal` for what
/// can't be read.
class PngFile final : public BitmapReader {
public:
    /// Reads the header. The bytes must outlive the object.
    explicit PngFile(std::span<const std::byte> bytes);
    ~PngFile() override;
    PngFile(const PngFile&) = delete;
    PngFile& operator=(const PngFile&) = delete;

    const BitmapInfo& info() const override { return mInfo; }
    void readRows(const TakeRow& take) override;

private:
    struct Decoder;

    void readFormat();
    void readMetadata(std::span<const std::byte> bytes);

    std::unique_ptr<Decoder> mDecoder;
    BitmapInfo mInfo;
};

} // namespace vxr::importing
