#include "CssColor.h"

#include "Scanner.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <string>

namespace app::svg {

namespace {

struct NamedColor {
    std::string_view name;
    std::uint32_t rgb;
};

/// In alphabetical order, for the binary search.
constexpr NamedColor namedColors[] = {
    { "aliceblue", 0xF0F8FF },
    { "antiquewhite", 0xFAEBD7 },
    { "aqua", 0x00FFFF },
    { "aquamarine", 0x7FFFD4 },
    { "azure", 0xF0FFFF },
    { "beige", 0xF5F5DC },
    { "bisque", 0xFFE4C4 },
    { "black", 0x000000 },
    { "blanchedalmond", 0xFFEBCD },
    { "blue", 0x0000FF },
    { "blueviolet", 0x8A2BE2 },
    { "brown", 0xA52A2A },
    { "burlywood", 0xDEB887 },
    { "cadetblue", 0x5F9EA0 },
    { "chartreuse", 0x7FFF00 },
    { "chocolate", 0xD2691E },
    { "coral", 0xFF7F50 },
    { "cornflowerblue", 0x6495ED },
    { "cornsilk", 0xFFF8DC },
    { "crimson", 0xDC143C },
    { "cyan", 0x00FFFF },
    { "darkblue", 0x00008B },
    { "darkcyan", 0x008B8B },
    { "darkgoldenrod", 0xB8860B },
    { "darkgray", 0xA9A9A9 },
    { "darkgreen", 0x006400 },
    { "darkgrey", 0xA9A9A9 },
    { "darkkhaki", 0xBDB76B },
    { "darkmagenta", 0x8B008B },
    { "darkolivegreen", 0x556B2F },
    { "darkorange", 0xFF8C00 },
    { "darkorchid", 0x9932CC },
    { "darkred", 0x8B0000 },
    { "darksalmon", 0xE9967A },
    { "darkseagreen", 0x8FBC8F },
    { "darkslateblue", 0x483D8B },
    { "darkslategray", 0x2F4F4F },
    { "darkslategrey", 0x2F4F4F },
    { "darkturquoise", 0x00CED1 },
    { "darkviolet", 0x9400D3 },
    { "deeppink", 0xFF1493 },
    { "deepskyblue", 0x00BFFF },
    { "dimgray", 0x696969 },
    { "dimgrey", 0x696969 },
    { "dodgerblue", 0x1E90FF },
    { "firebrick", 0xB22222 },
    { "floralwhite", 0xFFFAF0 },
    { "forestgreen", 0x228B22 },
    { "fuchsia", 0xFF00FF },
    { "gainsboro", 0xDCDCDC },
    { "ghostwhite", 0xF8F8FF },
    { "gold", 0xFFD700 },
    { "goldenrod", 0xDAA520 },
    { "gray", 0x808080 },
    { "green", 0x008000 },
    { "greenyellow", 0xADFF2F },
    { "grey", 0x808080 },
    { "honeydew", 0xF0FFF0 },
    { "hotpink", 0xFF69B4 },
    { "indianred", 0xCD5C5C },
    { "indigo", 0x4B0082 },
    { "ivory", 0xFFFFF0 },
    { "khaki", 0xF0E68C },
    { "lavender", 0xE6E6FA },
    { "lavenderblush", 0xFFF0F5 },
    { "lawngreen", 0x7CFC00 },
    { "lemonchiffon", 0xFFFACD },
    { "lightblue", 0xADD8E6 },
    { "lightcoral", 0xF08080 },
    { "lightcyan", 0xE0FFFF },
    { "lightgoldenrodyellow", 0xFAFAD2 },
    { "lightgray", 0xD3D3D3 },
    { "lightgreen", 0x90EE90 },
    { "lightgrey", 0xD3D3D3 },
    { "lightpink", 0xFFB6C1 },
    { "lightsalmon", 0xFFA07A },
    { "lightseagreen", 0x20B2AA },
    { "lightskyblue", 0x87CEFA },
    { "lightslategray", 0x778899 },
    { "lightslategrey", 0x778899 },
    { "lightsteelblue", 0xB0C4DE },
    { "lightyellow", 0xFFFFE0 },
    { "lime", 0x00FF00 },
    { "limegreen", 0x32CD32 },
    { "linen", 0xFAF0E6 },
    { "magenta", 0xFF00FF },
    { "maroon", 0x800000 },
    { "mediumaquamarine", 0x66CDAA },
    { "mediumblue", 0x0000CD },
    { "mediumorchid", 0xBA55D3 },
    { "mediumpurple", 0x9370DB },
    { "mediumseagreen", 0x3CB371 },
    { "mediumslateblue", 0x7B68EE },
    { "mediumspringgreen", 0x00FA9A },
    { "mediumturquoise", 0x48D1CC },
    { "mediumvioletred", 0xC71585 },
    { "midnightblue", 0x191970 },
    { "mintcream", 0xF5FFFA },
    { "mistyrose", 0xFFE4E1 },
    { "moccasin", 0xFFE4B5 },
    { "navajowhite", 0xFFDEAD },
    { "navy", 0x000080 },
    { "oldlace", 0xFDF5E6 },
    { "olive", 0x808000 },
    { "olivedrab", 0x6B8E23 },
    { "orange", 0xFFA500 },
    { "orangered", 0xFF4500 },
    { "orchid", 0xDA70D6 },
    { "palegoldenrod", 0xEEE8AA },
    { "palegreen", 0x98FB98 },
    { "paleturquoise", 0xAFEEEE },
    { "palevioletred", 0xDB7093 },
    { "papayawhip", 0xFFEFD5 },
    { "peachpuff", 0xFFDAB9 },
    { "peru", 0xCD853F },
    { "pink", 0xFFC0CB },
    { "plum", 0xDDA0DD },
    { "powderblue", 0xB0E0E6 },
    { "purple", 0x800080 },
    { "rebeccapurple", 0x663399 },
    { "red", 0xFF0000 },
    { "rosybrown", 0xBC8F8F },
    { "royalblue", 0x4169E1 },
    { "saddlebrown", 0x8B4513 },
    { "salmon", 0xFA8072 },
    { "sandybrown", 0xF4A460 },
    { "seagreen", 0x2E8B57 },
    { "seashell", 0xFFF5EE },
    { "sienna", 0xA0522D },
    { "silver", 0xC0C0C0 },
    { "skyblue", 0x87CEEB },
    { "slateblue", 0x6A5ACD },
    { "slategray", 0x708090 },
    { "slategrey", 0x708090 },
    { "snow", 0xFFFAFA },
    { "springgreen", 0x00FF7F },
    { "steelblue", 0x4682B4 },
    { "tan", 0xD2B48C },
    { "teal", 0x008080 },
    { "thistle", 0xD8BFD8 },
    { "tomato", 0xFF6347 },
    { "turquoise", 0x40E0D0 },
    { "violet", 0xEE82EE },
    { "wheat", 0xF5DEB3 },
    { "white", 0xFFFFFF },
    { "whitesmoke", 0xF5F5F5 },
    { "yellow", 0xFFFF00 },
    { "yellowgreen", 0x9ACD32 },
};

Rgba fromBytes(std::uint32_t rgb, std::uint32_t alpha)
{
    return { (rgb >> 16 & 255) / 255.0, (rgb >> 8 & 255) / 255.0, (rgb & 255) / 255.0, alpha / 255.0 };
}

std::optional<Rgba> parseHex(std::string_view digits)
{
    std::array<std::uint32_t, 8> value {};
    if (digits.size() > value.size())
        return std::nullopt;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        const char c = digits[i];
        if (isDigit(c))
            value[i] = static_cast<std::uint32_t>(c - '0');
        else if ((c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'))
            value[i] = static_cast<std::uint32_t>((c | 32) - 'a' + 10);
        else
            return std::nullopt;
    }
    const bool isShort = digits.size() == 3 || digits.size() == 4;
    if (!isShort && digits.size() != 6 && digits.size() != 8)
        return std::nullopt;
    const auto byte
        = [&](std::size_t i) { return isShort ? value[i] * 17 : value[2 * i] * 16 + value[2 * i + 1]; };
    const bool hasAlpha = digits.size() % 4 == 0;
    return fromBytes(byte(0) << 16 | byte(1) << 8 | byte(2), hasAlpha ? byte(3) : 255);
}

double clampUnit(double v) { return std::clamp(v, 0.0, 1.0); }

struct Component {
    double value = 0;
    bool isPercent = false;
};

std::optional<Component> parseComponent(Scanner& in)
{
    const std::optional<double> value = in.number();
    if (!value)
        return std::nullopt;
    return Component { *value, in.consume('%') };
}

/// Degrees; a bare number is degrees too.
std::optional<double> parseHue(Scanner& in)
{
    const std::optional<double> value = in.number();
    if (!value)
        return std::nullopt;
    if (in.consumeWord("deg"))
        return value;
    if (in.consumeWord("grad"))
        return *value * 0.9;
    if (in.consumeWord("rad"))
        return *value * 57.29577951308232;
    if (in.consumeWord("turn"))
        return *value * 360;
    return value;
}

/// A pure hue as red, green and blue.
std::array<double, 3> hueToRGB(double degrees)
{
    const double h = (degrees - 360 * std::floor(degrees / 360)) / 60;
    return { clampUnit(std::fabs(h - 3) - 1), clampUnit(2 - std::fabs(h - 2)),
        clampUnit(2 - std::fabs(h - 4)) };
}

Rgba fromHSL(double hue, double saturation, double lightness)
{
    const double chroma = (1 - std::fabs(2 * lightness - 1)) * saturation;
    const std::array<double, 3> pure = hueToRGB(hue);
    const auto channel = [&](int i) { return clampUnit(lightness + chroma * (pure[i] - 0.5)); };
    return { channel(0), channel(1), channel(2), 1 };
}

Rgba fromHWB(double hue, double white, double black)
{
    if (white + black >= 1) {
        const double gray = white / (white + black);
        return { gray, gray, gray, 1 };
    }
    const std::array<double, 3> pure = hueToRGB(hue);
    const auto channel = [&](int i) { return pure[i] * (1 - white - black) + white; };
    return { channel(0), channel(1), channel(2), 1 };
}

enum class Notation { RGB, HSL, HWB };

std::optional<Rgba> parseFunction(Notation notation, Scanner& in)
{
    in.skipSpace();
    std::array<Component, 3> parts;
    bool hasCommas = false;
    for (int i = 0; i < 3; ++i) {
        if (i > 0) {
            in.skipSpace();
            const bool comma = in.consume(',');
            if (i == 2 && comma != hasCommas)
                return std::nullopt;
            hasCommas = comma;
            in.skipSpace();
        }
        if (i == 0 && notation != Notation::RGB) {
            const std::optional<double> hue = parseHue(in);
            if (!hue)
                return std::nullopt;
            parts[0].value = *hue;
            continue;
        }
        const std::optional<Component> part = parseComponent(in);
        if (!part || (notation != Notation::RGB && !part->isPercent))
            return std::nullopt;
        parts[i] = *part;
    }
    double alpha = 1;
    in.skipSpace();
    if (in.consume(hasCommas ? ',' : '/')) {
        in.skipSpace();
        const std::optional<Component> part = parseComponent(in);
        if (!part)
            return std::nullopt;
        alpha = clampUnit(part->isPercent ? part->value / 100 : part->value);
        in.skipSpace();
    }
    if (!in.consume(')') || !in.atEnd())
        return std::nullopt;

    const auto fraction = [&](int i) {
        return clampUnit(parts[i].value / (notation == Notation::RGB && !parts[i].isPercent ? 255 : 100));
    };
    Rgba color { fraction(0), fraction(1), fraction(2), 1 };
    if (notation == Notation::HSL)
        color = fromHSL(parts[0].value, fraction(1), fraction(2));
    else if (notation == Notation::HWB)
        color = fromHWB(parts[0].value, fraction(1), fraction(2));
    color.a = alpha;
    return color;
}

} // namespace

std::optional<Rgba> parseColor(std::string_view text)
{
    text = trimmed(text);
    if (text.starts_with('#'))
        return parseHex(text.substr(1));
    Scanner in(text);
    if (in.consumeWord("rgba(") || in.consumeWord("rgb("))
        return parseFunction(Notation::RGB, in);
    if (in.consumeWord("hsla(") || in.consumeWord("hsl("))
        return parseFunction(Notation::HSL, in);
    if (in.consumeWord("hwb("))
        return parseFunction(Notation::HWB, in);
    if (equalsIgnoringCase(text, "transparent"))
        return Rgba { 0, 0, 0, 0 };

    std::string name(text);
    std::transform(name.begin(), name.end(), name.begin(),
        [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 32) : c; });
    const auto found = std::lower_bound(std::begin(namedColors), std::end(namedColors), name,
        [](const NamedColor& entry, const std::string& key) { return entry.name < key; });
    if (found == std::end(namedColors) || found->name != name)
        return std::nullopt;
    return fromBytes(found->rgb, 255);
}

} // namespace app::svg
