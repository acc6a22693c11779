#pragma once

namespace vxr {

/// Teaches the sequential coder to write and read colours. Does nothing after the first call.
void registerColorCoding();

} // namespace vxr
