#include <vxr/geometry/VXRColorUtilities.h>

#include <vxr/geometry/Color.h>
#include <vxr/host/utility/VXUSystemVersion.h>
#include <vxr/platform/graphics/GraphicsContext.h>

#include <utility>

namespace vxr {

namespace {

bool substitutesDevice = false;

using Space = std::shared_ptr<const ColorSpace>;

/// A provider of profile bytes for colour spaces: the bytes are kept until `release` is called.
class ProfileDataProvider {
public:
    using Release = void (*)(void* info, const void* data, std::size_t size);

    ProfileDataProvider(void* info, std::span<const std::byte> data, Release release)
        : mInfo(info)
        , mData(data)
        , mRelease(release)
    {
    }
    ~ProfileDataProvider() { mRelease(mInfo, mData.data(), mData.size()); }
    ProfileDataProvider(const ProfileDataProvider&) = delete;
    ProfileDataProvider& operator=(const ProfileDataProvider&) = delete;

    std::span<const std::byte> data() const { return mData; }

private:
    void* mInfo;
    std::span<const std::byte> mData;
    Release mRelease;
};

using ProfileData = std::shared_ptr<const std::vector<std::byte>>;

} // namespace

Space VXRGenericGrayColorSpace()
{
    if (substitutesDevice)
        return ColorSpace::deviceGray();
    static const Space generic = ColorSpace::createWithDefaultProfile(ColorModel::Gray);
    return generic;
}

Space VXRGenericRGBColorSpace()
{
    if (substitutesDevice)
        return ColorSpace::deviceRGB();
    static const Space generic = ColorSpace::createWithDefaultProfile(ColorModel::RGB);
    return generic;
}

Space VXRGenericCMYKColorSpace()
{
    if (substitutesDevice)
        return ColorSpace::deviceCMYK();
    static const Space generic = ColorSpace::createWithDefaultProfile(ColorModel::CMYK);
    return generic;
}

bool VXRSubstituteDeviceForGeneric(bool on) { return std::exchange(substitutesDevice, on); }

Space VXRColorSpaceForRep(const VXRImageRep& rep)
{
    const int components = rep.hasAlpha ? rep.samplesPerPixel - 1 : rep.samplesPerPixel;
    if (const ProfileData& profile = rep.colorSyncProfileData; profile && !profile->empty()) {
        const ProfileDataProvider provider(new ProfileData(profile), *profile, CustomCGColorSpaceReleaseData);
        return ColorSpace::createWithICCProfile(provider.data(), components);
    }
    switch (components) {
    case 1:
        return VXRGenericGrayColorSpace();
    case 3:
        return VXRGenericRGBColorSpace();
    case 4:
        return VXRGenericCMYKColorSpace();
    default:
        return nullptr;
    }
}

void CustomCGColorSpaceReleaseData(void* info, const void*, std::size_t)
{
    delete static_cast<ProfileData*>(info);
}

ColorValue VXRCGColorWithNSColor(const Color& color)
{
    if (color.colorSpaceName() == NSDeviceCMYKColorSpace)
        return { ColorSpace::deviceCMYK(),
            { color.cyanComponent(), color.magentaComponent(), color.yellowComponent(),
                color.blackComponent(), color.alphaComponent() } };
    Space space = VXRGenericRGBColorSpace();
    const std::shared_ptr<const Color> rgb = color.colorUsingColorSpaceName(NSCalibratedRGBColorSpace);
    if (!rgb)
        return { std::move(space), { 0, 0, 0, 1 } };
    return { std::move(space),
        { rgb->redComponent(), rgb->greenComponent(), rgb->blueComponent(), rgb->alphaComponent() } };
}

namespace {

/// Before this version colours chose the colour space themselves.
constexpr int colorsSetThemselvesSince = 0x1031;

void setInPort(const ColorValue& value)
{
    Context& port = currentDrawingPort();
    port.setFillColor(value);
    port.setStrokeColor(value);
}

} // namespace

void VXRSetColor(const Color& color)
{
    if (GetSystemVersion() >= colorsSetThemselvesSince)
        color.set();
    else if (color.colorSpaceName() == NSCalibratedWhiteColorSpace)
        setInPort({ VXRGenericGrayColorSpace(), { color.whiteComponent(), color.alphaComponent() } });
    else if (color.colorSpaceName() == NSCalibratedRGBColorSpace)
        setInPort({ VXRGenericRGBColorSpace(),
            { color.redComponent(), color.greenComponent(), color.blueComponent(),
                color.alphaComponent() } });
    else
        color.set();
}

} // namespace vxr
