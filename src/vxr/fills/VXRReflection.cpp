#include <vxr/fills/VXRReflection.h>

#include <fmt/format.h>

namespace vxr {

std::shared_ptr<VXRReflection> VXRReflection::reflection() { return std::make_shared<VXRReflection>(); }

VXRReflection::VXRReflection(float opacity) { setOpacity(opacity); }

std::string VXRReflection::description() const
{
    return fmt::format("VXRReflection<{}>", fmt::ptr(static_cast<const void*>(this)));
}

bool VXRReflection::isEqual(const Object& other) const { return isOfReceiversClass(other); }

std::shared_ptr<VXRReflection> VXRReflection::copyWithZone() const
{
    return std::make_shared<VXRReflection>();
}

bool VXRReflection::isOfReceiversClass(const Object& other) const
{
    return dynamic_cast<const VXRReflection*>(&other) != nullptr;
}

} // namespace vxr
