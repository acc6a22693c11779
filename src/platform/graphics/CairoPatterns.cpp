#include <vxr/platform/graphics/CairoImpl.h>
#include <vxr/platform/graphics/Pattern.h>

namespace vxr {

bool CairoContext::Impl::setPatternSource(const Pattern&, float, const DeviceBox&) { return false; }

} // namespace vxr
