#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace vxr::importing {

/// Draws a PICT of either version, with or without the 512 bytes in front, onto a PDF page of its frame's
/// size in points. False, and a sentence in `error`, when nothing of it can be drawn. A drawing that breaks
/// off is kept as far as it goes. Runs where a crash or a hang costs this picture only.
bool convertPictToPDF(std::span<const std::byte> pict, std::string& pdf, std::string& error);

/// Whether PICT files can be read at all.
bool canReadPict();

} // namespace vxr::importing
