#include "Document.h"

#include "LogCapture.h"

#include <vxr/host/archiving/VXAXMLDocument.h>
#include <vxr/host/archiving/VXAXMLUnarchiver.h>
#include <vxr/platform/base/FileReplacement.h>

#include <zlib.h>

#include <algorithm>
#include <cctype>
#include <filesystem>

namespace app {

namespace {

using vxr::VelloraNamespace;
using vxr::VXAXMLNode;

constexpr const char* mimeType = "application/x-vxr-document";
constexpr const char* manifestFile = "document.xml";
constexpr const char* pictureFolder = "pictures/";
constexpr const char* pageFolder = "pages/";

std::uint32_t checksumOf(const std::string& bytes)
{
    return static_cast<std::uint32_t>(crc32_z(0, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size()));
}

} // namespace

Document::Document() { registerModelClasses(); }
Document::~Document() = default;

std::unique_ptr<Document> Document::open(const std::string& path)
{
    auto document = read(std::make_unique<ContainerReader>(path));
    document->mSourcePath = path;
    return document;
}

std::unique_ptr<Document> Document::fromBytes(std::string bytes, const ContainerLimits& limits)
{
    return read(ContainerReader::fromBytes(std::move(bytes), limits));
}

void Document::lose(const std::string& what)
{
    constexpr std::size_t lossLimit = 1000; // a hostile file could fill the memory with them
    if (mLosses.size() < lossLimit && std::find(mLosses.begin(), mLosses.end(), what) == mLosses.end())
        mLosses.push_back(what);
}

std::unique_ptr<Document> Document::read(std::unique_ptr<ContainerReader> source)
{
    registerModelClasses();
    auto document = std::make_unique<Document>();
    document->mSource = std::move(source);
    for (const std::string& trouble : document->mSource->troubles())
        document->lose(trouble);
    std::string text;
    try {
        text = document->mSource->read(manifestFile);
    } catch (const DocumentFileError& error) {
        document->lose(error.what());
        document->findPages();
        return document;
    }
    document->readManifest(text);
    return document;
}

/// Without a list of the pages all that are there are taken, by name.
void Document::findPages()
{
    std::vector<std::string> files;
    for (const std::string& name : mSource->names()) {
        if (name.starts_with(pageFolder) && name.ends_with(".xml"))
            files.push_back(name);
    }
    if (files.empty())
        throw DocumentFileError("this is no document: it has neither a list of pages nor pages");
    std::sort(files.begin(), files.end(), [](const std::string& a, const std::string& b) {
        return std::pair(a.size(), a) < std::pair(b.size(), b); // page-10 comes after page-9
    });
    for (std::string& file : files)
        mPages.push_back({ std::move(file), std::nullopt, false });
}

void Document::readManifest(const std::string& text)
{
    std::unique_ptr<vxr::VXAXMLDocument> xml;
    try {
        xml = vxr::VXAXMLDocument::parse(std::as_bytes(std::span(text)));
    } catch (const vxr::VXAXMLError& error) {
        lose(std::string(manifestFile) + ": " + error.what());
        return findPages();
    }
    const VXAXMLNode* root = xml->root();
    if (!vxr::vxaxmlIsNsNamed(root, VelloraNamespace, "document"))
        throw DocumentFileError("this is no document");
    std::uint32_t found = 0;
    if (!vxr::vxaxmlGetUnsignedLongNsProp(root, VelloraNamespace, "version", found))
        lose(std::string(manifestFile) + ": there is no version");
    else if (found > version)
        throw DocumentFileError("this document has version " + std::to_string(found)
            + "; this program reads versions up to " + std::to_string(version));
    std::set<std::string> listed;
    for (const VXAXMLNode* child = vxr::vxaxmlFirstChildElement(root); child;
         child = vxr::vxaxmlNextSiblingElement(child)) {
        const std::string place
            = std::string(manifestFile) + ": line " + std::to_string(vxr::vxaxmlLine(child)) + ": ";
        std::string file;
        if (vxr::vxaxmlIsNsNamed(child, VelloraNamespace, "styles")) {
            const LogCapture log([&](const std::string& message) { lose(place + message); });
            readStyles(child);
        } else if (!vxr::vxaxmlIsNsNamed(child, VelloraNamespace, "page")) {
            mUnknown.emplace_back(child);
        } else if (!vxr::vxaxmlGetNSStringNsProp(child, VelloraNamespace, "file", file)
            || !isSafeEntryName(file)) {
            lose(place + "a page without a usable file is left out");
        } else if (!listed.insert(file).second) {
            lose(place + "the page '" + file + "' is listed twice");
        } else {
            mPages.push_back({ file, std::nullopt, false });
        }
    }
}

void Document::readStyles(const VXAXMLNode* parent)
{
    vxr::VXAXMLUnarchiver unarchiver;
    for (VXAXMLNode* node = vxr::vxaxmlFirstChildNsNamed(parent, VelloraNamespace, "style"); node;
         node = vxr::vxaxmlNextSiblingNsNamed(node, VelloraNamespace, "style")) {
        std::string name;
        auto style = unarchiver.createObjectFromNode(vxr::vxaxmlFirstChildElement(node));
        if (vxr::vxaxmlGetNSStringNsProp(node, VelloraNamespace, "name", name) && style)
            styles[name] = std::move(style);
        else
            lose(std::string(manifestFile) + ": line " + std::to_string(vxr::vxaxmlLine(node))
                + ": a style without a name or of no known kind is left out");
    }
}

// Pages.

void Document::load(Page& page)
{
    if (page.content)
        return;
    page.content.emplace();
    std::vector<std::string> troubles;
    try {
        page.content = DocumentPage::fromText(mSource->read(page.file), troubles, styles);
    } catch (const DocumentFileError& error) {
        return lose(error.what());
    } catch (const vxr::VXAXMLError& error) {
        troubles.emplace_back(error.what());
    }
    for (const std::string& trouble : troubles)
        lose(page.file + ": " + trouble);
}

const DocumentPage& Document::page(std::size_t index)
{
    load(mPages.at(index));
    return *mPages[index].content;
}

DocumentPage& Document::editPage(std::size_t index)
{
    load(mPages.at(index));
    mPages[index].isChanged = true;
    return *mPages[index].content;
}

void Document::insertPage(std::size_t index, DocumentPage content)
{
    const auto place = mPages.begin() + static_cast<std::ptrdiff_t>(std::min(index, mPages.size()));
    mPages.insert(place, { unusedName("pages/page-", ".xml"), std::move(content), true });
}

void Document::removePage(std::size_t index)
{
    mRemovedFiles.insert(mPages.at(index).file);
    mPages.erase(mPages.begin() + static_cast<std::ptrdiff_t>(index));
}

bool Document::has(const std::string& file) const
{
    return (mSource && mSource->has(file)) || mNewPictures.count(file)
        || std::any_of(mPages.begin(), mPages.end(), [&](const Page& page) { return page.file == file; });
}

std::string Document::unusedName(const std::string& stem, const std::string& extension) const
{
    // Pages are added in order, so the first try is nearly always right.
    for (std::size_t number = mPages.size() + mNewPictures.size() + 1;; ++number) {
        std::string name = stem + std::to_string(number) + extension;
        if (!has(name))
            return name;
    }
}

// Pictures.

std::string Document::addPicture(std::string bytes, const std::string& extension)
{
    if (extension.empty()
        || !std::all_of(extension.begin(), extension.end(), [](unsigned char c) { return std::isalnum(c); }))
        throw DocumentFileError("'" + extension + "' can't be a picture's extension");
    for (const auto& [name, held] : mNewPictures) {
        if (held == bytes)
            return name;
    }
    const std::pair<std::uint64_t, std::uint32_t> key { bytes.size(), checksumOf(bytes) };
    for (const std::string& name : pictureNames()) {
        // The checksum is told without reading the picture, and may agree by chance.
        if (mSource && mSource->has(name) && mSource->sizeAndChecksum(name) == key
            && mSource->read(name) == bytes)
            return name;
    }
    const std::string name = unusedName(std::string(pictureFolder) + "picture-", "." + extension);
    return mNewPictures.emplace(name, std::move(bytes)).first->first;
}

std::vector<std::string> Document::pictureNames() const
{
    std::vector<std::string> names;
    for (const std::string& name : mSource ? mSource->names() : std::vector<std::string>()) {
        if (name.starts_with(pictureFolder))
            names.push_back(name);
    }
    for (const auto& [name, bytes] : mNewPictures)
        names.push_back(name);
    return names;
}

std::string Document::picture(const std::string& name) const
{
    const auto found = mNewPictures.find(name);
    if (found != mNewPictures.end())
        return found->second;
    if (!mSource)
        throw DocumentFileError("'" + name + "' is missing");
    return mSource->read(name);
}

// Saving.

std::string Document::manifest() const
{
    vxr::VXAXMLDocument xml(VelloraNamespace, "document");
    VXAXMLNode* root = xml.root();
    vxr::vxaxmlSetUnsignedLongNsProp(root, VelloraNamespace, "version", version);
    if (!styles.empty()) {
        VXAXMLNode* list = vxr::vxaxmlCreateChild(root, VelloraNamespace, "styles");
        vxr::VXAXMLArchiver archiver;
        for (const auto& [name, style] : styles) {
            VXAXMLNode* node = vxr::vxaxmlCreateChild(list, VelloraNamespace, "style");
            vxr::vxaxmlSetNSStringNsProp(node, VelloraNamespace, "name", name);
            archiver.encodeObjectAsChildOf(*style, node);
        }
    }
    for (const Page& page : mPages) {
        VXAXMLNode* node = vxr::vxaxmlCreateChild(root, VelloraNamespace, "page");
        vxr::vxaxmlSetNSStringNsProp(node, VelloraNamespace, "file", page.file);
    }
    for (const KeptXML& element : mUnknown)
        element.appendTo(root);
    return xml.serialize();
}

std::string Document::bytes()
{
    using Packing = ContainerWriter::Packing;
    ContainerWriter writer;
    std::set<std::string> written { "mimetype", manifestFile };
    writer.add("mimetype", mimeType, Packing::Stored);
    writer.add(manifestFile, manifest());
    const auto addFromSource = [&](const std::string& name, Packing packing) {
        try {
            writer.add(name, mSource->read(name), packing);
        } catch (const DocumentFileError& error) {
            lose(error.what());
        }
    };
    for (Page& page : mPages) {
        written.insert(page.file);
        if (page.isChanged)
            writer.add(page.file, page.content->text(styles));
        else
            addFromSource(page.file, Packing::Deflated);
    }
    for (const std::string& name : mSource ? mSource->names() : std::vector<std::string>()) {
        if (!mRemovedFiles.count(name) && written.insert(name).second)
            addFromSource(name, name.starts_with(pictureFolder) ? Packing::Stored : Packing::Deflated);
    }
    for (const auto& [name, content] : mNewPictures) // compressed as they are
        writer.add(name, content, Packing::Stored);
    return writer.finish();
}

void Document::save(const std::string& path, Overwrite overwrite)
{
    const std::string content = bytes();
    std::error_code error;
    const bool isSource = !mSourcePath.empty() && std::filesystem::equivalent(path, mSourcePath, error);
    if (isSource && !mLosses.empty() && overwrite != Overwrite::Damaged)
        throw DocumentFileError("the file was damaged when it was opened; saving over it would lose what may "
                                "still be in it ("
            + mLosses.front() + ")");
    try {
        vxr::FileReplacement file(path);
        file.write(content.data(), content.size());
        file.commit(vxr::FileReplacement::Durability::SyncedRename);
    } catch (const std::runtime_error& failure) {
        throw DocumentFileError(failure.what());
    }
}

} // namespace app
