#include <vxr/platform/graphics/color/ProfileTransforms.h>

#include <algorithm>
#include <utility>

namespace vxr {

namespace {

struct ProfileCloser {
    void operator()(void* profile) const { cmsCloseProfile(profile); }
};
using Profile = std::unique_ptr<void, ProfileCloser>;

struct Formats {
    cmsColorSpaceSignature signature;
    cmsUInt32Number bytes, floats;
    std::size_t components;
};
/// Indexed by colour model.
constexpr Formats formats[] = {
    { cmsSigGrayData, TYPE_GRAY_8, TYPE_GRAY_FLT, 1 },
    { cmsSigRgbData, TYPE_RGB_8, TYPE_RGB_FLT, 3 },
    { cmsSigCmykData, TYPE_CMYK_8, TYPE_CMYK_FLT, 4 },
};

} // namespace

ProfileTransforms::ProfileTransforms(Transform bytes, Transform floats, std::size_t components)
    : mBytes(std::move(bytes))
    , mFloats(std::move(floats))
    , mComponents(components)
{
}

ProfileTransforms::Transform ProfileTransforms::makeTransform(
    cmsHPROFILE from, cmsUInt32Number fromFormat, cmsUInt32Number toFormat)
{
    const Profile srgb(cmsCreate_sRGBProfile());
    return Transform(cmsCreateTransform(from, fromFormat, srgb.get(), toFormat, INTENT_RELATIVE_COLORIMETRIC,
        cmsFLAGS_BLACKPOINTCOMPENSATION));
}

std::shared_ptr<const ProfileTransforms> ProfileTransforms::make(
    std::span<const std::byte> bytes, ColorModel model)
{
    const Profile profile(cmsOpenProfileFromMem(bytes.data(), static_cast<cmsUInt32Number>(bytes.size())));
    if (!profile)
        return nullptr;
    const cmsProfileClassSignature kind = cmsGetDeviceClass(profile.get());
    if (kind == cmsSigLinkClass || kind == cmsSigAbstractClass || kind == cmsSigNamedColorClass)
        return nullptr;
    const Formats& format = formats[static_cast<int>(model)];
    if (cmsGetColorSpace(profile.get()) != format.signature)
        return nullptr;
    Transform toBytes = makeTransform(profile.get(), format.bytes, TYPE_RGB_8);
    Transform toFloats = makeTransform(profile.get(), format.floats, TYPE_RGB_FLT);
    if (!toBytes || !toFloats)
        return nullptr;
    return std::shared_ptr<const ProfileTransforms>(
        new ProfileTransforms(std::move(toBytes), std::move(toFloats), format.components));
}

void ProfileTransforms::convertBytes(const std::uint8_t* source, std::uint8_t* rgb, std::size_t count) const
{
    constexpr std::size_t chunk = std::size_t { 1 } << 24; // lcms2 counts pixels in 32 bits
    for (std::size_t done = 0; done < count; done += chunk) {
        const std::size_t n = std::min(chunk, count - done);
        cmsDoTransform(
            mBytes.get(), source + done * mComponents, rgb + done * 3, static_cast<cmsUInt32Number>(n));
    }
}

void ProfileTransforms::convertFloats(const float* components, float* rgb) const
{
    cmsDoTransform(mFloats.get(), components, rgb, 1);
}

} // namespace vxr
