#include <vxr/filters/VXRFilteredImage.h>
#include <vxr/images/VXRImageBinary.h>
#include <vxr/persistence/ElementNames.h>
#include <vxr/persistence/NodeAccess.h>
#include <vxr/persistence/VXRArchiving.h>
#include <vxr/platform/base/Exceptions.h>

namespace vxr {
namespace {

constexpr const char* thisFile = "FilteredImageXML.cpp";
constexpr const char* levelWords[] = { "off", "luminance", "per-channel" };

/// What the levels and the filters make of the picture is not written: it is made again.
void encode(const VXRFilteredImage& image, VXAXMLArchiver& archiver, VXAXMLNode* node, std::uint32_t)
{
    if (!image.imageBinary())
        throw GenericException(
            fmt::format("Cannot archive {}: its picture was not imported", image.description()));
    const auto levels = image.automaticLevels();
    vxaxmlSetBoolNsPropDefault(
        node, VelloraNamespace, kAttributeName_IsLeveled, levels != VXRAutomaticLevels::Off, false);
    if (levels != VXRAutomaticLevels::Off)
        setWord(node, "automatic-levels", levelWords[int(levels)]);
    if (image.clipFraction() != VXRFilteredImage::defaultClipFraction)
        setNumber(node, "clip-fraction", image.clipFraction());
    archiver.encodeObjectAsChildOfWithNameXmlNamespace(
        *image.imageBinary(), node, kElementName_UnfilteredImageBinary, VelloraNamespace);
    if (image.effectStack()->layerCount() > 1)
        archiver.encodeObjectAsChildOfWithNameXmlNamespace(
            *image.effectStack(), node, kElementName_Effects, VelloraNamespace);
}

void readLevels(VXRFilteredImage& image, const PropertyReader& properties)
{
    if (vxaxmlBoolNsPropDefault(properties.node, VelloraNamespace, kAttributeName_IsLeveled, false))
        image.setAutomaticLevels(static_cast<VXRAutomaticLevels>(
            properties.word("automatic-levels", levelWords, int(VXRAutomaticLevels::Luminance))));
    double fraction = VXRFilteredImage::defaultClipFraction;
    vxaxmlGetDoubleNsProp(properties.node, VelloraNamespace, "clip-fraction", fraction);
    const auto narrowed = static_cast<float>(fraction);
    if (narrowed >= 0 && narrowed <= VXRFilteredImage::largestClipFraction)
        image.setClipFraction(narrowed);
    else
        properties.cannotGet("clip-fraction");
}

/// None without a picture.
std::shared_ptr<VXRFilteredImage> read(VXAXMLUnarchiver& unarchiver, VXAXMLNode* node, std::uint32_t)
{
    const PropertyReader properties { thisFile, "a filtered image", node };
    const auto childNamed
        = [node](const char* name) { return vxaxmlFirstChildNsNamed(node, VelloraNamespace, name); };
    auto image = VXRFilteredImage::filteredImageWithImageBinary(
        VXRObjectFromNode<VXRImageBinary>(unarchiver, childNamed(kElementName_UnfilteredImageBinary)));
    if (!image) {
        properties.cannotGet(kElementName_UnfilteredImageBinary);
        return nullptr;
    }
    readLevels(*image, properties);
    if (auto stack = VXRObjectFromNode<VXREffectStack>(unarchiver, childNamed(kElementName_Effects)))
        image->setEffectStack(std::move(stack));
    return image;
}

} // namespace

template <> const VXAXMLClass& VXRXMLClass<VXRFilteredImage>()
{
    return recordOf<VXRFilteredImage, encode, read>("VXRFilteredImage");
}

} // namespace vxr
