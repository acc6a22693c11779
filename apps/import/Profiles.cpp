#include <apps/import/Profiles.h>

#include <lcms2.h>

#include <bit>
#include <cstdlib>
#include <cstring>

namespace vxr::importing {

namespace {

struct ProfileCloser {
    void operator()(void* profile) const { cmsCloseProfile(profile); }
};
using Profile = std::unique_ptr<void, ProfileCloser>;

struct CurveDeleter {
    void operator()(cmsToneCurve* curve) const { cmsFreeToneCurve(curve); }
};
using Curve = std::unique_ptr<cmsToneCurve, CurveDeleter>;

cmsUInt32Number lcmsModel(BitmapModel model)
{
    return model == BitmapModel::Gray ? PT_GRAY : model == BitmapModel::RGB ? PT_RGB : PT_CMYK;
}

cmsColorSpaceSignature signatureOf(BitmapModel model)
{
    return model == BitmapModel::Gray ? cmsSigGrayData
        : model == BitmapModel::RGB   ? cmsSigRgbData
                                      : cmsSigCmykData;
}

/// None unless it describes samples of the model.
Profile open(BitmapModel model, std::span<const std::byte> bytes)
{
    Profile profile(cmsOpenProfileFromMem(bytes.data(), cmsUInt32Number(bytes.size())));
    if (!profile || cmsGetColorSpace(profile.get()) != signatureOf(model))
        return nullptr;
    const cmsProfileClassSignature kind = cmsGetDeviceClass(profile.get());
    const bool isDevice = kind == cmsSigInputClass || kind == cmsSigDisplayClass || kind == cmsSigOutputClass
        || kind == cmsSigColorSpaceClass;
    return isDevice ? std::move(profile) : nullptr;
}

/// The same intent as the library's own conversions.
Transform makeTransform(
    cmsHPROFILE from, cmsUInt32Number fromFormat, cmsUInt32Number toFormat, cmsUInt32Number flags)
{
    const Profile srgb(cmsCreate_sRGBProfile());
    return Transform(cmsCreateTransform(from, fromFormat, srgb.get(), toFormat, INTENT_RELATIVE_COLORIMETRIC,
        cmsFLAGS_BLACKPOINTCOMPENSATION | flags));
}

} // namespace

void TransformDeleter::operator()(void* transform) const { cmsDeleteTransform(transform); }

std::vector<std::byte> makeProfile(
    BitmapModel model, double gamma, const std::array<double, 8>& chromaticities)
{
    const Curve curve(cmsBuildGamma(nullptr, gamma));
    const cmsCIExyY white { chromaticities[0], chromaticities[1], 1 };
    const cmsCIExyYTRIPLE primaries { { chromaticities[2], chromaticities[3], 1 },
        { chromaticities[4], chromaticities[5], 1 }, { chromaticities[6], chromaticities[7], 1 } };
    cmsToneCurve* const curves[] { curve.get(), curve.get(), curve.get() };
    const Profile profile(model == BitmapModel::Gray ? cmsCreateGrayProfile(cmsD50_xyY(), curve.get())
                                                     : cmsCreateRGBProfile(&white, &primaries, curves));
    cmsUInt32Number size = 0;
    if (!profile || !cmsSaveProfileToMem(profile.get(), nullptr, &size))
        return {};
    std::vector<std::byte> bytes(size);
    if (!cmsSaveProfileToMem(profile.get(), bytes.data(), &size))
        return {};
    return bytes;
}

bool isProfileOf(BitmapModel model, std::span<const std::byte> profile)
{
    return open(model, profile) != nullptr;
}

std::string nameOfProfile(std::span<const std::byte> bytes)
{
    const Profile profile(cmsOpenProfileFromMem(bytes.data(), cmsUInt32Number(bytes.size())));
    std::array<char, 64> name {};
    if (profile)
        cmsGetProfileInfoASCII(profile.get(), cmsInfoDescription, "en", "US", name.data(), name.size() - 1);
    return name.data();
}

Transform makeTransform(const BitmapFormat& format, std::span<const std::byte> bytes)
{
    const Profile profile = open(format.model, bytes);
    if (!profile)
        return nullptr;
    const cmsUInt32Number from = COLORSPACE_SH(lcmsModel(format.model))
        | CHANNELS_SH(cmsUInt32Number(format.model)) | EXTRA_SH(format.hasAlpha)
        | BYTES_SH(format.bitsPerSample / 8);
    const cmsUInt32Number to = std::endian::native == std::endian::little ? TYPE_BGRA_8 : TYPE_ARGB_8;
    return makeTransform(profile.get(), from, to, format.hasAlpha ? cmsFLAGS_COPY_ALPHA : 0);
}

bool leavesValues(BitmapModel model, std::span<const std::byte> bytes)
{
    const Profile profile = model == BitmapModel::CMYK ? nullptr : open(model, bytes);
    if (!profile)
        return false;
    const bool isGray = model == BitmapModel::Gray;
    const Transform transform
        = makeTransform(profile.get(), isGray ? TYPE_GRAY_8 : TYPE_RGB_8, TYPE_RGB_8, 0);
    if (!transform)
        return false;
    constexpr int step = 15; // every 15th level, 0 and 255 among them
    std::vector<std::uint8_t> from, to;
    for (int red = 0; red < 256; red += step)
        if (isGray)
            from.push_back(std::uint8_t(red));
        else
            for (int green = 0; green < 256; green += step)
                for (int blue = 0; blue < 256; blue += step)
                    from.insert(from.end(), { std::uint8_t(red), std::uint8_t(green), std::uint8_t(blue) });
    const std::size_t components = isGray ? 1 : 3, count = from.size() / components;
    to.resize(count * 3);
    cmsDoTransform(transform.get(), from.data(), to.data(), cmsUInt32Number(count));
    for (std::size_t i = 0; i < to.size(); ++i)
        if (std::abs(to[i] - from[isGray ? i / 3 : i]) > 1)
            return false;
    return true;
}

} // namespace vxr::importing
