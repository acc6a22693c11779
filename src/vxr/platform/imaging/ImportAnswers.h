#pragma once

#include <vxr/platform/imaging/ImportProtocol.h>

namespace vxr::importing {

/// A job's report and payload, checked: whoever wrote them may have been taken over by the file it read. Each
/// of these answers none when a number is impossible, lies outside of what was sent, or isn't what was asked.

std::optional<Report> readReport(std::span<const std::byte> report);

std::optional<BitmapInfo> readBitmapInfo(std::span<const std::byte> report);

/// `payloadBytes` must hold all rows of the format.
std::optional<BitmapFormat> readPixelFormat(const Report&, std::uint64_t payloadBytes);

std::optional<DocumentInfo> readDocumentInfo(const Report&);

/// Lines of an extension, a type in quotes or a dash, and the number of a kind.
std::vector<ImportFileType> readFileTypes(std::span<const std::byte> report);

/// The report's message with nothing in it that would break a log line.
std::string readMessage(const Report&);

} // namespace vxr::importing
