#pragma once

namespace vxr {

/// Registers the coding of colours with the sequential coder. Does nothing after the first call.
void registerColorCoding();

} // namespace vxr
