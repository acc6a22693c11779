#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace vxr::importing {

/// What the first directory of a camera's notes says of a picture.
struct ExifTags {
    std::optional<std::uint32_t> orientation; ///< 1 to 8
    /// Pixels per inch, when the file gives both.
    std::optional<float> horizontalResolution, verticalResolution;
};

/// `tiff` begins with the byte order. Whatever is damaged or missing is not stated.
ExifTags readExifTags(std::span<const std::byte> tiff);

} // namespace vxr::importing
