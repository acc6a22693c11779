#pragma once

#include <vxr/platform/base/Export.h>

#include <string>
#include <string_view>

namespace vxr {

/// An id that no picture carries by chance: 32 hexadecimal digits from the system's random source.
VXR_EXPORT std::string makePageMark();

/// A grey JPEG of one pixel that carries the id as a comment. A document is drawn with it stretched over the
/// place of a page; `Importer::placePages` finds it there by its bytes.
VXR_EXPORT std::string pageMarkJPEG(std::string_view mark);

} // namespace vxr
