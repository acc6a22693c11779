#include <apps/import/pict/Pict.h>
#include <apps/import/pict/PictPlayer.h>

#include <gmock/gmock.h>

#include <random>
#include <sstream>

namespace vxr::importing {
namespace {

using ::testing::HasSubstr;

/// Bytes written as hexadecimal digits; blanks don't count, and "text" in quotes stands for its characters.
std::vector<std::byte> bytesOf(const std::string& hex)
{
    std::vector<std::byte> bytes;
    std::string digits;
    bool isQuoted = false;
    for (const char c : hex) {
        if (c == '"')
            isQuoted = !isQuoted;
        else if (isQuoted)
            bytes.push_back(std::byte(c));
        else if (c != ' ' && c != '\n')
            digits += c;
        if (digits.size() == 2) {
            bytes.push_back(std::byte(std::stoi(digits, nullptr, 16)));
            digits.clear();
        }
    }
    return bytes;
}

constexpr int side = 16;

/// What the opcodes leave of a white field of 16 x 16, a letter a pixel: "." white, "#" black, "r", "g", "b"
/// and so on for pure colours, "?" for others.
std::string drawn(const std::string& opcodes, bool isVersion2 = true)
{
    cairo_surface_t* const surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, side, side);
    cairo_t* const page = cairo_create(surface);
    cairo_set_source_rgb(page, 1, 1, 1);
    cairo_paint(page);
    cairo_set_antialias(page, CAIRO_ANTIALIAS_NONE);
    const auto bytes = bytesOf(opcodes);
    PictReader reader(bytes);
    {
        PictPlayer player(page, { 0, 0, side, side });
        if (isVersion2)
            player.setIsVersion2();
        while (!reader.isAtEnd() && player.play(isVersion2 ? reader.u16() : reader.u8(), reader)) {
            if (isVersion2)
                reader.align();
        }
    }
    cairo_destroy(page);
    cairo_surface_flush(surface);
    std::string text;
    for (int y = 0; y < side; ++y) {
        const auto* row = reinterpret_cast<const std::uint32_t*>(
            cairo_image_surface_get_data(surface) + y * cairo_image_surface_get_stride(surface));
        for (int x = 0; x < side; ++x) {
            const std::string_view letters = "#bgcrmy.";
            unsigned code = 0;
            bool isPure = true;
            for (const int shift : { 16, 8, 0 }) {
                const unsigned channel = row[x] >> shift & 255;
                isPure = isPure && (channel == 0 || channel == 255);
                code = code * 2 + (channel == 255);
            }
            text += isPure ? letters[code] : '?';
        }
        text += '\n';
    }
    cairo_surface_destroy(surface);
    return text;
}

/// The letters of one row.
std::string row(const std::string& picture, int y)
{
    return picture.substr(std::size_t(y) * (side + 1), side);
}

TEST(Pict, DrawsEachKindOfShapeWithPenAndPatternsInColour)
{
    const struct {
        const char* name;
        std::string opcodes;
        int y;
        const char* pixels;
    } cases[] = {
        { "paint rect", "0031 0002 0003 0006 0008", 3, "...#####........" },
        { "frame rect with a wide pen", "0007 0002 0003 0030 0001 0001 000B 000F", 5, ".###........###." },
        { "frame rect, top edge", "0007 0002 0003 0030 0001 0001 000B 000F", 2, ".##############." },
        { "same rect filled in red", "001A FFFF 0000 0000 0031 0002 0003 0006 0008 003C", 3,
            "...rrrrr........" },
        { "erase takes the background", "001B 0000 0000 FFFF 0032 0000 0000 0010 0010", 3,
            "bbbbbbbbbbbbbbbb" },
        { "invert", "0031 0000 0000 0010 0008 0033 0000 0004 0010 000C", 3, "####....####...." },
        { "pattern of bits", "0009 AAAAAAAAAAAAAAAA 001A 0000 FFFF 0000 0031 0000 0000 0010 0010", 3,
            "g.g.g.g.g.g.g.g." },
        { "pattern with transparent gaps",
            "0031 0000 0000 0010 0008 001A FFFF 0000 0000 0008 0009 0009 F0F0F0F0F0F0F0F0 0031 0000 0000 "
            "0010 0010",
            3, "rrrr####rrrr...." },
        { "exclusive or", "0008 000A 0031 0000 0000 0010 0008 0031 0000 0004 0010 000C", 3,
            "####....####...." },
        { "clear paints the background",
            "0031 0000 0000 0010 0010 001B FFFF FFFF 0000 0008 000B 0031 0000 0004 0010 0008", 3,
            "####yyyy########" },
        { "horizontal line hangs below its points", "0007 0002 0001 0020 0003 0002 0003 000A", 4,
            "..#########....." },
        { "short line and from there on", "0022 0005 0002 0400 0023 00FE", 5, "..#####........." },
        { "oval", "0051 0000 0000 0010 0010", 8, "################" },
        { "oval corner", "0051 0000 0000 0010 0010", 0, ".....######....." },
        { "round rect, radius of the oval", "000B 0010 0010 0041 0000 0000 0010 0010", 0,
            ".....######....." },
        { "wedge from the top, clockwise", "0061 0000 0000 0010 0010 0000 005A", 6, "........########" },
        { "wedge, other half stays", "0061 0000 0000 0010 0010 0000 005A", 9, "................" },
        { "polygon", "0071 001A 0000 0000 0010 0010 0000 0000 0000 0010 0010 0010 0000 0000", 4,
            "....############" },
        { "framed polygon is left open", "0070 0012 0000 0000 0010 0010 0003 0002 0003 000A", 3,
            "..#########....." },
        { "region of two parts",
            "0081 0024 0002 0002 0006 000C 0002 0002 0004 0008 000C 7FFF 0006 0002 0004 0008 000C 7FFF 7FFF",
            4, "..##....####...." },
        { "clip by a region, then a rectangle of it",
            "0001 0024 0002 0002 0006 000C 0002 0002 0004 0008 000C 7FFF 0006 0002 0004 0008 000C 7FFF 7FFF "
            "0031 0000 0000 0010 0010",
            4, "..##....####...." },
        { "clip is replaced",
            "0001 000A 0000 0000 0001 0001 0001 000A 0000 0000 0010 0004 0031 0000 0000 0010 0010", 9,
            "####............" },
        { "origin", "000C 0004 0000 0031 0000 0004 0010 0008", 3, "####............" },
        { "old colours", "000E 000000CD 0031 0000 0000 0010 0010", 3, "rrrrrrrrrrrrrrrr" },
        { "pattern of pixels", "0013 0002 0000000000000000 0000 FFFF FFFF 0031 0000 0000 0010 0010", 3,
            "cccccccccccccccc" },
        { "comments and reserved opcodes are skipped",
            "00A1 0001 0003 \"abc\" 00 00A0 0001 0100 0000 0300 000000000000 00D0 00000002 0000 "
            "0024 0002 0000 8101 00000002 0000 0031 0000 0000 0010 0004",
            9, "####............" },
    };
    for (const auto& c : cases)
        EXPECT_EQ(row(drawn(c.opcodes), c.y), c.pixels) << c.name;
    // Of version 1: opcodes of one byte, nothing aligned.
    EXPECT_EQ(row(drawn("04 01 31 0002 0003 0006 0008", false), 3), "...#####........");
}

TEST(Pict, DrawsBitmapsOfEveryDepthAndPacking)
{
    const std::string toField = "0000 0000 0001 0004 0000 0000 0010 0010 "; // source and target
    const std::string map = "0000 0000 0001 0004 0000 ";
    const std::string rest = "00000000 00480000 00480000 "; // packed size and resolutions
    const struct {
        const char* name;
        std::string opcodes;
        const char* pixels;
    } cases[] = {
        { "one bit, as it is", "0090 0002 0000 0000 0001 0004 " + toField + "0000 A000", "####....####...." },
        { "one bit in colours",
            "001A FFFF 0000 0000 001B 0000 0000 FFFF 0090 0002 0000 0000 0001 0004 " + toField + "0000 A000",
            "rrrrbbbbrrrrbbbb" },
        { "one bit, gaps transparent",
            "001A FFFF 0000 0000 0090 0002 0000 0000 0001 0004 " + toField + "0001 5000",
            "....rrrr....rrrr" },
        { "one bit, inverted", "0090 0002 0000 0000 0001 0004 " + toField + "0004 A000", "....####....####" },
        { "one bit, within a region",
            "0091 0002 0000 0000 0001 0004 " + toField + "0000 000A 0000 0000 0010 0002 A000",
            "##.............." },
        { "packed one bit", "0098 0008 0000 0000 0001 0004 " + toField + "0000 02 F9A0", "####....####...." },
        { "indexed, four bits",
            "0098 8002 " + map + "0000 " + rest + "0000 0004 0001 0004 00000000 00000000 00000000 "
                + "00000000 0000 0002 0000 FFFF 0000 0000 0001 0000 FFFF 0000 0002 0000 0000 FFFF " + toField
                + "0000 0120",
            "rrrrggggbbbbrrrr" },
        { "direct, 16 bits, packed by words",
            "009A 000000FF 8008 " + map + "0003 " + rest + "0010 0010 0003 0005 00000000 00000000 00000000 "
                + toField + "0000 06 FF7C00 FF001F",
            "rrrrrrrrbbbbbbbb" },
        { "direct, 32 bits, by planes",
            "009A 000000FF 8010 " + map + "0004 " + rest + "0010 0020 0003 0008 00000000 00000000 00000000 "
                + toField + "0000 04 FDFF F900",
            "rrrrrrrrrrrrrrrr" },
        { "direct, 32 bits, without padding",
            "009A 000000FF 8010 " + map + "0002 " + rest + "0010 0020 0003 0008 00000000 00000000 00000000 "
                + toField + "0000 FF0000 00FF00 0000FF FFFFFF",
            "rrrrggggbbbb...." },
    };
    for (const auto& c : cases)
        EXPECT_EQ(row(drawn(c.opcodes), 8), c.pixels) << c.name;
}

std::string file(const std::string& opcodes, bool hasFileHeader = false)
{
    return (hasFileHeader ? std::string(1024, '0') : "")
        + "0000 0000 0000 0010 0020 0011 02FF 0C00 FFFE 0000 00480000 00480000 0000 0000 0010 0020 00000000 "
        + opcodes;
}

std::string convert(const std::string& hex, std::string& pdf)
{
    std::string error;
    const bool isDone = convertPictToPDF(bytesOf(hex), pdf, error);
    return (isDone ? "done " : "refused ") + error;
}

TEST(Pict, MakesAPageOfItsFrame)
{
    std::string pdf;
    for (const bool hasFileHeader : { false, true }) {
        EXPECT_EQ(convert(file("0031 0000 0000 0010 0010 00FF", hasFileHeader), pdf), "done ");
        EXPECT_THAT(pdf, HasSubstr("/MediaBox [ 0 0 32 16 ]"));
    }
    EXPECT_EQ(convert("0000 0000 0000 0010 0020 1101 31 0000 0000 0010 0010 FF", pdf), "done ");
    EXPECT_EQ(convert(file("0031 0000 0000 0010 0010 0031 0000"), pdf), "done The picture ends too early.");
    EXPECT_EQ(convert(file("00"), pdf), "refused The picture ends too early.");
    EXPECT_EQ(convert("", pdf), "refused This is not a PICT.");
    EXPECT_EQ(convert(std::string(2000, '7'), pdf), "refused This is not a PICT.");
}

TEST(Pict, KeepsTheBytesOfAJPEGAndDropsItsStandIn)
{
    // A frame header is all that placing needs.
    const std::string jpeg = "FFD8 FFC0 0011 08 0008 0010 03 011100 021101 031101 FFD9";
    const std::string description = "00000056 \"jpeg\" 0000000000000000 0001 0001 \"none\" 00000000 00000000 "
                                    "0010 0008 00480000 00480000 "
                                    "00000019 0001 "
        + std::string(64, '0') + " 0018 FFFF ";
    const std::string compressed
        = "0000 00010000 00000000 00000000 00000000 00010000 00000000 00000000 00000000 "
          "40000000 00000000 0000 0000 0000 0000 0000 0000 0000 0008 0010 00000000 00000000 "
        + description + jpeg;
    std::ostringstream size;
    size << std::hex;
    size.width(8);
    size.fill('0');
    size << bytesOf(compressed).size();
    std::string pdf;
    EXPECT_EQ(convert(file("8200 " + size.str() + compressed + " 00 00FF"), pdf), "done ");
    const auto bytes = bytesOf(jpeg);
    EXPECT_THAT(pdf, HasSubstr(std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size())));
    EXPECT_THAT(pdf, HasSubstr("/DCTDecode"));
}

TEST(Pict, KeepsCharactersOfItsText)
{
    std::string pdf;
    EXPECT_EQ(
        convert(file("0003 0014 000D 000C 0004 0100 0028 000A 0002 03 \"A\" 8A 8E 00FF"), pdf), "done ");
    EXPECT_THAT(pdf, HasSubstr("/Font"));
    const auto text = bytesOf("41 8A 0D A5 D5");
    EXPECT_EQ(utf8Text(text), "A\u00e4\u2022\u2019");
}

TEST(Pict, SurvivesDamage)
{
    const auto whole = bytesOf(file(
        "0001 000A 0000 0000 0010 0020 0013 0002 0000000000000000 0000 FFFF FFFF 0041 0000 0000 0010 0010 "
        "0070 0012 0000 0000 0010 0010 0003 0002 0003 000A 0098 0008 0000 0000 0001 0004 0000 0000 0001 0004 "
        "0000 0000 0010 0010 0000 02 F9A0 00 0081 0024 0002 0002 0006 000C 0002 0002 0004 0008 000C 7FFF "
        "0006 "
        "0002 0004 0008 000C 7FFF 7FFF 0028 000A 0002 03 \"ABC\" 00 00FF"));
    std::mt19937 random(5);
    int done = 0;
    for (int i = 0; i < 400; ++i) {
        auto damaged = whole;
        for (unsigned n = 1 + random() % 6; n > 0; --n)
            damaged[40 + random() % (damaged.size() - 40)] = std::byte(random());
        damaged.resize(damaged.size() - random() % 20);
        std::string pdf, error;
        const bool isDone = convertPictToPDF(damaged, pdf, error);
        EXPECT_TRUE(isDone || !error.empty());
        done += isDone;
    }
    EXPECT_GT(done, 100);
}

} // namespace
} // namespace vxr::importing
