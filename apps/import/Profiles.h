#pragma once

#include <vxr/platform/imaging/ImportedBitmap.h>

#include <array>
#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace vxr::importing {

struct TransformDeleter {
    void operator()(void* transform) const;
};
using Transform = std::unique_ptr<void, TransformDeleter>;

/// A profile of a display with one curve and these places of white, red, green and blue. Empty when they are
/// impossible.
std::vector<std::byte> makeProfile(BitmapModel, double gamma, const std::array<double, 8>& chromaticities);

/// Whether lcms2 takes it for a profile of such samples.
bool isProfileOf(BitmapModel, std::span<const std::byte> profile);

/// What it calls itself; empty when it does not say.
std::string nameOfProfile(std::span<const std::byte> profile);

/// From samples of the format to drawable pixels, not premultiplied; alpha is copied. None when the profile
/// is of no use.
Transform makeTransform(const BitmapFormat&, std::span<const std::byte> profile);

/// Whether the transform of 8-bit grey or RGB leaves values as they are, but for one level.
bool leavesValues(BitmapModel, std::span<const std::byte> profile);

} // namespace vxr::importing
