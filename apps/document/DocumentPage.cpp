#include "DocumentPage.h"

#include "LogCapture.h"
#include "NodeHelpers.h"

#include <vxr/host/archiving/VXAXMLDocument.h>

#include <algorithm>
#include <cmath>

namespace app {

namespace {

using vxr::VelloraNamespace;
using vxr::VXAXMLNode;

constexpr float sideLimit = 1e6f;

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
            && std::isfinite(position) && (direction == "horizontal" || direction == "vertical"))
            page.guides.push_back({ direction == "horizontal", static_cast<float>(position) });
        else
            trouble(node, "a guide without direction or position is left out");
    }
}

} // namespace

std::string DocumentPage::text(const SharedStyles& styles) const
{
    registerModelClasses();
    vxr::VXAXMLDocument document(VelloraNamespace, "page");
    VXAXMLNode* root = document.root();
    vxr::vxaxmlCreateSizeChild(root, VelloraNamespace, "size", size);
    vxr::VXAXMLArchiver archiver;
    if (background)
        archiver.encodeObjectAsChildOfWithNameXmlNamespace(*background, root, "background", VelloraNamespace);
    if (!guides.empty()) {
        VXAXMLNode* list = vxr::vxaxmlCreateChild(root, VelloraNamespace, "guides");
        for (const Guide& guide : guides) {
            VXAXMLNode* node = vxr::vxaxmlCreateChild(list, VelloraNamespace, "guide");
            vxr::vxaxmlSetNSStringNsProp(
                node, VelloraNamespace, "direction", guide.isHorizontal ? "horizontal" : "vertical");
            vxr::vxaxmlSetDoubleNsProp(node, VelloraNamespace, "position", guide.position);
        }
    }
    writeRenderables(
        renderables, notes, styles, vxr::vxaxmlCreateChild(root, VelloraNamespace, "renderables"));
    for (const KeptXML& element : unknown)
        element.appendTo(root);
    return document.serialize();
}

DocumentPage DocumentPage::fromText(
    std::string_view text, std::vector<std::string>& troubles, const SharedStyles& styles)
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
    const LogCapture log([&](const std::string& message) { trouble(nullptr, message); });
    readSize(root, page, trouble);
    if (VXAXMLNode* color = childNamed(root, "background")) {
        vxr::VXAXMLUnarchiver unarchiver;
        page.background = vxr::VXRObjectFromNode<vxr::Color>(unarchiver, color);
    }
    readGuides(root, page, trouble);
    page.renderables = readRenderables(childNamed(root, "renderables"), page.notes, styles, trouble);
    for (const VXAXMLNode* child = vxr::vxaxmlFirstChildElement(root); child;
         child = vxr::vxaxmlNextSiblingElement(child)) {
        static constexpr const char* known[] = { "size", "background", "guides", "renderables" };
        if (std::none_of(std::begin(known), std::end(known),
                [&](const char* name) { return vxr::vxaxmlIsNsNamed(child, VelloraNamespace, name); }))
            page.unknown.emplace_back(child);
    }
    return page;
}

} // namespace app
