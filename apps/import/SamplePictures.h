#pragma once

#include <string>

namespace vxr::importing {

// Pictures of one pixel, for libraries to do their first work on.
std::string sampleJPEG();
std::string samplePNG();
std::string sampleBMP();

} // namespace vxr::importing
