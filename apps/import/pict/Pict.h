#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace vxr::importing {

/// Draws a PICT, with or without the 512 bytes in front, onto a PDF page of its frame's size. False, and a
/// sentence in `error`, when it can't be read. Runs where a crash or a hang costs this picture only.
bool convertPictToPDF(std::span<const std::byte> pict, std::string& pdf, std::string& error);

/// Whether PICT files can be read at all.
bool canReadPict();

} // namespace vxr::importing
