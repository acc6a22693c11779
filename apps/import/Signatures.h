#pragma once

#include <vxr/platform/imaging/Importer.h>

#include <span>
#include <string>

namespace vxr::importing {

/// The usual extension of a bitmap's kind, by its first bytes; empty when no loader may try it. The loaders'
/// own search is not asked: one of them takes any file at all.
std::string bitmapKind(std::span<const std::byte> bytes);

/// Every file type that can be read here, with its kind. What a loader is missing for is left out.
std::vector<ImportFileType> readableFileTypes();

} // namespace vxr::importing
