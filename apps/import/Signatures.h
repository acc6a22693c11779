#pragma once

#include <vxr/platform/imaging/Importer.h>

#include <span>
#include <string>
#include <string_view>

namespace vxr::importing {

/// The usual extension of a bitmap's kind, by its first bytes; empty when no loader may try it. The loaders'
/// own search is not asked: one of them takes any file at all.
std::string bitmapKind(std::span<const std::byte> bytes);

/// The loader of a kind that is a library of its own, by its file's name; null for the others.
const char* moduleFor(std::string_view kind);

/// Every file type that can be read here, with its kind. What a loader is missing for is left out.
std::vector<ImportFileType> readableFileTypes();

} // namespace vxr::importing
