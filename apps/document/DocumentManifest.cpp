#include "Document.h"

#include "LogCapture.h"

#include <vxr/host/archiving/VXAXMLDocument.h>
#include <vxr/persistence/VXRRenderableArchiving.h>

namespace app {

namespace {

using vxr::VelloraNamespace;
using vxr::VXAXMLKeptParts;
using vxr::VXAXMLNode;

std::string placeOf(const VXAXMLNode* node)
{
    const std::string file(Document::manifestFile);
    return node ? file + ": line " + std::to_string(vxr::vxaxmlLine(node)) + ": " : file + ": ";
}

} // namespace

void Document::readManifest(const std::string& text)
{
    std::unique_ptr<vxr::VXAXMLDocument> xml;
    try {
        xml = vxr::VXAXMLDocument::parse(std::as_bytes(std::span(text)));
    } catch (const vxr::VXAXMLError& error) {
        lose(placeOf(nullptr) + error.what());
        return findPages();
    }
    const VXAXMLNode* root = xml->root();
    if (!vxr::vxaxmlIsNsNamed(root, VelloraNamespace, "document"))
        throw DocumentFileError("this is no document");
    std::uint32_t found = 0;
    if (!vxr::vxaxmlGetUnsignedLongNsProp(root, VelloraNamespace, "version", found))
        lose(placeOf(root) + "there is no version");
    else if (found > version)
        throw DocumentFileError("this document has version " + std::to_string(found)
            + "; this program reads versions up to " + std::to_string(version));
    for (const VXAXMLNode* list = vxr::vxaxmlFirstChildNsNamed(root, VelloraNamespace, "styles"); list;
         list = vxr::vxaxmlNextSiblingNsNamed(list, VelloraNamespace, "styles"))
        readStyles(list);
    readPages(root);
    mKept = VXAXMLKeptParts::partsOf(root);
}

void Document::readPages(const VXAXMLNode* root)
{
    std::set<std::string> listed;
    for (const VXAXMLNode* node = vxr::vxaxmlFirstChildNsNamed(root, VelloraNamespace, "page"); node;
         node = vxr::vxaxmlNextSiblingNsNamed(node, VelloraNamespace, "page")) {
        std::string file;
        const bool hasFile = vxr::vxaxmlGetNSStringNsProp(node, VelloraNamespace, "file", file);
        VXAXMLKeptParts kept = VXAXMLKeptParts::partsOf(node);
        if (!hasFile || !isSafeEntryName(file))
            lose(placeOf(node) + "a page without a usable file is left out");
        else if (!listed.insert(file).second)
            lose(placeOf(node) + "the page '" + file + "' is listed twice");
        else
            mPages.push_back({ file, std::nullopt, false, std::move(kept) });
    }
}

void Document::readStyles(const VXAXMLNode* list)
{
    vxr::VXAXMLUnarchiver unarchiver;
    prepare(unarchiver, { {}, mData });
    unarchiver.setKeptParts(&mKeptOfStyles);
    const VXAXMLNode* place = list;
    const LogCapture log([&](const std::string& message) {
        lose(placeOf(unarchiver.currentNode() ? unarchiver.currentNode() : place) + message);
    });
    for (VXAXMLNode* node = vxr::vxaxmlFirstChildNsNamed(list, VelloraNamespace, "style"); node;
         node = vxr::vxaxmlNextSiblingNsNamed(node, VelloraNamespace, "style")) {
        place = node;
        std::string name;
        const bool hasName = vxr::vxaxmlGetNSStringNsProp(node, VelloraNamespace, "name", name);
        auto style = vxr::VXRStyleFromNode(unarchiver, vxr::vxaxmlFirstChildElement(node));
        VXAXMLKeptParts kept = VXAXMLKeptParts::partsOf(node);
        if (!hasName || !style) {
            lose(placeOf(node) + "a style without a name or of no known kind can't be used");
            mUnreadStyles.emplace_back(node);
        } else if (!styles.emplace(name, std::move(style)).second) {
            lose(placeOf(node) + "there are two styles called '" + name + "'");
        } else if (!kept.isEmpty()) {
            mKeptOfStyleEntries[name] = std::move(kept);
        }
    }
}

std::string Document::manifest() const
{
    vxr::VXAXMLDocument xml(VelloraNamespace, "document");
    VXAXMLNode* root = xml.root();
    vxr::vxaxmlSetUnsignedLongNsProp(root, VelloraNamespace, "version", version);
    if (!styles.empty() || !mUnreadStyles.empty()) {
        VXAXMLNode* list = vxr::vxaxmlCreateChild(root, VelloraNamespace, "styles");
        vxr::VXAXMLArchiver archiver;
        prepare(archiver, { {}, mData });
        archiver.setKeptParts(&mKeptOfStyles);
        for (const auto& [name, style] : styles) {
            VXAXMLNode* node = vxr::vxaxmlCreateChild(list, VelloraNamespace, "style");
            vxr::vxaxmlSetNSStringNsProp(node, VelloraNamespace, "name", name);
            archiver.encodeObjectAndClassAsChildOfWithNameXmlNamespace(
                *style, node, "value", VelloraNamespace);
            if (const auto kept = mKeptOfStyleEntries.find(name); kept != mKeptOfStyleEntries.end())
                kept->second.appendTo(node);
        }
        for (const vxr::VXAXMLKeptElement& unread : mUnreadStyles)
            unread.copyTo(vxr::vxaxmlCreateChild(list, VelloraNamespace, "style"));
    }
    for (const Page& page : mPages) {
        VXAXMLNode* node = vxr::vxaxmlCreateChild(root, VelloraNamespace, "page");
        vxr::vxaxmlSetNSStringNsProp(node, VelloraNamespace, "file", page.file);
        page.kept.appendTo(node);
    }
    mKept.appendTo(root);
    return xml.serialize();
}

} // namespace app
