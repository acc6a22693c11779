#pragma once

#include <string>
#include <string_view>

namespace vxr::importing {

/// The PostScript of an EPS file, without a preview, with its bounding box where an interpreter looks for it:
/// in the header, though the file may state it at its end only. Throws `Refusal` when the file is no
/// EPS or states no box with an area; an interpreter would make a page of a usual size of it.
std::string postScriptWithBox(std::string_view eps);

} // namespace vxr::importing
