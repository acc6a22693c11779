#pragma once

#include <vxr/platform/graphics/Context.h>

#include <cstdint>
#include <string>

namespace vxr {

/// Left, top, right and bottom of a clip relative to its record's origin.
struct VXRClipInfo {
    std::int32_t values[4] {};

    friend constexpr bool operator==(const VXRClipInfo&, const VXRClipInfo&) = default;
};

/// A platform's clip record: integer bounds (min x, max x, min y, max y) and the integer origin they are
/// relative to.
struct VXRClipRecord {
    std::int32_t bounds[4] {};
    std::int32_t originX = 0;
    std::int32_t reserved = 0;
    std::int32_t originY = 0;
};

VXR_EXPORT VXRClipInfo VXRMakeClipInfo(const VXRClipRecord& record);
VXR_EXPORT bool VXREqualClipInfos(const VXRClipInfo& a, const VXRClipInfo& b);
VXR_EXPORT std::string VXRStringFromClipInfo(const VXRClipInfo& info); ///< "{%d, %d, %d, %d}"

/// The current transform, followed by that of the surface's pixels if the context gives access to
/// them.
VXR_EXPORT AffineTransform VXRContextGetUserSpaceToDeviceSpaceTransform(Context& context);

// Conversions between the two spaces. Each uses the platform's own operation if one is registered under
// the name with CG in place of VXR (see OptionalOperations.h), looked up once per process. If the
// transform is not invertible, converting back uses it as well. Sizes keep their signs.
VXR_EXPORT Point VXRContextConvertPointToDeviceSpace(Context& context, Point p);
VXR_EXPORT Point VXRContextConvertPointToUserSpace(Context& context, Point p);
VXR_EXPORT Size VXRContextConvertSizeToDeviceSpace(Context& context, Size s);
VXR_EXPORT Size VXRContextConvertSizeToUserSpace(Context& context, Size s);

// The types under which the platform's own operations are registered.
using VXRConvertPointOperation = Point(Context&, Point);
using VXRConvertSizeOperation = Size(Context&, Size);

/// Looks up the four operations again, for platforms that load them late.
VXR_EXPORT void VXRForgetContextOperations();

} // namespace vxr
