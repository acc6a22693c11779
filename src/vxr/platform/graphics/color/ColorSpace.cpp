#include <vxr/platform/graphics/color/ColorSpace.h>

#include <vxr/platform/graphics/color/ProfileTransformCache.h>

#include <lcms2.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fstream>
#include <vector>

namespace vxr {

namespace {

using ProfileBytes = std::vector<std::byte>;

struct ProfileCloser {
    void operator()(void* profile) const { cmsCloseProfile(profile); }
};
struct CurveDeleter {
    void operator()(cmsToneCurve* curve) const { cmsFreeToneCurve(curve); }
};
using Profile = std::unique_ptr<void, ProfileCloser>;

constexpr int countOf(ColorModel model)
{
    return model == ColorModel::Gray ? 1 : model == ColorModel::RGB ? 3 : 4;
}

float unit(float value)
{
    return value >= 1 ? 1 : value > 0 ? value : 0; // NaN gives 0
}

using Transforms = std::shared_ptr<const ProfileTransforms>;

Transforms transformsFor(const ProfileBytes& bytes, ColorModel model)
{
    return ProfileTransformCache::shared().transformsFor(bytes, model);
}

ProfileBytes savedProfile(cmsHPROFILE profile)
{
    cmsUInt32Number size = 0;
    if (!profile || !cmsSaveProfileToMem(profile, nullptr, &size))
        return {};
    ProfileBytes bytes(size);
    if (!cmsSaveProfileToMem(profile, bytes.data(), &size))
        return {};
    // The creation date in the header would make equal spaces differ from one run to the next.
    constexpr std::size_t dateOffset = 24, dateSize = 12;
    constexpr unsigned char date[dateSize] = { 0x07, 0xd0, 0, 1, 0, 1 }; // 1 January 2000
    if (bytes.size() >= dateOffset + dateSize)
        std::memcpy(bytes.data() + dateOffset, date, dateSize);
    return bytes;
}

const ProfileBytes& genericGrayProfile()
{
    static const ProfileBytes bytes = [] {
        // The sRGB curve in pieces: a power with slope and offset above 0.04045, a straight line below.
        const cmsFloat64Number srgb[] = { 2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045 };
        std::unique_ptr<cmsToneCurve, CurveDeleter> curve(cmsBuildParametricToneCurve(nullptr, 4, srgb));
        return savedProfile(Profile(cmsCreateGrayProfile(cmsD50_xyY(), curve.get())).get());
    }();
    return bytes;
}

const ProfileBytes& genericRGBProfile()
{
    static const ProfileBytes bytes = savedProfile(Profile(cmsCreate_sRGBProfile()).get());
    return bytes;
}

struct DefaultCMYK {
    std::string path;
    ProfileBytes bytes;
};

/// The first usable CMYK profile in the folders where systems install them.
const DefaultCMYK& defaultCMYK()
{
    static const DefaultCMYK found = [] {
        for (const char* path : { "/usr/share/color/icc/ghostscript/default_cmyk.icc",
                 "/usr/share/color/icc/colord/FOGRA39L_coated.icc",
                 "/usr/share/color/icc/colord/SWOP2006_Coated3v2.icc", "/usr/share/color/icc/krita/cmyk.icm",
                 "/usr/share/color/icc/ISOcoated_v2_eci.icc", "/usr/share/color/icc/CoatedFOGRA39.icc" }) {
            std::ifstream file(path, std::ios::binary);
            const std::string text { std::istreambuf_iterator<char>(file), {} };
            const auto* data = reinterpret_cast<const std::byte*>(text.data());
            ProfileBytes bytes(data, data + text.size());
            if (!bytes.empty() && transformsFor(bytes, ColorModel::CMYK))
                return DefaultCMYK { path, std::move(bytes) };
        }
        return DefaultCMYK {};
    }();
    return found;
}

} // namespace

struct ColorSpace::Impl {
    ColorModel model;
    ProfileBytes profile; ///< empty for device spaces
    Transforms transforms; ///< null if values reach the output unchanged
};

namespace {

std::shared_ptr<const ColorSpace> makeSpace(
    ColorModel model, ProfileBytes profile = {}, Transforms transforms = nullptr)
{
    return std::make_shared<ColorSpace>(std::make_unique<ColorSpace::Impl>(
        ColorSpace::Impl { model, std::move(profile), std::move(transforms) }));
}

} // namespace

ColorSpace::ColorSpace(std::unique_ptr<Impl> impl)
    : mImpl(std::move(impl))
{
}

ColorSpace::~ColorSpace() = default;

std::shared_ptr<const ColorSpace> ColorSpace::deviceGray()
{
    static const auto space = makeSpace(ColorModel::Gray);
    return space;
}

std::shared_ptr<const ColorSpace> ColorSpace::deviceRGB()
{
    static const auto space = makeSpace(ColorModel::RGB);
    return space;
}

std::shared_ptr<const ColorSpace> ColorSpace::deviceCMYK()
{
    static const auto space = makeSpace(ColorModel::CMYK);
    return space;
}

std::shared_ptr<const ColorSpace> ColorSpace::createWithDefaultProfile(ColorModel model)
{
    switch (model) {
    case ColorModel::Gray:
        return makeSpace(model, genericGrayProfile());
    case ColorModel::RGB:
        return makeSpace(model, genericRGBProfile());
    case ColorModel::CMYK:
        break;
    }
    const ProfileBytes& profile = defaultCMYK().bytes;
    return profile.empty() ? makeSpace(model) : makeSpace(model, profile, transformsFor(profile, model));
}

std::string ColorSpace::defaultCMYKProfilePath() { return defaultCMYK().path; }

std::shared_ptr<const ColorSpace> ColorSpace::createWithICCProfile(
    std::span<const std::byte> profile, int components)
{
    constexpr std::size_t headerSize = 128, sizeLimit = std::size_t { 1 } << 28;
    if (profile.size() < headerSize || profile.size() > sizeLimit)
        return nullptr;
    if (components != 1 && components != 3 && components != 4)
        return nullptr;
    const ColorModel model = components == 1 ? ColorModel::Gray
        : components == 3                    ? ColorModel::RGB
                                             : ColorModel::CMYK;
    ProfileBytes bytes(profile.begin(), profile.end());
    // The generic profiles equal the output's: values are used as they are.
    if ((model == ColorModel::Gray && bytes == genericGrayProfile())
        || (model == ColorModel::RGB && bytes == genericRGBProfile()))
        return makeSpace(model, std::move(bytes));
    Transforms transforms = transformsFor(bytes, model);
    return transforms ? makeSpace(model, std::move(bytes), std::move(transforms)) : nullptr;
}

ColorModel ColorSpace::model() const { return mImpl->model; }

int ColorSpace::componentCount() const { return countOf(mImpl->model); }

bool ColorSpace::isDevice() const { return mImpl->profile.empty(); }

bool ColorSpace::convertsToOutputUnchanged() const
{
    return !mImpl->transforms && mImpl->model != ColorModel::CMYK;
}

std::span<const std::byte> ColorSpace::profileData() const { return mImpl->profile; }

std::array<float, 3> ColorSpace::toSRGB(const float* components) const
{
    if (mImpl->transforms) {
        // lcms2 expects float inks in percent.
        const float scale = mImpl->model == ColorModel::CMYK ? 100.0f : 1.0f;
        std::array<float, 4> in {};
        for (int i = 0; i < componentCount(); ++i)
            in[i] = unit(components[i]) * scale;
        std::array<float, 3> rgb {};
        mImpl->transforms->convertFloats(in.data(), rgb.data());
        return rgb;
    }
    switch (mImpl->model) {
    case ColorModel::Gray:
        return { components[0], components[0], components[0] };
    case ColorModel::RGB:
        return { components[0], components[1], components[2] };
    case ColorModel::CMYK:
        break;
    }
    const float light = 1 - components[3];
    return { (1 - components[0]) * light, (1 - components[1]) * light, (1 - components[2]) * light };
}

void ColorSpace::convertToSRGB8(const std::uint8_t* source, std::uint8_t* rgb, std::size_t count) const
{
    if (mImpl->transforms)
        return mImpl->transforms->convertBytes(source, rgb, count);
    switch (mImpl->model) {
    case ColorModel::Gray:
        for (std::size_t i = 0; i < count; ++i)
            rgb[3 * i] = rgb[3 * i + 1] = rgb[3 * i + 2] = source[i];
        break;
    case ColorModel::RGB:
        std::memcpy(rgb, source, count * 3);
        break;
    case ColorModel::CMYK:
        for (std::size_t i = 0; i < count; ++i) {
            const unsigned light = 255u - source[4 * i + 3];
            for (std::size_t c = 0; c < 3; ++c)
                rgb[3 * i + c]
                    = static_cast<std::uint8_t>(((255u - source[4 * i + c]) * light + 127u) / 255u);
        }
        break;
    }
}

bool ColorSpace::isEqual(const Object& other) const
{
    if (this == &other)
        return true;
    const auto* space = dynamic_cast<const ColorSpace*>(&other);
    return space && mImpl->model == space->mImpl->model && mImpl->profile == space->mImpl->profile;
}

ColorValue ColorValue::gray(float white, float alpha)
{
    return { ColorSpace::deviceGray(), { white, alpha } };
}

ColorValue ColorValue::rgb(float red, float green, float blue, float alpha)
{
    return { ColorSpace::deviceRGB(), { red, green, blue, alpha } };
}

float ColorValue::alpha() const
{
    return components[space ? static_cast<std::size_t>(space->componentCount()) : 1];
}

std::array<float, 4> ColorValue::toRGBA() const
{
    const float white = components[0];
    const std::array<float, 3> rgb
        = space ? space->toSRGB(components.data()) : std::array<float, 3> { white, white, white };
    return { unit(rgb[0]), unit(rgb[1]), unit(rgb[2]), unit(alpha()) };
}

} // namespace vxr
