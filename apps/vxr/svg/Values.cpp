#include "Values.h"

#include <array>
#include <numbers>

namespace app::svg {

double Length::resolved(double percentOf, double fontSize) const
{
    switch (unit) {
    case Unit::Number:
    case Unit::Px:
        return value;
    case Unit::Pt:
        return value * 96 / 72;
    case Unit::Pc:
        return value * 16;
    case Unit::Mm:
        return value * 96 / 25.4;
    case Unit::Cm:
        return value * 96 / 2.54;
    case Unit::In:
        return value * 96;
    case Unit::Q:
        return value * 96 / 101.6;
    case Unit::Em:
        return value * fontSize;
    case Unit::Ex:
        return value * fontSize / 2; // no font is ever loaded; half an em is what CSS falls back to
    case Unit::Percent:
        return value * percentOf / 100;
    }
    return value;
}

std::optional<Length> readLength(Scanner& in)
{
    const std::optional<double> value = in.number();
    if (!value)
        return std::nullopt;
    if (in.consume('%'))
        return Length { *value, Unit::Percent };
    const std::string_view word = in.word();
    if (word.empty())
        return Length { *value, Unit::Number };
    static constexpr std::pair<std::string_view, Unit> units[] = { { "px", Unit::Px }, { "pt", Unit::Pt },
        { "pc", Unit::Pc }, { "mm", Unit::Mm }, { "cm", Unit::Cm }, { "in", Unit::In }, { "q", Unit::Q },
        { "em", Unit::Em }, { "ex", Unit::Ex } };
    for (const auto& [name, unit] : units) {
        if (equalsIgnoringCase(word, name))
            return Length { *value, unit };
    }
    return std::nullopt;
}

std::optional<Length> parseLength(std::string_view text)
{
    Scanner in(trimmed(text));
    const std::optional<Length> length = readLength(in);
    return in.atEnd() ? length : std::nullopt;
}

std::optional<double> parseOpacity(std::string_view text)
{
    const std::optional<Length> length = parseLength(text);
    if (!length || (length->unit != Unit::Number && length->unit != Unit::Percent))
        return std::nullopt;
    return std::clamp(length->resolved(1, 0), 0.0, 1.0);
}

std::optional<std::vector<Length>> parseLengthList(std::string_view text)
{
    std::vector<Length> lengths;
    Scanner in(trimmed(text));
    while (!in.atEnd()) {
        const std::optional<Length> length = readLength(in);
        if (!length)
            return std::nullopt;
        lengths.push_back(*length);
        in.skipSpaceAndComma();
    }
    return lengths;
}

namespace {

/// One argument of a transform function, in user units or degrees.
std::optional<double> readArgument(Scanner& in)
{
    const std::optional<double> value = in.number();
    if (!value)
        return std::nullopt;
    if (in.consumeWord("px") || in.consumeWord("deg"))
        return value;
    if (in.consumeWord("grad"))
        return *value * 0.9;
    if (in.consumeWord("rad"))
        return *value * 180 / std::numbers::pi;
    if (in.consumeWord("turn"))
        return *value * 360;
    return value;
}

} // namespace

std::optional<double> parseAngle(std::string_view text)
{
    Scanner in(trimmed(text));
    const std::optional<double> value = readArgument(in);
    return in.atEnd() ? value : std::nullopt;
}

namespace {

struct Arguments {
    std::array<double, 6> value {};
    int count = 0;
};

std::optional<Arguments> readArguments(Scanner& in)
{
    Arguments arguments;
    in.skipSpace();
    if (!in.consume('('))
        return std::nullopt;
    in.skipSpace();
    while (!in.consume(')')) {
        const std::optional<double> value = arguments.count < 6 ? readArgument(in) : std::nullopt;
        if (!value)
            return std::nullopt;
        arguments.value[arguments.count++] = *value;
        in.skipSpaceAndComma();
    }
    return arguments;
}

std::optional<Matrix> matrixFor(std::string_view name, const Arguments& arguments)
{
    const auto& v = arguments.value;
    const int n = arguments.count;
    constexpr double radians = std::numbers::pi / 180;
    if (name == "matrix" && n == 6)
        return Matrix { v[0], v[1], v[2], v[3], v[4], v[5] };
    if (name == "translate" && (n == 1 || n == 2))
        return Matrix::translation(v[0], v[1]);
    if (name == "scale" && (n == 1 || n == 2))
        return Matrix::scaling(v[0], n == 1 ? v[0] : v[1]);
    if (name == "rotate" && n == 1)
        return Matrix::rotation(v[0] * radians);
    if (name == "rotate" && n == 3)
        return Matrix::translation(v[1], v[2]) * Matrix::rotation(v[0] * radians)
            * Matrix::translation(-v[1], -v[2]);
    if (name == "skewX" && n == 1)
        return Matrix { 1, 0, std::tan(v[0] * radians), 1, 0, 0 };
    if (name == "skewY" && n == 1)
        return Matrix { 1, std::tan(v[0] * radians), 0, 1, 0, 0 };
    return std::nullopt;
}

} // namespace

std::optional<Matrix> parseTransform(std::string_view text)
{
    Matrix result;
    Scanner in(trimmed(text));
    if (in.rest() == "none")
        return result;
    while (!in.atEnd()) {
        const std::string_view name = in.word();
        const std::optional<Arguments> arguments = readArguments(in);
        const std::optional<Matrix> step = arguments ? matrixFor(name, *arguments) : std::nullopt;
        if (!step)
            return std::nullopt;
        result = result * *step;
        in.skipSpaceAndComma();
    }
    return result;
}

std::optional<AspectRatio> parseAspectRatio(std::string_view text)
{
    AspectRatio ratio;
    Scanner in(trimmed(text));
    if (in.consumeWord("defer"))
        in.skipSpace();
    const std::string_view align = in.word();
    if (align == "none") {
        ratio.isNone = true;
    } else {
        const auto place = [](std::string_view word) -> std::optional<double> {
            return word == "Min" ? std::optional(0.0)
                : word == "Mid"  ? std::optional(0.5)
                : word == "Max"  ? std::optional(1.0)
                                 : std::nullopt;
        };
        if (align.size() != 8 || align[0] != 'x' || align[4] != 'Y' || !place(align.substr(1, 3))
            || !place(align.substr(5)))
            return std::nullopt;
        ratio.alignX = *place(align.substr(1, 3));
        ratio.alignY = *place(align.substr(5));
    }
    in.skipSpace();
    const std::string_view fit = in.word();
    if (!in.atEnd() || (!fit.empty() && fit != "meet" && fit != "slice"))
        return std::nullopt;
    ratio.isSlice = fit == "slice";
    return ratio;
}

std::optional<Box> parseViewBox(std::string_view text)
{
    std::array<double, 4> v {};
    Scanner in(trimmed(text));
    for (double& part : v) {
        const std::optional<double> number = in.number();
        if (!number)
            return std::nullopt;
        part = *number;
        in.skipSpaceAndComma();
    }
    if (!in.atEnd() || v[2] < 0 || v[3] < 0)
        return std::nullopt;
    return Box { v[0], v[1], v[0] + v[2], v[1] + v[3] };
}

Matrix viewBoxTransform(const Box& viewBox, double width, double height, const AspectRatio& ratio)
{
    double sx = width / viewBox.width();
    double sy = height / viewBox.height();
    if (!ratio.isNone)
        sx = sy = ratio.isSlice ? std::max(sx, sy) : std::min(sx, sy);
    const double dx = (width - viewBox.width() * sx) * (ratio.isNone ? 0 : ratio.alignX);
    const double dy = (height - viewBox.height() * sy) * (ratio.isNone ? 0 : ratio.alignY);
    return Matrix::translation(dx, dy) * Matrix::scaling(sx, sy)
        * Matrix::translation(-viewBox.minX, -viewBox.minY);
}

} // namespace app::svg
