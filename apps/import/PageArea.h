#pragma once

#include <string_view>

namespace vxr::importing {

/// Draws a page of a document into nothing that stays: fonts and tables are then loaded.
void drawSamplePage(std::string_view pdf);

} // namespace vxr::importing
