#pragma once

#include <memory>

namespace vxr {

class Image;
class ImportedBitmap;

/// Drawable pixels as an image over the same memory. None for none and for a side beyond an image's limit.
std::shared_ptr<const Image> imageOfImportedBitmap(const std::shared_ptr<const ImportedBitmap>&);

} // namespace vxr
