#pragma once

#include "Convert.h"

#include <vector>

namespace app {

/// A clip as paths to be intersected one after the other.
using ClipPaths = std::vector<std::shared_ptr<vxr::Path>>;

ClipPaths clipPathsFrom(const svg::Clip&);

} // namespace app
