#pragma once

#include <vxr/filters/VXRFilterAdaptor.h>

namespace vxr {

/// The adaptors of the library's own filters, in the order in which their filters stand on a stack.
std::vector<std::unique_ptr<VXRFilterAdaptor>> standardAdaptors();

} // namespace vxr
