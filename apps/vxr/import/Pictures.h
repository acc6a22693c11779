#pragma once

#include <apps/vxr/import/Import.h>

namespace app {

/// Whether a file holds a picture rather than a drawing, by its name. Throws `std::runtime_error` for the
/// name of a picture when there is no program to read pictures with.
bool isPicture(const std::string& path);

/// A picture as a drawing of its natural size: one rectangle that is filled with it. Throws
/// `std::runtime_error` when it can't be read.
ImportedDrawing importPicture(const std::string& path);

} // namespace app
