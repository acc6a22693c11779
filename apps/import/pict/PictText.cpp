#include <apps/import/pict/PictText.h>

namespace vxr::importing {
namespace {

enum Face { Bold = 1, Italic = 2, Underline = 4, Outline = 8, Shadow = 16, Condensed = 32, Extended = 64 };

/// The upper half of the character set "macintosh" of RFC 1345, from 0x80 on.
constexpr char16_t upperHalf[] = u"\u00c4\u00c5\u00c7\u00c9\u00d1\u00d6\u00dc\u00e1\u00e0\u00e2\u00e4\u00e3"
                                 u"\u00e5\u00e7\u00e9\u00e8\u00ea\u00eb\u00ed\u00ec\u00ee\u00ef\u00f1\u00f3"
                                 u"\u00f2\u00f4\u00f6\u00f5\u00fa\u00f9\u00fb\u00fc\u2020\u00b0\u00a2\u00a3"
                                 u"\u00a7\u2022\u00b6\u00df\u00ae\u00a9\u2122\u00b4\u00a8\u2260\u00c6\u00d8"
                                 u"\u221e\u00b1\u2264\u2265\u00a5\u00b5\u2202\u2211\u220f\u03c0\u222b\u00aa"
                                 u"\u00ba\u03a9\u00e6\u00f8\u00bf\u00a1\u00ac\u221a\u0192\u2248\u2206\u00ab"
                                 u"\u00bb\u2026\u00a0\u00c0\u00c3\u00d5\u0152\u0153\u2013\u2014\u201c\u201d"
                                 u"\u2018\u2019\u00f7\u25ca\u00ff\u0178\u2044\u20ac\u2039\u203a\ufb01\ufb02"
                                 u"\u2021\u00b7\u201a\u201e\u2030\u00c2\u00ca\u00c1\u00cb\u00c8\u00cd\u00ce"
                                 u"\u00cf\u00cc\u00d3\u00d4\uf8ff\u00d2\u00da\u00db\u00d9\u0131\u02c6\u02dc"
                                 u"\u00af\u02d8\u02d9\u02da\u00b8\u02dd\u02db\u02c7";
static_assert(sizeof upperHalf / sizeof upperHalf[0] == 129);

void appendUTF8(std::string& text, unsigned code)
{
    if (code < 0x80) {
        text += static_cast<char>(code);
    } else if (code < 0x800) {
        text += static_cast<char>(0xc0 | code >> 6);
        text += static_cast<char>(0x80 | (code & 63));
    } else {
        text += static_cast<char>(0xe0 | code >> 12);
        text += static_cast<char>(0x80 | (code >> 6 & 63));
        text += static_cast<char>(0x80 | (code & 63));
    }
}

/// The family to ask for: the picture's own name for the font, or a generic one by the font's well-known
/// number.
std::string familyOf(const PictTextStyle& style)
{
    if (const auto named = style.fontNames.find(style.font); named != style.fontNames.end())
        return named->second;
    switch (style.font) {
    case 2:
    case 20:
        return "serif";
    case 4:
    case 22:
        return "monospace";
    default:
        return "sans-serif";
    }
}

/// Lays the text out from (0, 0) and hands each piece that stands together to `emit`, which draws it or
/// appends its outlines at the current point. Answers how far the text advances.
double layOut(cairo_t* context, std::span<const std::byte> text, const PictTextStyle& style,
    void (*emit)(cairo_t*, const char*))
{
    const bool isPlain = style.extraOfSpaces == 0 && style.extraOfCharacters == 0;
    const std::size_t step = isPlain ? text.size() : 1;
    double x = 0;
    for (std::size_t i = 0; i < text.size(); i += step) {
        const std::string piece = utf8Text(text.subspan(i, step));
        cairo_text_extents_t extents;
        cairo_text_extents(context, piece.c_str(), &extents);
        cairo_move_to(context, x, 0);
        emit(context, piece.c_str());
        x += extents.x_advance;
        if (!isPlain)
            x += style.extraOfCharacters + (piece == " " ? style.extraOfSpaces : 0);
    }
    return x;
}

} // namespace

std::string utf8Text(std::span<const std::byte> text)
{
    std::string result;
    for (const std::byte byte : text) {
        const unsigned code = std::to_integer<unsigned>(byte);
        if (code >= 0x80)
            appendUTF8(result, upperHalf[code - 0x80]);
        else if (code >= 0x20 && code != 0x7f)
            appendUTF8(result, code);
    }
    return result;
}

void drawText(cairo_t* context, std::span<const std::byte> text, PictPoint origin, const PictTextStyle& style,
    const PictColors& colors)
{
    if (text.empty())
        return;
    const double size = style.size > 0 ? style.size : 12;
    cairo_save(context);
    cairo_translate(context, origin.x, origin.y);
    double widening = 1;
    if (style.face & Condensed)
        widening *= 0.85;
    if (style.face & Extended)
        widening *= 1.15;
    cairo_scale(context, style.scaleX * widening, style.scaleY);
    cairo_select_font_face(context, familyOf(style).c_str(),
        style.face & Italic ? CAIRO_FONT_SLANT_ITALIC : CAIRO_FONT_SLANT_NORMAL,
        style.face & Bold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(context, size);
    if (setMarkingSource(context, style.mode, colors)) {
        double advance = 0;
        if (style.face & (Outline | Shadow)) {
            if (style.face & Shadow) {
                cairo_save(context);
                cairo_translate(context, size / 16, size / 16);
                layOut(context, text, style, cairo_text_path);
                cairo_restore(context);
                cairo_fill(context);
            }
            // Hollow letters: the background inside, a thin line of the foreground around.
            advance = layOut(context, text, style, cairo_text_path);
            cairo_save(context);
            cairo_set_operator(context, CAIRO_OPERATOR_OVER);
            cairo_set_source_rgb(
                context, colors.background.red, colors.background.green, colors.background.blue);
            cairo_fill_preserve(context);
            cairo_restore(context);
            cairo_set_line_width(context, size / 24);
            cairo_stroke(context);
        } else {
            advance = layOut(context, text, style, cairo_show_text);
        }
        if (style.face & Underline) {
            cairo_new_path(context);
            cairo_rectangle(context, 0, size / 10, advance, size / 14);
            cairo_fill(context);
        }
    }
    cairo_restore(context);
    cairo_new_path(context);
}

} // namespace vxr::importing
