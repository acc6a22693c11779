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

void encode(const VXRImageFill& fill, VXAXMLArchiver& archiver, VXAXMLNode* node, std::uint32_t)
{
    encodeTechnique(fill.technique(), fill, node);
    const VXRImageRenderer* const renderer = fill.renderer().get();
    if (const auto* picture = dynamic_cast<const VXRPictureRenderer*>(renderer)) {
        archiver.encodeObjectAsChildOfWithNameXmlNamespace(
            *picture->binary(), node, kElementName_ImageBinary, VelloraNamespace);
        const Rect whole { { 0, 0 }, picture->binary()->naturalImageSize() };
        if (picture->crop() != whole)
            encodeRectChild(picture->crop(), node, "crop");
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
    auto fill = std::make_shared<VXRImageFill>();
    fill->setTechnique(readTechnique(properties, fill->technique()));
    VXAXMLNode* const child = vxaxmlFirstChildNsNamed(node, VelloraNamespace, kElementName_ImageBinary);
    if (auto binary = VXRObjectFromNode<VXRImageBinary>(unarchiver, child)) {
        Rect crop;
        const bool hasCrop = properties.getRect("crop", crop) && !crop.isEmpty();
        fill->setRenderer(VXRPictureRenderer::rendererWithBinaryCrop(
            std::move(binary), hasCrop ? std::optional(crop) : std::nullopt));
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
