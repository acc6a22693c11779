#pragma once

#include <memory>
#include <string>

namespace vxr {

class Data;

/// The id of the picture that stands for a page while documents are written; the same for the same bytes as
/// long as a document is open.
std::string markForPage(const std::shared_ptr<const Data>& document);

/// Documents put the pages in place when they are closed. While any is open, the pages placed in it or in
/// recordings that it may draw are kept.
class PlacedPagesUser {
public:
    PlacedPagesUser();
    ~PlacedPagesUser();
    PlacedPagesUser(const PlacedPagesUser&) = delete;
    PlacedPagesUser& operator=(const PlacedPagesUser&) = delete;
};

/// Replaces the marks in a finished document by the pages they stand for. Where the import program refuses a
/// page, a grey area stays; the answer is then a sentence that says why, and empty otherwise.
std::string putPlacedPagesInto(std::string& document);

} // namespace vxr
