#include <vxr/filters/StandardFilters.h>

#include <algorithm>
#include <cmath>

namespace vxr {
namespace {

using Operations = std::vector<FilterOperation>;
using Matrix = std::array<double, 9>;

constexpr double luminance[] = { 0.2126, 0.7152, 0.0722 };

FilterOperation colorMatrix(const Matrix& m)
{
    std::array<float, 9> narrow;
    std::transform(m.begin(), m.end(), narrow.begin(), [](double v) { return static_cast<float>(v); });
    return FilterOperation::colorMatrix(narrow);
}

Matrix product(const Matrix& a, const Matrix& b)
{
    Matrix result {};
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            for (std::size_t k = 0; k < 3; ++k)
                result[3 * i + j] += a[3 * i + k] * b[3 * k + j];
        }
    }
    return result;
}

Matrix inverse(const Matrix& m)
{
    const auto minor = [&](std::size_t row, std::size_t column) {
        const std::size_t r0 = (row + 1) % 3, r1 = (row + 2) % 3, c0 = (column + 1) % 3,
                          c1 = (column + 2) % 3;
        return m[3 * r0 + c0] * m[3 * r1 + c1] - m[3 * r0 + c1] * m[3 * r1 + c0];
    };
    const double determinant = m[0] * minor(0, 0) + m[1] * minor(0, 1) + m[2] * minor(0, 2);
    Matrix result;
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j)
            result[3 * i + j] = minor(j, i) / determinant;
    }
    return result;
}

std::array<double, 3> times(const Matrix& m, const std::array<double, 3>& v)
{
    std::array<double, 3> result {};
    for (std::size_t i = 0; i < 3; ++i)
        result[i] = m[3 * i] * v[0] + m[3 * i + 1] * v[1] + m[3 * i + 2] * v[2];
    return result;
}

/// Linear sRGB to CIE XYZ (IEC 61966-2-1).
constexpr Matrix toXYZ { 0.4124, 0.3576, 0.1805, 0.2126, 0.7152, 0.0722, 0.0193, 0.1192, 0.9505 };
/// CIE XYZ to the cone responses of the Bradford adaptation.
constexpr Matrix toCones { 0.8951, 0.2664, -0.1614, -0.7502, 1.7135, 0.0367, 0.0389, -0.0685, 1.0296 };

/// XYZ, with Y = 1, of the Planckian locus at a temperature in kelvin from 1,667 to 25,000.
std::array<double, 3> planckianWhite(double t)
{
    const double u = 1e3 / t;
    const double x = t <= 4000 ? ((-0.2661239 * u - 0.2343589) * u + 0.8776956) * u + 0.179910
                               : ((-3.0258469 * u + 2.1070379) * u + 0.2226347) * u + 0.240390;
    double y;
    if (t <= 2222)
        y = ((-1.1063814 * x - 1.34811020) * x + 2.18555832) * x - 0.20219683;
    else if (t <= 4000)
        y = ((-0.9549476 * x - 1.37418593) * x + 2.09137015) * x - 0.16748867;
    else
        y = ((3.0817580 * x - 5.87338670) * x + 3.75112997) * x - 0.37001483;
    return { x / y, 1, (1 - x - y) / y };
}

Matrix temperatureMatrix(double power)
{
    constexpr double neutral = 6500, miredsPerUnit = 40;
    const auto from = times(toCones, planckianWhite(neutral));
    const auto to = times(toCones, planckianWhite(1e6 / (1e6 / neutral + miredsPerUnit * power)));
    const Matrix adaptation { to[0] / from[0], 0, 0, 0, to[1] / from[1], 0, 0, 0, to[2] / from[2] };
    const Matrix cones = product(toCones, toXYZ);
    Matrix result = product(inverse(cones), product(adaptation, cones));
    // White keeps its green, so that no picture grows darker or lighter as a whole by its colour alone.
    const double green = result[3] + result[4] + result[5];
    for (double& v : result)
        v /= green;
    return result;
}

Matrix hueMatrix(double angle)
{
    const auto [lr, lg, lb] = luminance;
    const double c = std::cos(angle), s = std::sin(angle);
    const double red[] = { -lr, -lg, 1 - lb }, blue[] = { lr - 1, lg, lb };
    Matrix m;
    for (std::size_t j = 0; j < 3; ++j) {
        const double l = luminance[j];
        // The middle row follows from the others: the turn has no luminance of its own.
        const double green = -(lr * red[j] + lb * blue[j]) / lg;
        const double turned[] = { red[j], green, blue[j] };
        for (std::size_t i = 0; i < 3; ++i)
            m[3 * i + j] = l + c * ((i == j) - l) + s * turned[i];
    }
    return m;
}

Matrix saturationMatrix(double s)
{
    Matrix m;
    for (std::size_t i = 0; i < 9; ++i)
        m[i] = -s * luminance[i % 3] + (i % 4 == 0 ? 1 + s : 0);
    return m;
}

/// A filter whose operations are a function of its values, in the order of its keys.
class StandardFilter final : public VXRFilter {
public:
    using Body = Operations (*)(const float* values);

    StandardFilter(std::string name, std::vector<VXRFilterKey> keys, Body body)
        : VXRFilter(std::move(name), std::move(keys))
        , mBody(body)
    {
    }

    Operations operations() const override
    {
        std::array<float, 2> values {};
        for (std::size_t i = 0; i < keys().size(); ++i)
            values[i] = std::clamp(valueAt(i), keys()[i].minimum, keys()[i].maximum);
        return hasDefaults() ? Operations() : mBody(values.data());
    }
    std::shared_ptr<VXRFilter> copyWithZone() const override
    {
        return std::make_shared<StandardFilter>(*this);
    }

private:
    Body mBody;
};

} // namespace

std::vector<std::pair<std::string, VXRFilterRegistry::Factory>> standardFilters()
{
    struct Entry {
        const char* name;
        std::vector<VXRFilterKey> keys;
        StandardFilter::Body body;
    };
    const Entry entries[] = {
        { "TesselLighting", { { "inputPower", 0, -3, 3 } },
            [](const float* v) { return Operations { FilterOperation::gain(std::exp2(v[0])) }; } },
        { "TesselBrightnessContrast",
            { { "inputBrightness", 0, -0.5f, 0.5f }, { "inputContrast", 0, -0.5f, 0.5f } },
            [](const float* v) {
                const float k = std::exp2(4 * v[1]);
                return Operations { FilterOperation::line(k, 0.5f - 0.5f * k + v[0]) };
            } },
        { "TesselSaturation", { { "inputSaturation", 0, -1, 1 } },
            [](const float* v) { return Operations { colorMatrix(saturationMatrix(v[0])) }; } },
        { "TesselUnsharpMask", { { "inputIntensity", 0, -1, 1 }, { "inputRadius", 2.5f, 0.5f, 100 } },
            [](const float* v) {
                return v[0] == 0 ? Operations() : Operations { FilterOperation::sharpen(v[0], v[1]) };
            } },
        { "TesselTintCorrection", { { "inputPower", 0, -1.05f, 1.05f } },
            [](const float* v) { return Operations { colorMatrix(hueMatrix(v[0])) }; } },
        { "TesselColorCorrection", { { "inputPower", 0, -1.875f, 1.875f } },
            [](const float* v) { return Operations { colorMatrix(temperatureMatrix(v[0])) }; } },
        { "TesselBlackAndWhitePoints", { { "inputBlack", 0, 0, 1 }, { "inputWhite", 1, 0, 1 } },
            [](const float* v) {
                const float scale = 1 / std::max(v[1] - v[0], 1.0f / 255);
                return Operations { FilterOperation::line(scale, -v[0] * scale) };
            } },
    };
    std::vector<std::pair<std::string, VXRFilterRegistry::Factory>> result;
    for (const auto& [name, keys, body] : entries) {
        result.emplace_back(name, [name = std::string(name), keys = keys, body = body] {
            return std::make_shared<StandardFilter>(name, keys, body);
        });
    }
    return result;
}

} // namespace vxr
