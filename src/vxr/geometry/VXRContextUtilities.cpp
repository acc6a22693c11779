#include <vxr/geometry/VXRContextUtilities.h>

#include <vxr/platform/base/OptionalOperations.h>

#include <fmt/format.h>

namespace vxr {

namespace {

/// An optional operation, looked up on first use.
template <class Function> struct CachedOperation {
    const char* name;
    bool lookedUp = false;
    Function* operation = nullptr;

    Function* get()
    {
        if (!lookedUp) {
            operation = lookUpOptionalOperationOfType<Function>(name);
            lookedUp = true;
        }
        return operation;
    }
};

CachedOperation<VXRConvertPointOperation> pointToDevice { "CGContextConvertPointToDeviceSpace" };
CachedOperation<VXRConvertPointOperation> pointToUser { "CGContextConvertPointToUserSpace" };
CachedOperation<VXRConvertSizeOperation> sizeToDevice { "CGContextConvertSizeToDeviceSpace" };
CachedOperation<VXRConvertSizeOperation> sizeToUser { "CGContextConvertSizeToUserSpace" };

AffineTransform deviceToUser(Context& context)
{
    const AffineTransform transform = VXRContextGetUserSpaceToDeviceSpaceTransform(context);
    return transform.inverted().value_or(transform);
}

/// Wraps around instead of overflowing.
std::int32_t difference(std::int32_t a, std::int32_t b)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}

} // namespace

VXRClipInfo VXRMakeClipInfo(const VXRClipRecord& record)
{
    const auto& r = record.bounds;
    return { { difference(r[0], record.originX), difference(r[2], record.originY),
        difference(r[1], record.originX), difference(r[3], record.originY) } };
}

bool VXREqualClipInfos(const VXRClipInfo& a, const VXRClipInfo& b) { return a == b; }

std::string VXRStringFromClipInfo(const VXRClipInfo& info)
{
    const auto& v = info.values;
    return fmt::format("{{{}, {}, {}, {}}}", v[0], v[1], v[2], v[3]);
}

AffineTransform VXRContextGetUserSpaceToDeviceSpaceTransform(Context& context)
{
    const AffineTransform current = context.currentTransform();
    PixelAccess* access = context.pixelAccess();
    if (!access || !access->lock())
        return current;
    const AffineTransform whole = concat(current, access->transform());
    access->unlock();
    return whole;
}

Point VXRContextConvertPointToDeviceSpace(Context& context, Point p)
{
    if (auto* operation = pointToDevice.get())
        return operation(context, p);
    return VXRContextGetUserSpaceToDeviceSpaceTransform(context).map(p);
}

Point VXRContextConvertPointToUserSpace(Context& context, Point p)
{
    if (auto* operation = pointToUser.get())
        return operation(context, p);
    return deviceToUser(context).map(p);
}

Size VXRContextConvertSizeToDeviceSpace(Context& context, Size s)
{
    if (auto* operation = sizeToDevice.get())
        return operation(context, s);
    return VXRContextGetUserSpaceToDeviceSpaceTransform(context).map(s);
}

Size VXRContextConvertSizeToUserSpace(Context& context, Size s)
{
    if (auto* operation = sizeToUser.get())
        return operation(context, s);
    return deviceToUser(context).map(s);
}

void VXRForgetContextOperations()
{
    pointToDevice.lookedUp = pointToUser.lookedUp = false;
    sizeToDevice.lookedUp = sizeToUser.lookedUp = false;
}

} // namespace vxr
