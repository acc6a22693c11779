#pragma once

#include <lcms2.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace vxr::test {

inline std::vector<std::byte> savedProfile(cmsHPROFILE profile)
{
    cmsUInt32Number size = 0;
    cmsSaveProfileToMem(profile, nullptr, &size);
    std::vector<std::byte> bytes(size);
    cmsSaveProfileToMem(profile, bytes.data(), &size);
    cmsCloseProfile(profile);
    return bytes;
}

/// A profile made by `make` of three curves that change nothing: linear light.
template <class Make> std::vector<std::byte> linearProfile(Make make)
{
    cmsToneCurve* linear = cmsBuildGamma(nullptr, 1);
    cmsToneCurve* curves[] = { linear, linear, linear };
    const cmsHPROFILE profile = make(curves);
    cmsFreeToneCurve(linear);
    return savedProfile(profile);
}

/// sRGB's primaries with values in linear light.
inline std::vector<std::byte> linearRGBProfile()
{
    const cmsCIExyY d65 { 0.3127, 0.3290, 1 };
    const cmsCIExyYTRIPLE primaries { { 0.64, 0.33, 1 }, { 0.30, 0.60, 1 }, { 0.15, 0.06, 1 } };
    return linearProfile([&](cmsToneCurve** c) { return cmsCreateRGBProfile(&d65, &primaries, c); });
}

/// Grey in linear light.
inline std::vector<std::byte> gamma1GrayProfile()
{
    return linearProfile([](cmsToneCurve** c) { return cmsCreateGrayProfile(cmsD50_xyY(), *c); });
}

/// A device link, which leads from one space to another and describes none.
inline std::vector<std::byte> linkProfile()
{
    return linearProfile([](cmsToneCurve** c) { return cmsCreateLinearizationDeviceLink(cmsSigRgbData, c); });
}

/// A neutral of one byte value sent through a grey or RGB profile to sRGB; the green byte.
inline int throughProfile(std::span<const std::byte> bytes, std::uint8_t value)
{
    const cmsHPROFILE from = cmsOpenProfileFromMem(bytes.data(), static_cast<cmsUInt32Number>(bytes.size()));
    const cmsHPROFILE srgb = cmsCreate_sRGBProfile();
    const bool gray = cmsGetColorSpace(from) == cmsSigGrayData;
    const cmsHTRANSFORM transform = cmsCreateTransform(
        from, gray ? TYPE_GRAY_8 : TYPE_RGB_8, srgb, TYPE_RGB_8, INTENT_RELATIVE_COLORIMETRIC, 0);
    const std::uint8_t in[] = { value, value, value };
    std::uint8_t out[3] = {};
    cmsDoTransform(transform, in, out, 1);
    cmsDeleteTransform(transform);
    cmsCloseProfile(srgb);
    cmsCloseProfile(from);
    return out[1];
}

} // namespace vxr::test
