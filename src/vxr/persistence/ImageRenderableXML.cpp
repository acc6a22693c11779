#include <vxr/images/VXRImageBinary.h>
#include <vxr/persistence/ImageFillXML.h>
#include <vxr/persistence/NodeAccess.h>
#include <vxr/persistence/VXRRenderableArchiving.h>
#include <vxr/platform/graphics/path/Path.h>
#include <vxr/renderables/VXRImageRenderable.h>

#include <cmath>

namespace vxr {
namespace {

constexpr const char* thisFile = "ImageRenderableXML.cpp";
constexpr const char* maskWords[] = { "none", "path", "alpha" };

void encode(const VXRImageRenderable& image, VXAXMLArchiver& archiver, VXAXMLNode* node, std::uint32_t)
{
    encodeTechnique(image.technique(), image, node);
    if (image.maskKind() != VXRImageMask::None)
        setWord(node, "mask", maskWords[int(image.maskKind())]);
    VXREncodeRenderable(image, archiver, node);
    vxaxmlCreateSizeChild(node, VelloraNamespace, "size", image.naturalSize());
    if (image.imageBinary())
        archiver.encodeObjectAsChildOfWithNameXmlNamespace(
            *image.imageBinary(), node, "picture", VelloraNamespace);
    if (image.hasCrop())
        encodeRectChild(image.crop(), node, "crop");
    if (const auto mask = image.maskPath())
        archiver.encodeObjectAsChildOfWithNameXmlNamespace(*mask, node, "mask-path", VelloraNamespace);
}

void readMask(VXRImageRenderable& image, VXAXMLUnarchiver& unarchiver, const PropertyReader& properties)
{
    VXAXMLNode* const child = vxaxmlFirstChildNsNamed(properties.node, VelloraNamespace, "mask-path");
    std::string word;
    if (!vxaxmlGetNSStringNsProp(properties.node, VelloraNamespace, "mask", word))
        return;
    const auto path = finitePathFromNode(unarchiver, child);
    switch (static_cast<VXRImageMask>(properties.word("mask", maskWords, 0))) {
    case VXRImageMask::None:
        break;
    case VXRImageMask::Path:
        image.setMaskPath(path.get());
        if (!path)
            properties.cannotGet("mask-path");
        break;
    case VXRImageMask::Alpha:
        image.setMasksByAlpha(true);
        break;
    }
}

std::shared_ptr<VXRImageRenderable> read(VXAXMLUnarchiver& unarchiver, VXAXMLNode* node, std::uint32_t)
{
    const PropertyReader properties { thisFile, "an image", node };
    auto image = std::make_shared<VXRImageRenderable>();
    VXAXMLNode* const child = vxaxmlFirstChildNsNamed(node, VelloraNamespace, "picture");
    if (auto binary = VXRObjectFromNode<VXRImageBinary>(unarchiver, child))
        image->setImageBinary(std::move(binary));
    image->setTechnique(readTechnique(properties, image->technique()));
    Size size;
    if (vxaxmlPopulateSizeFromChild(node, VelloraNamespace, "size", size) && std::isfinite(size.width)
        && std::isfinite(size.height))
        image->setNaturalSize(size);
    else
        properties.cannotGet("size");
    Rect crop;
    if (properties.getRect("crop", crop))
        image->_setCrop(crop);
    readMask(*image, unarchiver, properties);
    VXRReadRenderable(*image, unarchiver, node);
    return image;
}

} // namespace

template <> const VXAXMLClass& VXRXMLClass<VXRImageRenderable>()
{
    return recordOf<VXRImageRenderable, encode, read>("VXRImageRenderable");
}

} // namespace vxr
