#include <vxr/filters/BoxColumns.h>
#include <vxr/filters/FilterKernels.h>
#include <vxr/filters/FilterPipeline.h>
#include <vxr/filters/VXRFilterRegistry.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>

namespace vxr {
namespace {

using Color = std::array<double, 3>;
using Operations = std::vector<FilterOperation>;

double encoded(double x) { return x <= 0.0031308 ? 12.92 * x : 1.055 * std::pow(x, 1 / 2.4) - 0.055; }
double decoded(double v) { return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4); }
double limited(double v) { return std::clamp(v, 0.0, 1.0); }

Color inLight(Color c, const std::function<Color(Color)>& change)
{
    for (double& v : c)
        v = decoded(v);
    c = change(c);
    for (double& v : c)
        v = encoded(limited(v));
    return c;
}

double luminanceOf(const Color& c) { return 0.2126 * c[0] + 0.7152 * c[1] + 0.0722 * c[2]; }

using Matrix = std::array<Color, 3>;

Color times(const Matrix& m, const Color& v)
{
    Color result {};
    for (std::size_t i = 0; i < 3; ++i)
        result[i] = m[i][0] * v[0] + m[i][1] * v[1] + m[i][2] * v[2];
    return result;
}

/// The hue rotation of feColorMatrix, its constants those of linear sRGB's luminance.
Color turned(double angle, const Color& c)
{
    const double cosine = std::cos(angle), sine = std::sin(angle);
    const double r = 0.2126, g = 0.7152, b = 0.0722;
    // Grey stays; red's and blue's rows are those of the standard, green's keeps the luminance.
    const double y = luminanceOf(c);
    const double red = y + cosine * (c[0] - y) + sine * (-r * c[0] - g * c[1] + (1 - b) * c[2]);
    const double blue = y + cosine * (c[2] - y) + sine * ((r - 1) * c[0] + g * c[1] + b * c[2]);
    return { red, (y - r * red - b * blue) / g, blue };
}

/// XYZ of the Planckian locus above 4,000 K or below, by the cubic approximation.
Color planckian(double kelvin)
{
    const double t = 1000 / kelvin;
    const bool isHot = kelvin > 4000;
    const double x = isHot ? -3.0258469 * t * t * t + 2.1070379 * t * t + 0.2226347 * t + 0.240390
                           : -0.2661239 * t * t * t - 0.2343589 * t * t + 0.8776956 * t + 0.179910;
    const double y = isHot ? 3.0817580 * x * x * x - 5.87338670 * x * x + 3.75112997 * x - 0.37001483
                           : -0.9549476 * x * x * x - 1.37418593 * x * x + 2.09137015 * x - 0.16748867;
    return { x / y, 1, (1 - x - y) / y };
}

Color tempered(double power, const Color& c)
{
    // Cone responses of linear sRGB: the Bradford matrix times that of the primaries, and the inverse.
    const Matrix xyz { { { 0.4124, 0.3576, 0.1805 }, { 0.2126, 0.7152, 0.0722 },
        { 0.0193, 0.1192, 0.9505 } } };
    const Matrix bradford { { { 0.8951, 0.2664, -0.1614 }, { -0.7502, 1.7135, 0.0367 },
        { 0.0389, -0.0685, 1.0296 } } };
    const Color from = times(bradford, planckian(6500));
    const Color to = times(bradford, planckian(1e6 / (1e6 / 6500 + 40 * power)));
    const auto adapted = [&](const Color& rgb) {
        Color cones = times(bradford, times(xyz, rgb));
        for (std::size_t i = 0; i < 3; ++i)
            cones[i] *= to[i] / from[i];
        // Back by solving for the colour, with Cramer's rule.
        Matrix m;
        for (std::size_t j = 0; j < 3; ++j) {
            const Color column = times(bradford, { xyz[0][j], xyz[1][j], xyz[2][j] });
            for (std::size_t i = 0; i < 3; ++i)
                m[i][j] = column[i];
        }
        const auto determinant = [](const Matrix& a) {
            return a[0][0] * (a[1][1] * a[2][2] - a[1][2] * a[2][1])
                - a[0][1] * (a[1][0] * a[2][2] - a[1][2] * a[2][0])
                + a[0][2] * (a[1][0] * a[2][1] - a[1][1] * a[2][0]);
        };
        Color result;
        for (std::size_t j = 0; j < 3; ++j) {
            Matrix replaced = m;
            for (std::size_t i = 0; i < 3; ++i)
                replaced[i][j] = cones[i];
            result[j] = determinant(replaced) / determinant(m);
        }
        return result;
    };
    const double green = adapted({ 1, 1, 1 })[1];
    Color result = adapted(c);
    for (double& v : result)
        v /= green;
    return result;
}

/// The filters by their formulas, on straight encoded colours.
Color plain(const std::string& name, const std::string& key, double value, Color c)
{
    if (name == "TesselTintCorrection")
        return inLight(c, [&](Color l) { return turned(value, l); });
    if (name == "TesselColorCorrection")
        return inLight(c, [&](Color l) { return tempered(value, l); });
    if (name == "TesselLighting")
        return inLight(c, [&](Color l) {
            for (double& v : l)
                v *= std::exp2(value);
            return l;
        });
    if (name == "TesselSaturation")
        return inLight(c, [&](Color l) {
            const double y = luminanceOf(l);
            for (double& v : l)
                v = y + (v - y) * (1 + value);
            return l;
        });
    for (double& v : c) {
        if (key == "inputBrightness")
            v = limited(v + value);
        else if (key == "inputContrast")
            v = limited((v - 0.5) * std::pow(4, 2 * value) + 0.5);
        else if (key == "inputWhite")
            v = limited(v / std::max(value, 1.0 / 255));
        else // black point
            v = limited((v - value) / std::max(1 - value, 1.0 / 255));
    }
    return c;
}

Operations operationsOf(const char* name, const char* key, float value)
{
    const auto filter = VXRFilterRegistry::createFilter(name);
    filter->setValueForKey(value, key);
    return filter->operations();
}

struct Picture {
    int width, height;
    std::vector<std::uint32_t> pixels;
};

Picture randomPicture(int width, int height, unsigned seed, bool isOpaque)
{
    std::mt19937 random(seed);
    Picture picture { width, height, {} };
    for (int i = 0; i < width * height; ++i) {
        const unsigned a = isOpaque ? 255 : random() % 256;
        const auto channel = [&] { return a ? random() % (a + 1) : 0u; };
        picture.pixels.push_back(a << 24 | channel() << 16 | channel() << 8 | channel());
    }
    return picture;
}

Picture filtered(const Operations& operations, const Picture& picture)
{
    Picture result = picture;
    applyFilterOperations(operations, picture.width, picture.height, FilterFormat::nativeARGB(),
        picture.pixels.data(), std::size_t(picture.width) * 4, FilterFormat::nativeARGB(),
        result.pixels.data(), std::size_t(picture.width) * 4);
    return result;
}

struct FilterCase {
    const char* name;
    const char* key;
    float minimum, maximum, identity;
};

const FilterCase pointFilters[] = {
    { "TesselLighting", "inputPower", -3, 3, 0 },
    { "TesselBrightnessContrast", "inputBrightness", -0.5f, 0.5f, 0 },
    { "TesselBrightnessContrast", "inputContrast", -0.5f, 0.5f, 0 },
    { "TesselSaturation", "inputSaturation", -1, 1, 0 },
    { "TesselTintCorrection", "inputPower", -1.05f, 1.05f, 0 },
    { "TesselColorCorrection", "inputPower", -1.875f, 1.875f, 0 },
    { "TesselBlackAndWhitePoints", "inputBlack", 0, 1, 0 },
    { "TesselBlackAndWhitePoints", "inputWhite", 0, 1, 1 },
};

TEST(Filter, FollowsItsFormulaWithinALevel)
{
    const Picture picture = randomPicture(640, 3, 1, false);
    for (const auto& c : pointFilters) {
        for (const float part : { 0.0f, 0.2f, 0.45f, 0.8f, 1.0f }) {
            const float value = c.minimum + (c.maximum - c.minimum) * part;
            const Picture result = filtered(operationsOf(c.name, c.key, value), picture);
            for (std::size_t i = 0; i < picture.pixels.size(); ++i) {
                const std::uint32_t p = picture.pixels[i];
                const double a = p >> 24;
                ASSERT_EQ(result.pixels[i] >> 24, p >> 24);
                if (a == 0) {
                    ASSERT_EQ(result.pixels[i], 0u);
                    continue;
                }
                const Color wanted
                    = plain(c.name, c.key, value, { (p >> 16 & 255) / a, (p >> 8 & 255) / a, (p & 255) / a });
                for (int k = 0; k < 3; ++k)
                    ASSERT_NEAR(result.pixels[i] >> (16 - 8 * k) & 255, wanted[std::size_t(k)] * a, 1)
                        << c.name << " " << value << " of " << std::hex << p;
            }
        }
    }
}

TEST(Filter, KeepsEveryByteAtItsDefaults)
{
    const Picture picture = randomPicture(50, 40, 2, false);
    for (const std::string& name : VXRFilterRegistry::filterNames()) {
        const auto filter = VXRFilterRegistry::createFilter(name);
        EXPECT_TRUE(filter->operations().empty()) << name;
    }
    EXPECT_EQ(filtered({}, picture).pixels, picture.pixels);
    // A chain of operations that do nothing loses nothing on its way through light and back.
    const Operations idle { FilterOperation::gain(1), FilterOperation::line(1, 0),
        FilterOperation::colorMatrix({ 1, 0, 0, 0, 1, 0, 0, 0, 1 }), FilterOperation::sharpen(0, 3) };
    EXPECT_EQ(filtered(idle, picture).pixels, picture.pixels);
}

TEST(Filter, IsMonotonicOverItsRange)
{
    const Picture grays = [] {
        Picture p { 256, 1, {} };
        for (unsigned v = 0; v < 256; ++v)
            p.pixels.push_back(0xff000000u | v << 16 | v << 8 | v);
        return p;
    }();
    const struct {
        const char *name, *key;
        float minimum, maximum;
        int channel, direction;
    } cases[] = {
        { "TesselLighting", "inputPower", -3, 3, 1, 1 },
        { "TesselBrightnessContrast", "inputBrightness", -0.5f, 0.5f, 1, 1 },
        { "TesselColorCorrection", "inputPower", -1.875f, 1.875f, 2, 1 },
        { "TesselColorCorrection", "inputPower", -1.875f, 1.875f, 0, -1 },
        { "TesselBlackAndWhitePoints", "inputBlack", 0, 1, 1, -1 },
        { "TesselBlackAndWhitePoints", "inputWhite", 0, 1, 1, -1 },
    };
    for (const auto& c : cases) {
        Picture before;
        for (int step = 0; step <= 20; ++step) {
            const float value = c.minimum + (c.maximum - c.minimum) * float(step) / 20;
            const Picture now = filtered(operationsOf(c.name, c.key, value), grays);
            for (std::size_t i = 0; step > 0 && i < 256; ++i) {
                const auto level
                    = [&](const Picture& p) { return int(p.pixels[i] >> (8 * c.channel) & 255); };
                EXPECT_GE((level(now) - level(before)) * c.direction, 0)
                    << c.name << " " << value << " of " << i;
            }
            for (std::size_t i = 1; i < 256; ++i) // darker stays darker
                EXPECT_GE(now.pixels[i] & 255, now.pixels[i - 1] & 255);
            before = now;
        }
    }
}

TEST(Filter, KeepsLuminanceWhereItSaysSo)
{
    // Colours that stay within the gamut.
    const Picture picture = [] {
        std::mt19937 random(4);
        Picture p { 500, 1, {} };
        for (int i = 0; i < 500; ++i)
            p.pixels.push_back(0xff000000u | (110 + random() % 40) << 16 | (110 + random() % 40) << 8
                | (110 + random() % 40));
        return p;
    }();
    const auto luminance = [](std::uint32_t p) {
        return luminanceOf({ decoded((p >> 16 & 255) / 255.0), decoded((p >> 8 & 255) / 255.0),
            decoded((p & 255) / 255.0) });
    };
    for (const auto& [name, key, value] : { std::tuple("TesselTintCorrection", "inputPower", 1.05f),
             std::tuple("TesselTintCorrection", "inputPower", -0.6f),
             std::tuple("TesselSaturation", "inputSaturation", -1.0f) }) {
        const Picture result = filtered(operationsOf(name, key, value), picture);
        for (std::size_t i = 0; i < picture.pixels.size(); ++i)
            ASSERT_NEAR(luminance(result.pixels[i]), luminance(picture.pixels[i]), 0.004) << name;
    }
}

TEST(Filter, GivesTheSameInOnePassAsInSeveral)
{
    const Picture picture = randomPicture(700, 9, 5, false);
    Operations chain;
    for (const auto& [name, key, value] : { std::tuple("TesselLighting", "inputPower", 1.5f),
             std::tuple("TesselBrightnessContrast", "inputContrast", -0.2f),
             std::tuple("TesselSaturation", "inputSaturation", 0.6f),
             std::tuple("TesselTintCorrection", "inputPower", 0.5f),
             std::tuple("TesselColorCorrection", "inputPower", 1.0f),
             std::tuple("TesselBlackAndWhitePoints", "inputBlack", 0.1f) }) {
        const auto more = operationsOf(name, key, value);
        chain.insert(chain.end(), more.begin(), more.end());
    }
    // A sharpener that does nothing stands between any two, so that each runs alone, at 16 bits.
    Operations apart;
    for (const FilterOperation& operation : chain) {
        apart.push_back(operation);
        apart.push_back(FilterOperation::sharpen(0, 0.5f));
    }
    const Picture together = filtered(chain, picture), singly = filtered(apart, picture);
    for (std::size_t i = 0; i < picture.pixels.size(); ++i) {
        for (int shift = 0; shift < 32; shift += 8)
            ASSERT_NEAR(together.pixels[i] >> shift & 255, singly.pixels[i] >> shift & 255, 1);
    }
}

TEST(Filter, GivesTheSameBytesOnEveryInstructionSet)
{
    const Picture picture = randomPicture(1037, 40, 6, false);
    const Operations chain { FilterOperation::gain(1.7f), FilterOperation::line(1.2f, -0.05f),
        FilterOperation::sharpen(0.8f, 4), FilterOperation::sharpen(-0.3f, 2),
        FilterOperation::lines({ 1, 1.1f, 0.9f }, { 0.01f, 0, 0 }), FilterOperation::round(),
        FilterOperation::colorMatrix({ 0.9f, 0.2f, -0.1f, 0, 1, 0, 0.1f, 0, 0.9f }) };
    std::vector<std::uint32_t> first;
    for (const FilterKernels* kernels : availableFilterKernels()) {
        std::vector<std::uint32_t> out(picture.pixels.size());
        FilterPipeline pipeline(
            chain, picture.width, picture.height, FilterFormat::nativeARGB(), FilterFormat::nativeARGB(),
            [&](int y) { return out.data() + std::ptrdiff_t(y) * picture.width; }, *kernels);
        for (int y = 0; y < picture.height; ++y)
            pipeline.push(picture.pixels.data() + std::ptrdiff_t(y) * picture.width);
        if (first.empty())
            first = out;
        EXPECT_EQ(out, first) << kernels->name;
    }
}

/// Three extended boxes in double precision over an image whose edge goes on for ever.
std::vector<double> boxMean(std::vector<double> plane, int width, int height, double radius)
{
    const ExtendedBox box = ExtendedBox::forDeviation(radius);
    const auto once = [&](int dx, int dy) {
        std::vector<double> out(plane.size());
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                double sum = 0;
                for (int k = -box.reach - 1; k <= box.reach + 1; ++k) {
                    const int sx = std::clamp(x + k * dx, 0, width - 1),
                              sy = std::clamp(y + k * dy, 0, height - 1);
                    sum += plane[std::size_t(sy * width + sx)]
                        * (std::abs(k) > box.reach ? double(box.edge) : 1);
                }
                out[std::size_t(y * width + x)] = sum / (2 * box.reach + 1 + 2 * double(box.edge));
            }
        }
        plane = out;
    };
    for (int i = 0; i < 3; ++i) {
        once(1, 0);
        once(0, 1);
    }
    return plane;
}

TEST(UnsharpMask, SharpensAgainstTheMeanOfOpaqueNeighbours)
{
    for (const auto& [width, height, radius, amount] :
        { std::tuple(40, 30, 2.5f, 0.7f), std::tuple(40, 30, 2.5f, -0.6f), std::tuple(33, 7, 9.0f, 0.7f),
            std::tuple(1, 1, 3.0f, 0.7f), std::tuple(3, 60, 50.0f, -1.0f), std::tuple(64, 2, 0.5f, 1.0f) }) {
        const Picture picture = randomPicture(width, height, 7, false);
        const Picture result = filtered({ FilterOperation::sharpen(amount, radius) }, picture);
        // Premultiplied colours, then luma, and alpha.
        std::array<std::vector<double>, 5> planes;
        for (const std::uint32_t p : picture.pixels) {
            const Color color { double(p & 255), double(p >> 8 & 255), double(p >> 16 & 255) };
            for (std::size_t k = 0; k < 3; ++k)
                planes[k].push_back(color[k]);
            planes[3].push_back(luminanceOf({ color[2], color[1], color[0] }));
            planes[4].push_back(p >> 24);
        }
        std::array<std::vector<double>, 5> means;
        for (std::size_t k = 0; k < 5; ++k)
            means[k] = boxMean(planes[k], width, height, radius);
        for (std::size_t i = 0; i < picture.pixels.size(); ++i) {
            const double a = planes[4][i];
            ASSERT_EQ(result.pixels[i] >> 24, a);
            for (std::size_t k = 0; k < 3 && a > 0; ++k) {
                const std::size_t of = amount > 0 ? 3 : k;
                const double change = planes[of][i] / a - means[of][i] / means[4][i];
                ASSERT_NEAR(result.pixels[i] >> (8 * k) & 255,
                    limited(planes[k][i] / a + double(amount) * change) * a, 1)
                    << width << " by " << height << ", " << radius << ": " << i;
            }
        }
    }
    // Three boxes have the variance of the Gaussian they stand for.
    for (const double radius : { 0.5, 1.0, 2.5, 10.0, 50.0, 100.0 }) {
        const ExtendedBox box = ExtendedBox::forDeviation(radius);
        double variance = 2 * double(box.edge) * (box.reach + 1) * (box.reach + 1);
        for (int k = -box.reach; k <= box.reach; ++k)
            variance += double(k) * k;
        EXPECT_NEAR(3 * variance / (2 * box.reach + 1 + 2 * double(box.edge)), radius * radius,
            radius * radius * 1e-4);
    }
}

/// Alpha comes in late: means of the rows before are those of opaque ones.
TEST(UnsharpMask, IsTheSameWhicheverRowIsTheFirstWithAlpha)
{
    for (const float amount : { 0.8f, -0.8f }) {
        Picture picture = randomPicture(30, 50, 8, true);
        for (std::size_t i = 1200; i < 1260; ++i)
            picture.pixels[i] = picture.pixels[i] >> 1 & 0x7f7f7f7f;
        const Operations operations { FilterOperation::sharpen(amount, 4) };
        const Picture down = filtered(operations, picture);
        std::reverse(picture.pixels.begin(), picture.pixels.end());
        Picture up = filtered(operations, picture);
        std::reverse(up.pixels.begin(), up.pixels.end());
        for (std::size_t i = 0; i < up.pixels.size(); ++i)
            for (int shift = 0; shift < 32; shift += 8)
                ASSERT_NEAR(up.pixels[i] >> shift & 255, down.pixels[i] >> shift & 255, 1) << i;
    }
}

TEST(FilterPipeline, ReadsAndWritesEveryFormat)
{
    const FilterFormat gray8 { 8, 1, true, { 0, 0, 0, 0 }, FilterFormat::Alpha::None };
    const FilterFormat rgb16 { 16, 3, false, { 0, 1, 2, 0 }, FilterFormat::Alpha::None };
    const FilterFormat rgba16 { 16, 4, false, { 0, 1, 2, 3 }, FilterFormat::Alpha::Straight };
    // Half a stop up, on rows that are longer than their pixels.
    const Operations up { FilterOperation::gain(std::exp2(0.5f)) };
    const auto wanted = [](double v) { return encoded(limited(decoded(v) * std::exp2(0.5))); };
    std::uint8_t gray[] = { 0, 100, 255, 99, 1, 200, 254, 99 };
    std::uint16_t wide[3 * 2 * 3];
    applyFilterOperations(up, 3, 2, gray8, gray, 4, rgb16, wide, 18);
    for (int y = 0; y < 2; ++y) {
        for (int x = 0; x < 3; ++x) {
            for (int k = 0; k < 3; ++k)
                EXPECT_NEAR(wide[9 * y + 3 * x + k], wanted(gray[4 * y + x] / 255.0) * 65535, 1);
        }
    }
    std::uint16_t straight[] = { 65535, 0, 30000, 20000, 1, 2, 3, 0 };
    const std::uint16_t before[] = { 65535, 0, 30000, 20000, 1, 2, 3, 0 };
    applyFilterOperations(up, 2, 1, rgba16, straight, 16, rgba16, straight, 16);
    for (int i = 0; i < 8; ++i)
        EXPECT_NEAR(straight[i], i % 4 == 3 ? before[i] : wanted(before[i] / 65535.0) * 65535, 1);
    applyFilterOperations(up, 0, 5, gray8, nullptr, 0, gray8, nullptr, 0);
    // A filter of the host's that gives nonsense.
    const Operations nonsense { FilterOperation::pixelLoop([](float* r, float* g, float* b, int count) {
        for (int i = 0; i < count; ++i) {
            r[i] = NAN;
            g[i] = INFINITY;
            b[i] = -1;
        }
    }) };
    EXPECT_EQ(filtered(nonsense, { 1, 1, { 0xff102030 } }).pixels[0], 0xff00ff00u);
}

} // namespace
} // namespace vxr
