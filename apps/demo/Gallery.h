#pragma once

#include <string>

namespace vxr::demo {

/// Draws every scene as PNG (two pixels a point) and PDF into `folder`, which is made when it is missing,
/// and an index.html that shows them. Returns the number of scenes; throws `GenericException` with the
/// reason when a file can't be written.
int writeGallery(const std::string& folder);

} // namespace vxr::demo
