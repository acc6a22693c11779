#include <vxr/filters/VXRFilteredImage.h>
#include <vxr/filters/VXRFilteredImageRenderer.h>
#include <vxr/images/VXRDummyImageRenderer.h>
#include <vxr/images/VXRImageBinary.h>
#include <vxr/images/VXRImageFill.h>
#include <vxr/images/VXRPictureRenderer.h>
#include <vxr/persistence/ElementNames.h>
#include <vxr/persistence/ImageFillXML.h>
#include <vxr/persistence/NodeAccess.h>
#include <vxr/platform/base/Exceptions.h>

namespace vxr {
namespace {

constexpr const char* thisFile = "ImageFillXML.cpp";
constexpr const char* techniqueWords[]
    = { "natural-size", "stretch", "tile", "scale-to-fill", "scale-to-fit" };
constexpr const char* placeholderWords[] = { "missing", "broken" };

void encodeCrop(const Rect& crop, Size whole, VXAXMLNode* node)
{
    if (crop != Rect { { 0, 0 }, whole })
        encodeRectChild(crop, node, "crop");
}

void encode(const VXRImageFill& fill, VXAXMLArchiver& archiver, VXAXMLNode* node, std::uint32_t)
{
    encodeTechnique(fill.technique(), fill, node);
    const VXRImageRenderer* const renderer = fill.renderer().get();
    if (const auto* picture = dynamic_cast<const VXRPictureRenderer*>(renderer)) {
        archiver.encodeObjectAsChildOfWithNameXmlNamespace(
            *picture->binary(), node, kElementName_ImageBinary, VelloraNamespace);
        encodeCrop(picture->crop(), picture->binary()->naturalImageSize(), node);
    } else if (const auto* filtered = dynamic_cast<const VXRFilteredImageRenderer*>(renderer)) {
        archiver.encodeObjectAsChildOfWithNameXmlNamespace(
            *filtered->filteredImage(), node, kElementName_FilteredImage, VelloraNamespace);
        encodeCrop(filtered->crop(), filtered->filteredImage()->naturalSize(), node);
    } else if (const auto* placeholder = dynamic_cast<const VXRDummyImageRenderer*>(renderer)) {
        setWord(node, "placeholder", placeholderWords[placeholder->isOfBrokenImage()]);
        vxaxmlCreateSizeChild(node, VelloraNamespace, "natural-size", placeholder->naturalSize());
    } else if (renderer) {
        throw GenericException(
            fmt::format("Cannot archive {}: its picture was not imported", fill.description()));
    }
}

std::shared_ptr<VXRImageFill> read(VXAXMLUnarchiver& unarchiver, VXAXMLNode* node, std::uint32_t)
{
    const PropertyReader properties { thisFile, "an image fill", node };
    const auto childNamed
        = [node](const char* name) { return vxaxmlFirstChildNsNamed(node, VelloraNamespace, name); };
    auto fill = std::make_shared<VXRImageFill>();
    fill->setTechnique(readTechnique(properties, fill->technique()));
    std::optional<Rect> crop;
    if (Rect given; properties.getRect("crop", given) && !given.isEmpty())
        crop = given;
    if (auto binary = VXRObjectFromNode<VXRImageBinary>(unarchiver, childNamed(kElementName_ImageBinary))) {
        fill->setRenderer(VXRPictureRenderer::rendererWithBinaryCrop(std::move(binary), crop));
        return fill;
    }
    if (const auto filtered
        = VXRObjectFromNode<VXRFilteredImage>(unarchiver, childNamed(kElementName_FilteredImage))) {
        fill->setRenderer(filtered->imageRenderer(crop));
        return fill;
    }
    std::string word;
    if (!vxaxmlGetNSStringNsProp(node, VelloraNamespace, "placeholder", word))
        return fill; // as a new one, without a picture
    Size size { 100, 100 };
    if (!vxaxmlPopulateSizeFromChild(node, VelloraNamespace, "natural-size", size) || !(size.width > 0)
        || !(size.height > 0))
        properties.cannotGet("natural-size");
    fill->setRenderer(indexOfWord(placeholderWords, word) == 1
            ? VXRDummyImageRenderer::brokenImageRendererWithSize(size)
            : VXRDummyImageRenderer::missingImageRendererWithSize(size));
    return fill;
}

} // namespace

void encodeTechnique(std::int32_t technique, const Object& object, VXAXMLNode* node)
{
    if (technique < 0 || technique >= std::int32_t(std::size(techniqueWords)))
        throw GenericException(
            fmt::format("Cannot encode {} with technique {}", object.description(), technique));
    setWord(node, "technique", techniqueWords[technique]);
}

std::int32_t readTechnique(const PropertyReader& properties, std::int32_t fallback)
{
    return properties.word("technique", techniqueWords, fallback);
}

template <> const VXAXMLClass& VXRXMLClass<VXRImageFill>()
{
    return recordOf<VXRImageFill, encode, read>("VXRImageFill");
}

} // namespace vxr
