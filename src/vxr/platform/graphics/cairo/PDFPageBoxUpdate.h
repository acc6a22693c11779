#pragma once

#include <vxr/platform/graphics/DocumentContext.h>

#include <span>
#include <string>

namespace vxr {

/// Appends an incremental update to a finished document, as cairo writes it (plain objects, one
/// cross-reference table), that gives its pages the boxes it has no calls for. `pages` are in order. A
/// document of another form stays as it is.
void appendPageBoxUpdate(std::string& document, std::span<const PDFPageBoxes> pages);

} // namespace vxr
