#pragma once

#include <apps/import/Job.h>

#include <memory>
#include <optional>
#include <string>

class QPDF;
class QPDFPageObjectHelper;
class QPDFObjectHandle;

namespace vxr::importing {

/// Reads a document; throws `Refusal` when it can't be read or is encrypted. The bytes must outlive it.
std::shared_ptr<QPDF> openDocument(std::string_view pdf);

/// Page 1; throws `Refusal` when there is none.
QPDFPageObjectHelper firstPage(QPDF& document);

/// The page's box, sides in order; none when it is damaged, empty or beyond all measure.
std::optional<PageBox> pageBox(QPDFPageObjectHelper& page, const char* key);
PageBox mediaBox(QPDFPageObjectHelper& page); ///< throws `Refusal` without one that is usable

/// Degrees clockwise: 0, 90, 180 or 270.
int pageRotation(QPDFPageObjectHelper& page);

/// What two boxes share; the first when they share nothing.
PageBox sharedBox(const PageBox& first, const PageBox& second);

QPDFObjectHandle rectangleOf(const PageBox& box);

/// A number with more places than the library's own six, as matrices need.
QPDFObjectHandle exactNumber(double value);

std::string writtenDocument(QPDF& document, const std::string& leastVersion);

/// The document with page 1's other boxes and its rotation taken away; empty when it has none that matter.
std::string documentWithPlainBoxes(const JobInput& input);

} // namespace vxr::importing
