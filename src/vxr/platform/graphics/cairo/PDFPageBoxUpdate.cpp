#include <vxr/platform/graphics/cairo/PDFPageBoxUpdate.h>

#include <fmt/format.h>

#include <cstdlib>
#include <string_view>
#include <vector>

namespace vxr {

namespace {

constexpr std::size_t entryLength = 20; ///< of a cross-reference entry, by the file format

/// The boxes that a page has beside its media box, as entries of its dictionary. The media box is
/// written with its corner at the origin, so the others move with it.
std::string boxEntries(const PDFPageBoxes& page)
{
    std::string entries;
    const auto add = [&](const char* name, const Rect& box) {
        if (box.isEmpty())
            return;
        const Rect moved = offsetRect(box, -page.media.origin.x, -page.media.origin.y);
        entries += fmt::format(
            "   /{} [ {} {} {} {} ]\n", name, moved.minX(), moved.minY(), moved.maxX(), moved.maxY());
    };
    add("CropBox", page.crop);
    add("BleedBox", page.bleed);
    add("TrimBox", page.trim);
    add("ArtBox", page.art);
    return entries;
}

class Update {
public:
    explicit Update(std::string& document)
        : mDocument(document)
    {
    }

    void append(std::span<const PDFPageBoxes> pages)
    {
        const std::size_t startKey = mDocument.rfind("startxref\n");
        const std::size_t trailer = mDocument.rfind("trailer\n<< ");
        if (startKey == std::string::npos || trailer == std::string::npos || trailer > startKey)
            return;
        const std::size_t table = numberAt(startKey + std::string_view("startxref\n").size());
        const std::string trailerEntries = mDocument.substr(trailer + 11, startKey - trailer - 11);
        appendPages(table, pages);
        if (mTable.empty())
            return;
        const std::size_t newTable = mDocument.size();
        mDocument += fmt::format("xref\n{}trailer\n<< /Prev {}\n   {}startxref\n{}\n%%EOF\n", mTable, table,
            trailerEntries, newTable);
    }

private:
    std::size_t numberAt(std::size_t position) const
    {
        return static_cast<std::size_t>(std::strtoull(mDocument.c_str() + position, nullptr, 10));
    }

    bool hasAt(std::size_t position, std::string_view text) const
    {
        return position < mDocument.size() && mDocument.compare(position, text.size(), text) == 0;
    }

    /// Walks the cross-reference table, whose one section begins with object 0, and appends each page
    /// object with its boxes.
    void appendPages(std::size_t table, std::span<const PDFPageBoxes> pages)
    {
        if (!hasAt(table, "xref\n0 "))
            return;
        const std::size_t count = numberAt(table + 7);
        const std::size_t entries = mDocument.find('\n', table + 5) + 1;
        for (std::size_t object = 1; object < count; ++object) {
            const std::size_t entry = entries + object * entryLength;
            if (hasAt(entry + 17, "n"))
                appendIfPage(object, numberAt(entry), pages);
        }
    }

    // A page object names its number: `<< /Type /Page % 1`.
    void appendIfPage(std::size_t object, std::size_t position, std::span<const PDFPageBoxes> pages)
    {
        const std::string head = fmt::format("{} 0 obj\n<< /Type /Page % ", object);
        if (!hasAt(position, head))
            return;
        const std::size_t page = numberAt(position + head.size());
        const std::size_t insertion = mDocument.find('\n', position + head.size()) + 1;
        const std::size_t end = mDocument.find("endobj\n", insertion);
        if (page < 1 || page > pages.size() || end == std::string::npos)
            return;
        const std::string boxes = boxEntries(pages[page - 1]);
        if (boxes.empty())
            return;
        mTable += fmt::format("{} 1\n{:010} 00000 n \n", object, mDocument.size());
        mDocument += mDocument.substr(position, insertion - position) + boxes
            + mDocument.substr(insertion, end - insertion) + "endobj\n";
    }

    std::string& mDocument;
    std::string mTable; ///< of the new objects
};

} // namespace

void appendPageBoxUpdate(std::string& document, std::span<const PDFPageBoxes> pages)
{
    Update(document).append(pages);
}

} // namespace vxr
