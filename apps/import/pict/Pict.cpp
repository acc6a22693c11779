#include <apps/import/pict/Pict.h>

#include <apps/import/pict/PictPlayer.h>

#include <cairo-pdf.h>

#include <optional>

namespace vxr::importing {
namespace {

constexpr std::size_t fileHeaderSize = 512;

struct Header {
    PictRect frame; ///< of the page, in points
    PictRect space; ///< what the opcodes draw in, which fills the frame
    bool isVersion2 = false;
};

/// None where no picture starts here. Leaves the reader at the first opcode.
std::optional<Header> readHeader(PictReader& reader)
{
    try {
        Header header;
        reader.skip(2); // the low word of the size, of no use for large pictures
        header.frame = header.space = reader.rect();
        const unsigned first = reader.u16();
        if (first == 0x1101)
            return header;
        if (first != 0x0011 || reader.u16() != 0x02FF)
            return std::nullopt;
        header.isVersion2 = true;
        if (reader.u16() != 0x0C00)
            return std::nullopt;
        constexpr int extended = -2;
        const bool isExtended = reader.s16() == extended;
        reader.skip(10); // reserved, resolutions
        const PictRect space = reader.rect();
        reader.skip(4);
        if (isExtended && !space.isEmpty())
            header.space = space;
        return header;
    } catch (const PictError&) {
        return std::nullopt;
    }
}

std::optional<Header> findHeader(std::span<const std::byte> pict, PictReader& reader)
{
    for (const std::size_t start : { std::size_t(0), fileHeaderSize }) {
        if (start >= pict.size())
            break;
        reader = PictReader(pict.subspan(start));
        if (const auto header = readHeader(reader))
            return header;
    }
    return std::nullopt;
}

/// Plays until the picture ends or breaks off. True when all of it was there.
bool playAll(PictPlayer& player, PictReader& reader, bool isVersion2, std::size_t& played, std::string& error)
{
    try {
        for (;;) {
            if (isVersion2)
                reader.align();
            if (!player.play(isVersion2 ? reader.u16() : reader.u8(), reader))
                return true;
            ++played;
        }
    } catch (const PictError& failure) {
        error = failure.what();
        return false;
    }
}

cairo_status_t append(void* pdf, const unsigned char* bytes, unsigned length)
{
    static_cast<std::string*>(pdf)->append(reinterpret_cast<const char*>(bytes), length);
    return CAIRO_STATUS_SUCCESS;
}

} // namespace

bool canReadPict() { return true; }

bool convertPictToPDF(std::span<const std::byte> pict, std::string& pdf, std::string& error)
{
    PictReader reader(pict);
    const auto header = findHeader(pict, reader);
    if (!header) {
        error = "This is not a PICT.";
        return false;
    }
    if (header->frame.isEmpty()) {
        error = "The picture's frame is empty.";
        return false;
    }
    pdf.clear();
    const double width = header->frame.width(), height = header->frame.height();
    cairo_surface_t* const surface = cairo_pdf_surface_create_for_stream(append, &pdf, width, height);
    cairo_t* const page = cairo_create(surface);
    std::size_t played = 0;
    bool isWhole = false;
    {
        // One point is one unit of the page; pictures of a higher resolution are scaled into it.
        PictPlayer player(
            page, header->space, width / header->space.width(), height / header->space.height());
        if (header->isVersion2)
            player.setIsVersion2();
        isWhole = playAll(player, reader, header->isVersion2, played, error);
    }
    cairo_show_page(page);
    const bool isDrawn = cairo_status(page) == CAIRO_STATUS_SUCCESS;
    cairo_destroy(page);
    cairo_surface_finish(surface);
    const bool isWritten = isDrawn && cairo_surface_status(surface) == CAIRO_STATUS_SUCCESS;
    cairo_surface_destroy(surface);
    if (!isWritten) {
        error = "The picture could not be written as PDF.";
        return false;
    }
    if (isWhole)
        error.clear();
    return isWhole || played > 0;
}

} // namespace vxr::importing
