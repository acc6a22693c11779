#pragma once

#include <string>
#include <string_view>

namespace vxr::importing {

/// Loads the decoders and lets each do its first work, so that jobs find everything ready. Starts no thread:
/// the process is forked from later.
void loadLibraries();

/// Modules of loaders for rarer kinds of bitmaps are large, and every library makes every fork slower: they
/// are loaded when a file of such a kind comes.
bool isLoadedFor(std::string_view bitmapKind);
void loadFor(std::string_view bitmapKind);

/// Where libvips has its modules, with a slash behind it.
std::string moduleFolder();

} // namespace vxr::importing
