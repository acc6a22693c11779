#pragma once

#include <apps/vxr/import/Import.h>

namespace vxr {
class VXRImageBinary;
}

namespace app {

/// Whether a file holds a picture rather than a drawing, by its name. Throws `std::runtime_error` for the
/// name of a picture when there is no program to read pictures with.
bool isPicture(const std::string& path);

/// Throws `std::runtime_error` with the reason when it can't be read.
std::shared_ptr<vxr::VXRImageBinary> readPicture(const std::string& path);

/// A picture as a drawing of its natural size: one rectangle that is filled with it. Throws like
/// `readPicture`.
ImportedDrawing importPicture(const std::string& path);

} // namespace app
