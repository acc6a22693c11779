#include "Document.h"

#include "ModelClasses.h"

#include <vxr/host/archiving/VXAXMLDocument.h>
#include <vxr/platform/base/FileReplacement.h>

#include <algorithm>
#include <filesystem>

namespace app {

namespace {

constexpr const char* mimeType = "application/x-vxr-document";
constexpr const char* pageFolder = "pages/";

void note(std::vector<std::string>& losses, const std::string& what)
{
    constexpr std::size_t lossLimit = 1000; // a hostile file could fill the memory with them
    if (losses.size() < lossLimit && std::find(losses.begin(), losses.end(), what) == losses.end())
        losses.push_back(what);
}

} // namespace

Document::Document()
    : mLosses(std::make_shared<std::vector<std::string>>())
    , mData(std::make_shared<DocumentData>(
          [losses = mLosses](const std::string& what) { note(*losses, what); }))
{
    registerModelClasses();
}

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

void Document::lose(const std::string& what) const { note(*mLosses, what); }

std::unique_ptr<Document> Document::read(std::shared_ptr<ContainerReader> source)
{
    registerModelClasses();
    auto document = std::make_unique<Document>();
    document->mSource = std::move(source);
    document->mData->setSource(document->mSource);
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
        mPages.push_back({ std::move(file), std::nullopt, false, {} });
}

// Pages.

void Document::load(Page& page)
{
    if (page.content)
        return;
    page.content.emplace();
    std::vector<std::string> troubles;
    try {
        page.content = DocumentPage::fromText(mSource->read(page.file), troubles, surroundings());
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
    mPages.insert(place, { unusedPageName(), std::move(content), true, {} });
}

void Document::removePage(std::size_t index)
{
    mRemovedFiles.insert(mPages.at(index).file);
    mPages.erase(mPages.begin() + static_cast<std::ptrdiff_t>(index));
}

std::string Document::unusedPageName() const
{
    // Pages are added in order, so the first try is nearly always right.
    for (std::size_t number = mPages.size() + 1;; ++number) {
        std::string name = pageFolder + ("page-" + std::to_string(number)) + ".xml";
        if (!(mSource && mSource->has(name))
            && std::none_of(
                mPages.begin(), mPages.end(), [&](const Page& page) { return page.file == name; }))
            return name;
    }
}

// Saving.

std::string Document::bytes()
{
    using Packing = ContainerWriter::Packing;
    // Pages first: writing them adds the pictures that they show.
    std::map<std::string, std::string> written;
    for (const Page& page : mPages) {
        if (page.isChanged)
            written[page.file] = page.content->text(surroundings());
    }
    ContainerWriter writer;
    std::set<std::string> names { "mimetype", manifestFile };
    writer.add("mimetype", mimeType, Packing::Stored);
    writer.add(manifestFile, manifest());
    std::size_t total = 0;
    const auto addFromSource = [&](const std::string& name, Packing packing) {
        try {
            std::string content = mSource->read(name);
            total += content.size();
            writer.add(name, std::move(content), packing);
        } catch (const DocumentFileError& error) {
            lose(error.what());
        }
        if (total > mSource->limits().totalBytes)
            throw DocumentFileError("this document is larger than "
                + std::to_string(mSource->limits().totalBytes) + " bytes when it is unpacked");
    };
    for (const Page& page : mPages) {
        names.insert(page.file);
        if (page.isChanged)
            writer.add(page.file, std::move(written[page.file]));
        else
            addFromSource(page.file, Packing::Deflated);
    }
    for (const std::string& name : mSource ? mSource->names() : std::vector<std::string>()) {
        if (!mRemovedFiles.count(name) && names.insert(name).second)
            addFromSource(name, name.starts_with(DocumentData::folder) ? Packing::Stored : Packing::Deflated);
    }
    for (const auto& [name, content] : mData->added()) // compressed as they are
        writer.add(name, content, Packing::Stored);
    return writer.finish();
}

void Document::save(const std::string& path, Overwrite overwrite)
{
    const std::string content = bytes();
    std::error_code error;
    const bool isSource = !mSourcePath.empty() && std::filesystem::equivalent(path, mSourcePath, error);
    if (isSource && !mLosses->empty() && overwrite != Overwrite::Damaged)
        throw DocumentFileError("the file was damaged when it was opened; saving over it would lose what may "
                                "still be in it ("
            + mLosses->front() + ")");
    try {
        vxr::FileReplacement file(path);
        file.write(content.data(), content.size());
        file.commit(vxr::FileReplacement::Durability::SyncedRename);
    } catch (const std::runtime_error& failure) {
        throw DocumentFileError(failure.what());
    }
}

} // namespace app
