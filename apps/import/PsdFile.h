#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace vxr::importing {

/// The composite picture of a layered file in grey, RGB or CMYK. The loader that libvips has loses the black
/// of CMYK, and half of 16 bits.
struct PsdFile {
    std::uint32_t width = 0, height = 0;
    std::uint32_t colors = 0; ///< 1, 3 or 4
    bool hasAlpha = false;
    std::uint32_t bitsPerSample = 8;
    double pixelsPerInch = 0; ///< 0 when not stated
    std::span<const std::byte> profile;

    /// Whether the file is of a kind that is read here. Throws `Refusal` when it is and is damaged.
    bool readHeader(std::span<const std::byte> file);
    /// Interleaved samples, those of 16 bits in the machine's order; in CMYK 0 is no ink. Throws `Refusal`
    /// when the file ends too early.
    std::vector<std::byte> readSamples() const;

private:
    void readResources(std::span<const std::byte> resources);

    std::span<const std::byte> mPixelData; ///< from the compression's number on
    std::uint32_t mChannels = 0; ///< in the file, more than colours and alpha at times
};

} // namespace vxr::importing
