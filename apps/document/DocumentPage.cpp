#include "DocumentPage.h"

#include "LogCapture.h"
#include "ModelClasses.h"

#include <vxr/host/archiving/VXAXMLDocument.h>
#include <vxr/host/data/VXEDataManager.h>
#include <vxr/persistence/VXRRenderableArchiving.h>

#include <cmath>

namespace app {

namespace {

using vxr::VelloraNamespace;
using vxr::VXAXMLNode;

constexpr float sideLimit = 1e6f;

/// Called with an element and what is wrong with it.
using XMLTrouble = std::function<void(const VXAXMLNode*, const std::string&)>;

VXAXMLNode* childNamed(const VXAXMLNode* node, const char* name)
{
    return vxr::vxaxmlFirstChildNsNamed(node, VelloraNamespace, name);
}

std::string atLine(long line, const std::string& message)
{
    return line > 0 ? "line " + std::to_string(line) + ": " + message : message;
}

bool isSide(float length) { return length > 0 && length <= sideLimit; }

void readSize(const VXAXMLNode* root, DocumentPage& page, const XMLTrouble& trouble)
{
    vxr::Size size;
    if (vxr::vxaxmlPopulateSizeFromChild(root, VelloraNamespace, "size", size) && isSide(size.width)
        && isSide(size.height))
        page.size = size;
    else
        trouble(root, "the page has no usable size and is taken to be 816 by 1056");
}

void readGuides(const VXAXMLNode* root, DocumentPage& page, const XMLTrouble& trouble)
{
    for (const VXAXMLNode* node = childNamed(childNamed(root, "guides"), "guide"); node;
         node = vxr::vxaxmlNextSiblingNsNamed(node, VelloraNamespace, "guide")) {
        std::string direction;
        double position = 0;
        vxr::vxaxmlGetNSStringNsProp(node, VelloraNamespace, "direction", direction);
        if (vxr::vxaxmlGetDoubleNsProp(node, VelloraNamespace, "position", position)
            && std::isfinite(static_cast<float>(position))
            && (direction == "horizontal" || direction == "vertical"))
            page.guides.push_back({ direction == "horizontal", static_cast<float>(position) });
        else
            trouble(node, "a guide without direction or position is left out");
    }
}

void writeGuides(const std::vector<Guide>& guides, VXAXMLNode* root)
{
    if (guides.empty())
        return;
    VXAXMLNode* list = vxr::vxaxmlCreateChild(root, VelloraNamespace, "guides");
    for (const Guide& guide : guides) {
        VXAXMLNode* node = vxr::vxaxmlCreateChild(list, VelloraNamespace, "guide");
        vxr::vxaxmlSetNSStringNsProp(
            node, VelloraNamespace, "direction", guide.isHorizontal ? "horizontal" : "vertical");
        vxr::vxaxmlSetDoubleNsProp(node, VelloraNamespace, "position", guide.position);
    }
}

} // namespace

void prepare(vxr::VXAXMLArchiver& archiver, const PageSurroundings& surroundings)
{
    for (const auto& [name, style] : surroundings.styles)
        archiver.setNameOfSharedObject(*style, name);
    archiver.setMetadataForKey(surroundings.data, std::string(vxr::VXEDataHostUnarchiverKey));
}

void prepare(vxr::VXAXMLUnarchiver& unarchiver, const PageSurroundings& surroundings)
{
    unarchiver.setSharedObjects(surroundings.styles);
    unarchiver.setMetadataForKey(surroundings.data, std::string(vxr::VXEDataHostUnarchiverKey));
    unarchiver.setClassOfUnknownElements(&unknownRenderableClass());
}

std::string DocumentPage::text(const PageSurroundings& surroundings) const
{
    registerModelClasses();
    vxr::VXAXMLDocument document(VelloraNamespace, "page");
    VXAXMLNode* root = document.root();
    vxr::VXAXMLArchiver archiver;
    prepare(archiver, surroundings);
    archiver.setKeptParts(keptOfObjects.get());
    vxr::VXRGiveIdsToReferredRenderables(renderables, archiver);
    std::unordered_map<const vxr::Object*, const std::string*> labels;
    for (const auto& [renderable, note] : notes) {
        if (!note.label.empty())
            labels[renderable] = &note.label;
    }
    archiver.setElementHandler([&](const vxr::Object& object, VXAXMLNode* node) {
        if (const auto label = labels.find(&object); label != labels.end())
            vxr::vxaxmlSetNSStringNsProp(node, VelloraNamespace, "label", *label->second);
    });
    vxr::vxaxmlCreateSizeChild(root, VelloraNamespace, "size", size);
    if (background)
        archiver.encodeObjectAsChildOfWithNameXmlNamespace(*background, root, "background", VelloraNamespace);
    writeGuides(guides, root);
    VXAXMLNode* list = vxr::vxaxmlCreateChild(root, VelloraNamespace, "renderables");
    kept.appendTo(root);
    auto next = renderables.begin();
    return document.serializeWithChildren(list, [&](VXAXMLNode* parent) {
        if (next == renderables.end())
            return false;
        archiver.encodeObjectAsChildOf(**next++, parent);
        return true;
    });
}

DocumentPage DocumentPage::fromText(
    std::string_view text, std::vector<std::string>& troubles, const PageSurroundings& surroundings)
{
    registerModelClasses();
    vxr::VXAXMLLimits limits;
    limits.bytes = std::size_t { 128 } << 20;
    limits.elements = 1'000'000;
    const auto document = vxr::VXAXMLDocument::parse(std::as_bytes(std::span(text)), limits);
    const VXAXMLNode* root = document->root();
    if (!vxr::vxaxmlIsNsNamed(root, VelloraNamespace, "page"))
        throw vxr::VXAXMLError(vxr::vxaxmlLine(root), "this is no page");
    constexpr std::size_t troubleLimit = 100;
    const XMLTrouble trouble = [&](const VXAXMLNode* node, const std::string& message) {
        if (troubles.size() < troubleLimit)
            troubles.push_back(atLine(vxr::vxaxmlLine(node), message));
    };
    DocumentPage page;
    page.keptOfObjects = std::make_shared<vxr::VXAXMLKeptPartsOfObjects>();
    vxr::VXAXMLUnarchiver unarchiver;
    prepare(unarchiver, surroundings);
    unarchiver.setKeptParts(page.keptOfObjects.get());
    unarchiver.setElementHandler([&](const std::shared_ptr<vxr::Object>& object, VXAXMLNode* node) {
        std::string label;
        if (!vxr::vxaxmlGetNSStringNsProp(node, VelloraNamespace, "label", label) || label.empty())
            return;
        if (const auto* renderable = dynamic_cast<const vxr::VXRRenderable*>(object.get()))
            page.notes[renderable].label = label;
    });
    const LogCapture log([&](const std::string& message) { trouble(unarchiver.currentNode(), message); });
    readSize(root, page, trouble);
    if (VXAXMLNode* color = childNamed(root, "background"))
        page.background = vxr::VXRObjectFromNode<vxr::Color>(unarchiver, color);
    readGuides(root, page, trouble);
    page.renderables = vxr::VXRReadRenderables(unarchiver, childNamed(root, "renderables"));
    unarchiver.finishReading();
    page.kept = vxr::VXAXMLKeptParts::partsOf(root);
    return page;
}

} // namespace app
