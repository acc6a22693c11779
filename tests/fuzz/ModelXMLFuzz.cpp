// The reader of every class that documents describe: nothing crashes, hangs or grows, whatever an element
// says, and what was read is written and read again as the same text. The first byte chooses the class, so
// that every reader meets every element.

#include <vxr/fills/VXRAngleGradient.h>
#include <vxr/fills/VXRReflection.h>
#include <vxr/fills/VXRShadow.h>
#include <vxr/fills/VXRTransformGradient.h>
#include <vxr/filters/VXRFilteredImage.h>
#include <vxr/geometry/Color.h>
#include <vxr/host/archiving/VXAXMLDocument.h>
#include <vxr/host/data/VXEDataManager.h>
#include <vxr/host/utility/VXULog.h>
#include <vxr/images/VXRImageBinary.h>
#include <vxr/images/VXRImageFill.h>
#include <vxr/persistence/VXRRenderableArchiving.h>
#include <vxr/platform/base/Exceptions.h>
#include <vxr/platform/graphics/path/Path.h>
#include <vxr/renderables/VXRImageRenderable.h>
#include <vxr/renderables/VXRLine.h>
#include <vxr/renderables/VXRLineEnd.h>
#include <vxr/renderables/VXRReflectionRenderable.h>
#include <vxr/renderables/VXRRegularPolygon.h>
#include <vxr/renderables/VXRStar.h>
#include <vxr/strokes/VXRManipulatedStroke.h>
#include <vxr/strokes/VXRSmartStroke.h>
#include <vxr/strokes/VXRStrokePattern.h>
#include <vxr/strokes/manipulations/VXROffsetOddWidthPathManipulation.h>
#include <vxr/strokes/manipulations/VXROutsetPathManipulation.h>
#include <vxr/strokes/manipulations/VXROutsetPathStroker.h>
#include <vxr/strokes/manipulations/VXROverstrokePathManipulation.h>
#include <vxr/strokes/manipulations/VXRPatternedPathStroker.h>
#include <vxr/strokes/manipulations/VXRRoundedPathManipulation.h>
#include <vxr/strokes/manipulations/VXRVaryWidthPathManipulation.h>
#include <vxr/strokes/manipulations/VXRWobblyPathManipulation.h>

#include "FuzzInput.h"

#include <string>

namespace {

using namespace vxr;

template <class... Classes> std::vector<const VXAXMLClass*> recordsOf()
{
    return { &VXRXMLClass<Classes>()... };
}

const std::vector<const VXAXMLClass*>& records()
{
    static const auto all = [] {
        VXRInitArchivingClassToElementNameMappings(true);
        VXRInitArchivingRenderables();
        VXUSetLogSink([](int, std::string_view, std::string_view) {});
        return recordsOf<Color, Path, VXRAngleGradient, VXREffectStack, VXRFilter, VXRFilteredImage,
            VXRGradient, VXRGradientStop, VXRGroup, VXRImageBinary, VXRImageFill, VXRImageRenderable, VXRLine,
            VXRLineEnd, VXRManipulatedStroke, VXROffsetOddWidthPathManipulation, VXROutsetPathManipulation,
            VXROutsetPathStroker, VXROverstrokePathManipulation, VXRPatternedPathStroker, VXRReflection,
            VXRReflectionRenderable, VXRRegularPolygon, VXRRoundedPathManipulation, VXRShadow, VXRShape,
            VXRSmartStroke, VXRStar, VXRStroke, VXRStrokePattern, VXRTransformGradient,
            VXRVaryWidthPathManipulation, VXRWobblyPathManipulation>();
    }();
    return all;
}

/// The object of the root's first element; none where there is none. Its elements' rest goes to `kept`.
std::shared_ptr<Object> objectIn(
    const std::string& text, const VXAXMLClass& record, VXAXMLKeptPartsOfObjects& kept)
{
    VXAXMLLimits limits;
    limits.elements = 2000;
    const auto document = VXAXMLDocument::parse(std::as_bytes(std::span(text)), limits);
    VXAXMLUnarchiver unarchiver;
    unarchiver.setMetadataForKey(std::make_shared<VXEDataManager>(), std::string(VXEDataHostUnarchiverKey));
    unarchiver.setKeptParts(&kept);
    auto object = unarchiver.createObjectOfClassFromNode(record, vxaxmlFirstChildElement(document->root()));
    unarchiver.finishReading();
    return object;
}

std::string textOf(const Object& object, const VXAXMLClass& record, const VXAXMLKeptPartsOfObjects& kept)
{
    VXAXMLDocument document(VelloraNamespace, "d");
    VXAXMLArchiver archiver;
    archiver.setKeptParts(&kept);
    archiver.encodeObjectOfClassAsChildOfWithNameXmlNamespace(
        record, object, document.root(), "o", VelloraNamespace);
    return document.serialize();
}

/// Empty where no object is read.
std::string readAndWritten(const std::string& text, const VXAXMLClass& record)
{
    VXAXMLKeptPartsOfObjects kept;
    const auto object = objectIn(text, record, kept);
    if (!object)
        return {};
    if (auto* renderable = dynamic_cast<VXRRenderable*>(object.get()))
        renderable->erasableBounds();
    return textOf(*object, record, kept);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 1 || size > 1u << 14)
        return 0;
    const VXAXMLClass& record = *records()[data[0] % records().size()];
    const std::string text = "<v:d xmlns:v='urn:vxr:model' xmlns:a='urn:vxr:archive'>"
        + std::string(reinterpret_cast<const char*>(data) + 1, size - 1) + "</v:d>";
    try {
        const std::string once = readAndWritten(text, record);
        if (once.empty())
            return 0;
        // The stops that a gradient without any is given are put in order when they are read.
        const std::string twice = readAndWritten(once, record);
        testing::expect(readAndWritten(twice, record) == twice, "the same text after reading");
    } catch (const VXAXMLError&) {
    } catch (const GenericException&) { // names that XML can't hold have no element
    }
    return 0;
}
