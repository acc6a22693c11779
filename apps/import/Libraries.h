#pragma once

namespace vxr::importing {

/// Loads the decoders and lets each do its first work, so that jobs find everything ready. Starts no thread:
/// the process is forked from later.
void loadLibraries();

} // namespace vxr::importing
