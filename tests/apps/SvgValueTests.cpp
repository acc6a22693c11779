#include <apps/vxr/svg/CssColor.h>
#include <apps/vxr/svg/Values.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <random>
#include <string>

namespace app::svg {
namespace {

TEST(SvgColor, ReadsEveryCssForm)
{
    const struct {
        const char* text;
        int r, g, b; ///< 0 to 255
        double a;
    } cases[] = {
        { "red", 255, 0, 0, 1 },
        { "  RebeccaPurple ", 102, 51, 153, 1 },
        { "yellowgreen", 154, 205, 50, 1 },
        { "transparent", 0, 0, 0, 0 },
        { "#f80", 255, 136, 0, 1 },
        { "#F80C", 255, 136, 0, 0.8 },
        { "#0a141e33", 10, 20, 30, 0.2 },
        { "rgb(10,20,30)", 10, 20, 30, 1 },
        { "rgb(20%, 40%, 100%)", 51, 102, 255, 1 },
        { "rgb(300, -5, 30)", 255, 0, 30, 1 },
        { "rgba(10, 20, 30, 50%)", 10, 20, 30, 0.5 },
        { "rgb(10 20 30 / .25)", 10, 20, 30, 0.25 },
        { "RGBA(10 20 30 / 200%)", 10, 20, 30, 1 },
        { "hsl(120, 100%, 25%)", 0, 128, 0, 1 }, // 0.5 of 255 is 127.5
        { "hsl(-120deg, 100%, 50%)", 0, 0, 255, 1 },
        { "hsl(0.5turn 100% 50%)", 0, 255, 255, 1 },
        { "hsl(66.66666666grad 100% 50%)", 255, 255, 0, 1 },
        { "hsl(3.14159265rad 100% 50%)", 0, 255, 255, 1 },
        { "hsla(30, 50%, 40%, .3)", 153, 102, 51, 0.3 }, // chroma 0.4 about lightness 0.4
        { "hsl(200 0% 60%)", 153, 153, 153, 1 },
        { "hwb(0 20% 40%)", 153, 51, 51, 1 },
        { "hwb(90 40% 80%)", 85, 85, 85, 1 },
    };

    for (const auto& c : cases) {
        const std::optional<Rgba> color = parseColor(c.text);
        ASSERT_TRUE(color) << c.text;
        EXPECT_EQ(std::lround(color->r * 255 + 1e-9), c.r) << c.text;
        EXPECT_EQ(std::lround(color->g * 255 + 1e-9), c.g) << c.text;
        EXPECT_EQ(std::lround(color->b * 255 + 1e-9), c.b) << c.text;
        EXPECT_NEAR(color->a, c.a, 1e-9) << c.text;
    }
}

TEST(SvgColor, RefusesWhatIsNone)
{
    for (const char* text :
        { "", "redd", "re", "none", "currentColor", "#", "#12", "#12345", "#1234567", "#12345g", "#123456789",
            "rgb(1,2)", "rgb(1,2,3", "rgb(1,2,3,4,5)", "rgb(1 2,3)", "rgb(1,2,3 / .5)", "rgb(1,2,3) x",
            "hsl(10, 20, 30)", "hsl(10%, 20%, 30%)", "rgb(a,b,c)", "icc(1,2,3)" })
        EXPECT_FALSE(parseColor(text)) << text;
}

TEST(SvgLength, ResolvesUnits)
{
    // 100 % is 200 units, an em 20.
    const std::pair<const char*, double> cases[] = { { "-1.5", -1.5 }, { "+.5", 0.5 }, { "3.", 3 },
        { "1e2", 100 }, { "1E-1px", 0.1 }, { " 12px ", 12 }, { "3pt", 4 }, { "1pc", 16 }, { "25.4mm", 96 },
        { "2.54cm", 96 }, { "1in", 96 }, { "101.6Q", 96 }, { "2em", 40 }, { "2ex", 20 }, { "1e1em", 200 },
        { "25%", 50 }, { "1e-400", 0 } };
    for (const auto& [text, user] : cases) {
        const std::optional<Length> length = parseLength(text);
        ASSERT_TRUE(length) << text;
        EXPECT_NEAR(length->resolved(200, 20), user, 1e-9) << text;
    }
    for (const char* text :
        { "", "px", "1 px", "1foo", "1px2", "--1", ".", "1e400", "1,2", "5e39", "nan", "inf" })
        EXPECT_FALSE(parseLength(text)) << text;
    EXPECT_EQ(parseOpacity(".5"), 0.5);
    EXPECT_EQ(parseOpacity("50%"), 0.5);
    EXPECT_EQ(parseOpacity("7"), 1.0);
    EXPECT_EQ(parseOpacity("-7"), 0.0);
    EXPECT_FALSE(parseOpacity("1px"));
}

TEST(SvgNumber, IsTheNearestDoubleByBothWays)
{
    // Short numbers are divided out, long ones and those with an exponent converted: both round once.
    std::mt19937 random(7);
    for (int i = 0; i < 20000; ++i) {
        std::string text = i % 3 ? "-" : "";
        const unsigned length = 1 + random() % 20;
        const unsigned point = random() % (length + 1);
        for (unsigned k = 0; k < length; ++k) {
            if (k == point)
                text += '.';
            text += static_cast<char>('0' + random() % 10);
        }
        Scanner in(text);
        const std::optional<double> value = in.number();
        ASSERT_TRUE(value && in.atEnd()) << text;
        ASSERT_EQ(*value, std::strtod(text.c_str(), nullptr)) << text;
    }
}

TEST(SvgTransform, MapsAPoint)
{
    const struct {
        const char* text;
        Vec image; ///< of the point (2, 1)
    } cases[] = {
        { "", { 2, 1 } },
        { "none", { 2, 1 } },
        { "matrix(1 2 3 4 5 6)", { 1 * 2 + 3 * 1 + 5, 2 * 2 + 4 * 1 + 6 } },
        { "translate(10)", { 12, 1 } },
        { "translate(10-20)", { 12, -19 } },
        { "translate(10px, 20px)", { 12, 21 } },
        { "scale(3)", { 6, 3 } },
        { "scale(3 4)", { 6, 4 } },
        { "rotate(90)", { -1, 2 } },
        { "rotate(0.25turn)", { -1, 2 } },
        { "rotate(90 2 1)", { 2, 1 } },
        { "skewX(45)", { 3, 1 } },
        { "skewY(45)", { 2, 3 } },
        // The one written last is applied first.
        { "translate(10,0)scale(2)", { 14, 2 } },
        { " scale( 2 ) \n translate( 10 , 0 ) ", { 24, 2 } },
    };
    for (const auto& c : cases) {
        const std::optional<Matrix> matrix = parseTransform(c.text);
        ASSERT_TRUE(matrix) << c.text;
        EXPECT_NEAR(matrix->map({ 2, 1 }).x, c.image.x, 1e-12) << c.text;
        EXPECT_NEAR(matrix->map({ 2, 1 }).y, c.image.y, 1e-12) << c.text;
    }
    for (const char* text : { "translate", "translate(", "translate()", "translate(1 2 3)", "rotate(1 2)",
             "matrix(1 2 3)", "scale(1) foo(2)", "scale(1))", "matrix(1 2 3 4 5 6 7)", "Translate(1)" })
        EXPECT_FALSE(parseTransform(text)) << text;
}

TEST(SvgTransform, InverseUndoesTheMapAndSimilaritiesAreTold)
{
    const Matrix m = *parseTransform("translate(3 -7) rotate(31) skewX(12) scale(2 .5)");
    const Vec p = m.inverse().map(m.map({ 5, 9 }));
    EXPECT_NEAR(p.x, 5, 1e-12);
    EXPECT_NEAR(p.y, 9, 1e-12);
    EXPECT_FALSE(parseTransform("scale(0)")->isInvertible());
    EXPECT_FALSE(parseTransform("matrix(1 2 2 4 0 0)")->isInvertible());
    EXPECT_TRUE(parseTransform("rotate(31) scale(-3 3) translate(5)")->isSimilarity());
    EXPECT_FALSE(parseTransform("scale(2 3)")->isSimilarity());
    EXPECT_FALSE(parseTransform("skewX(20)")->isSimilarity());
    EXPECT_NEAR(parseTransform("rotate(31) scale(2 -5)")->largestScale(), 5, 1e-12);
}

TEST(SvgViewBox, FitsByPreserveAspectRatio)
{
    // A box of 10 by 10 from (5, 5).
    const struct {
        const char* ratio;
        Vec first, last; ///< images of the viewBox's corners in a viewport of 200 by 50
    } cases[] = {
        { "none", { 0, 0 }, { 200, 50 } },
        { "xMinYMid meet", { 0, 0 }, { 50, 50 } },
        { "xMaxYMax meet", { 150, 0 }, { 200, 50 } },
        { "xMidYMin slice", { 0, 0 }, { 200, 200 } },
        { "xMidYMid slice", { 0, -75 }, { 200, 125 } },
        { "defer xMinYMax slice", { 0, -150 }, { 200, 50 } },
    };
    const Box box = *parseViewBox("5, 5 10 10");
    for (const auto& c : cases) {
        const std::optional<AspectRatio> ratio = parseAspectRatio(c.ratio);
        ASSERT_TRUE(ratio) << c.ratio;
        const Matrix matrix = viewBoxTransform(box, 200, 50, *ratio);
        EXPECT_EQ(matrix.map({ 5, 5 }), c.first) << c.ratio;
        EXPECT_EQ(matrix.map({ 15, 15 }), c.last) << c.ratio;
    }
    for (const char* text : { "", "xMidYmid", "xMid", "xMidYMid cover", "xMidYMid meet x" })
        EXPECT_FALSE(parseAspectRatio(text)) << text;
    for (const char* text : { "", "1 2 3", "1 2 3 4 5", "0 0 -1 5", "a b c d" })
        EXPECT_FALSE(parseViewBox(text)) << text;
}

} // namespace
} // namespace app::svg
