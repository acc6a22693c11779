#include <vxr/platform/base/Data.h>
#include <vxr/platform/graphics/cairo/PlacedPages.h>
#include <vxr/platform/imaging/Importer.h>
#include <vxr/platform/imaging/PageMark.h>

#include <algorithm>
#include <map>
#include <vector>

namespace vxr {

namespace {

constexpr std::size_t markLength = 32;
constexpr std::size_t mostPagesAtOnce = 128; ///< each takes a descriptor while it is placed

struct Registry {
    std::map<std::shared_ptr<const Data>, std::string> marks;
    std::map<std::string, std::shared_ptr<const Data>, std::less<>> pages;
    int users = 0;
};

Registry& registry()
{
    static Registry shared;
    return shared;
}

/// Every mark's file begins with the same bytes, then comes the mark.
std::string beginOfMark()
{
    const std::string example(markLength, '.');
    const std::string jpeg = pageMarkJPEG(example);
    return jpeg.substr(0, jpeg.find(example));
}

/// The pages whose marks are in the document, each once.
std::vector<std::string> marksIn(const std::string& document)
{
    const std::string begin = beginOfMark();
    std::vector<std::string> marks;
    for (std::size_t at = document.find(begin); at != std::string::npos; at = document.find(begin, at + 1)) {
        std::string mark = document.substr(at + begin.size(), markLength);
        if (registry().pages.contains(mark) && std::ranges::find(marks, mark) == marks.end())
            marks.push_back(std::move(mark));
    }
    return marks;
}

std::string place(std::string& document, std::span<const std::string> marks)
{
    std::vector<PlacedPage> pages;
    for (const std::string& mark : marks)
        pages.push_back({ mark, MemoryFile::createWithCopy(registry().pages.find(mark)->second->bytes()) });
    std::erase_if(pages, [](const PlacedPage& page) { return !page.document; });
    ImportFailure failure;
    const auto written = MemoryFile::createWithCopy(document.data(), document.size());
    const auto placed = written ? Importer::shared().placePages(*written, pages, &failure) : nullptr;
    if (placed) {
        document.assign(reinterpret_cast<const char*>(placed->bytes().data()), placed->size());
        return {};
    }
    if (marks.size() == 1)
        return failure.message.empty() ? "A page can't be placed." : failure.message;
    // One of them is to blame; the others are placed.
    const std::string first = place(document, marks.first(marks.size() / 2));
    const std::string second = place(document, marks.subspan(marks.size() / 2));
    return first.empty() ? second : first;
}

/// JPEG files lie in documents as they are, so what they carry can be seen. A picture without its profile is
/// no failure: it has device colours.
void honourProfiles(std::string& document)
{
    if (document.find("ICC_PROFILE") == std::string::npos)
        return;
    const auto written = MemoryFile::createWithCopy(document.data(), document.size());
    if (const auto honoured = written ? Importer::shared().placePages(*written, {}) : nullptr)
        document.assign(reinterpret_cast<const char*>(honoured->bytes().data()), honoured->size());
}

} // namespace

PlacedPagesUser::PlacedPagesUser() { ++registry().users; }

PlacedPagesUser::~PlacedPagesUser()
{
    if (--registry().users > 0)
        return;
    registry().marks.clear();
    registry().pages.clear();
}

std::string markForPage(const std::shared_ptr<const Data>& document)
{
    std::string& mark = registry().marks[document];
    if (mark.empty()) {
        mark = makePageMark();
        registry().pages[mark] = document;
    }
    return mark;
}

std::string putPlacedPagesInto(std::string& document)
{
    const std::vector<std::string> marks = marksIn(document);
    std::string failure;
    if (marks.empty())
        honourProfiles(document);
    for (std::size_t at = 0; at < marks.size(); at += mostPagesAtOnce) {
        const std::span some = std::span(marks).subspan(at, std::min(mostPagesAtOnce, marks.size() - at));
        const std::string message = place(document, some);
        if (failure.empty())
            failure = message;
    }
    return failure;
}

} // namespace vxr
