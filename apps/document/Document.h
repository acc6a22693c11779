#pragma once

#include "Container.h"
#include "DocumentData.h"
#include "DocumentPage.h"

#include <optional>
#include <set>

namespace app {

/// A document of pages in one file: a zip container with
///
///     mimetype             so that the file can be told from other containers
///     document.xml         the version, the pages in order, the shared styles
///     pages/NAME.xml       one page each, read when it is asked for
///     pictures/NAME        the bytes of placed pictures, once each
///
/// and whatever else was in the file that was opened, which is kept and written back, as are elements and
/// attributes that nothing here knows. What is not changed is written as it was read.
///
/// Failures throw `DocumentFileError`.
class Document {
public:
    static constexpr unsigned version = 1;
    static constexpr const char* manifestFile = "document.xml";

    Document();
    ~Document();
    /// Opens what can be read, see `losses`. Throws for what is no document or one of a later version.
    static std::unique_ptr<Document> open(const std::string& path);
    static std::unique_ptr<Document> fromBytes(std::string bytes, const ContainerLimits& = {});

    std::size_t pageCount() const { return mPages.size(); }
    const DocumentPage& page(std::size_t index); ///< an empty page where one can't be read
    DocumentPage& editPage(std::size_t index); ///< likewise; the page is written anew when saving
    void insertPage(std::size_t index, DocumentPage);
    void removePage(std::size_t index);

    /// Fills, strokes and shadows that the user named, of the classes that documents describe. Renderables
    /// that use one of these objects are written with a reference to it, and share it again when they are
    /// read.
    std::map<std::string, std::shared_ptr<vxr::Object>> styles;

    /// The bytes of pictures, once each however often they are placed. Whoever places a picture imports it
    /// with this manager, or with any other: what renderables show is taken over when the document is
    /// written.
    const std::shared_ptr<DocumentData>& data() const { return mData; }

    /// What could not be read so far, a line each.
    const std::vector<std::string>& losses() const { return *mLosses; }

    std::string bytes(); ///< as a file; the same document gives the same bytes

    enum class Overwrite { Undamaged, Damaged };
    /// Puts the file in place as a whole or leaves what is there. A file that this document was opened from
    /// with losses is replaced only when told so.
    void save(const std::string& path, Overwrite = Overwrite::Undamaged);

private:
    struct Page {
        std::string file; ///< in the container; empty while there is none
        std::optional<DocumentPage> content;
        bool isChanged = false;
        vxr::VXAXMLKeptParts kept; ///< of its entry in the list of pages
    };

    static std::unique_ptr<Document> read(std::shared_ptr<ContainerReader>);
    void readManifest(const std::string& text);
    void readPages(const vxr::VXAXMLNode* root);
    void readStyles(const vxr::VXAXMLNode* root);
    void findPages();
    std::string manifest() const;
    void load(Page&);
    PageSurroundings surroundings() const { return { styles, mData }; }
    std::string unusedPageName() const;
    void lose(const std::string& what) const;

    std::shared_ptr<ContainerReader> mSource;
    std::string mSourcePath;
    std::vector<Page> mPages;
    std::set<std::string> mRemovedFiles; ///< of pages
    std::shared_ptr<std::vector<std::string>> mLosses; ///< outlasts the document in readers of data
    std::shared_ptr<DocumentData> mData;

    // What nothing here knows of the list of pages and the styles.
    vxr::VXAXMLKeptParts mKept;
    vxr::VXAXMLKeptPartsOfObjects mKeptOfStyles;
    std::map<std::string, vxr::VXAXMLKeptParts> mKeptOfStyleEntries;
    std::vector<vxr::VXAXMLKeptElement> mUnreadStyles;
};

} // namespace app
