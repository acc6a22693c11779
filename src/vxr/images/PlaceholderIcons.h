#pragma once

#include <memory>
#include <string_view>

namespace vxr {

class PDFDocument;

/// The library's own artwork: "missingImageIcon" or "brokenImageIcon". None for another name.
std::shared_ptr<const PDFDocument> placeholderIconNamed(std::string_view name);

} // namespace vxr
