#include <apps/import/PngColor.h>

#include <apps/import/Profiles.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <string_view>

namespace vxr::importing {

namespace {

constexpr double fixedUnit = 100000; ///< PNG counts gamma and chromaticities in these
constexpr double usualGamma = 0.45455;

std::uint32_t numberAt(std::span<const std::byte> bytes, std::size_t offset)
{
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < 4; ++i)
        number = number << 8 | std::uint32_t(bytes[offset + i]);
    return number;
}

struct StatedColor {
    bool isSRGB = false;
    std::optional<double> gamma;
    std::optional<std::array<double, 8>> chromaticities; ///< white, red, green, blue: x, y
};

/// What stands in front of the pixels.
StatedColor statedColor(std::span<const std::byte> png)
{
    StatedColor stated;
    for (std::size_t at = 8; at + 12 <= png.size();) {
        const std::uint32_t length = numberAt(png, at);
        const std::string_view name(reinterpret_cast<const char*>(png.data()) + at + 4, 4);
        if (length > png.size() - at - 12 || name == "IDAT")
            break;
        const auto content = png.subspan(at + 8, length);
        if (name == "sRGB")
            stated.isSRGB = true;
        else if (name == "gAMA" && length == 4)
            stated.gamma = numberAt(content, 0) / fixedUnit;
        else if (name == "cHRM" && length == 32) {
            stated.chromaticities.emplace();
            for (std::size_t i = 0; i < 8; ++i)
                (*stated.chromaticities)[i] = numberAt(content, 4 * i) / fixedUnit;
        }
        at += 12 + std::size_t(length);
    }
    return stated;
}

bool isNear(const std::array<double, 8>& a, const std::array<double, 8>& b)
{
    return std::ranges::equal(a, b, [](double x, double y) { return std::abs(x - y) < 0.001; });
}

} // namespace

std::vector<std::byte> profileOfPNG(std::span<const std::byte> png, BitmapModel model)
{
    static constexpr std::array<double, 8> ofSRGB { 0.3127, 0.3290, 0.64, 0.33, 0.30, 0.60, 0.15, 0.06 };
    const StatedColor stated = statedColor(png);
    if (stated.isSRGB || !stated.gamma || model == BitmapModel::CMYK)
        return {};
    const double gamma = *stated.gamma;
    const auto chromaticities = stated.chromaticities.value_or(ofSRGB);
    const bool isUsual = std::abs(gamma - usualGamma) < 0.0005 && isNear(chromaticities, ofSRGB);
    if (isUsual || !(gamma >= 0.1 && gamma <= 10))
        return {};
    return makeProfile(model, 1 / gamma, chromaticities);
}

} // namespace vxr::importing
