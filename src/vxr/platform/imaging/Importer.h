#pragma once

#include <vxr/platform/imaging/ImportedBitmap.h>
#include <vxr/platform/imaging/MemoryFile.h>

#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace vxr {

/// Why there is no result.
enum class ImportOutcome : std::uint32_t {
    Done,
    Refused, ///< the file is damaged, of no known kind, or has no such page
    TooLarge, ///< beyond the limits on memory, output or file size
    TimedOut, ///< beyond the limits on processor time or waiting
    Crashed, ///< the job died; the next one works
    Unavailable, ///< there is no import program, or it answered what it must not
};

struct ImportFailure {
    ImportOutcome outcome = ImportOutcome::Done;
    std::string message; ///< one sentence for logs
};

enum class ImportKind : std::uint32_t { Bitmap = 1, PDF, PICT, EPS };

/// A file type that can be read.
struct ImportFileType {
    std::string extension; ///< lower case: "jpg"
    std::string hfsType {}; ///< with its single quotes: "'JPEG'"; empty when the type has none
    ImportKind kind = ImportKind::Bitmap;
};

/// In default user space units of the page, y up. Zero when absent or damaged.
struct PageBox {
    double x = 0, y = 0, width = 0, height = 0;
};

/// A document and its page 1. Boxes as the page tree gives them, inherited ones included; crop defaults to
/// media, the others to crop.
struct DocumentInfo {
    std::uint32_t pages = 0;
    PageBox media, crop, bleed, trim, art;
    int rotation = 0; ///< 0, 90, 180 or 270 degrees clockwise
    std::string version; ///< "1.7"
};

struct BitmapRequest {
    /// Drawable pixels are converted to sRGB and premultiplied while they are decoded; without it the samples
    /// come as they are in the file, with the profile beside them.
    bool drawable = false;
    /// Whether drawable pixels are converted by the embedded profile; without it by the model's default one.
    bool useProfile = true;
};

/// A rectangle of page 1's media box, in pixels from its upper left corner, y down, with `scaleX` and
/// `scaleY` pixels per unit. The page's rotation is not applied.
struct PageAreaRequest {
    double scaleX = 1, scaleY = 1;
    std::int32_t x = 0, y = 0, width = 0, height = 0;
    /// In 0 to 1: how far the corner lies to the right of and below that of pixel (0, 0).
    double offsetX = 0, offsetY = 0;
};

/// Page 1 of a document, wanted in place of the picture with the mark (see `PageMark.h`).
struct PlacedPage {
    std::string mark;
    std::shared_ptr<const MemoryFile> document;
};

/// Everything that the library asks about foreign files. No byte of them is parsed in this process.
///
/// An operation that fails answers none or null and says why in `failure` when one is given. A call waits for
/// its result. Unless a host or a test has set another one, `shared` is the import program's.
class VXR_EXPORT Importer {
public:
    virtual ~Importer();
    Importer(const Importer&) = delete;
    Importer& operator=(const Importer&) = delete;

    static Importer& shared();
    /// Replaces the shared importer; null brings the import program's back.
    static void setShared(std::shared_ptr<Importer>);

    /// Whether there is a program to ask. May start it.
    virtual bool isAvailable() = 0;
    /// What can be read, usual extension of a kind first. Empty when not available.
    virtual const std::vector<ImportFileType>& fileTypes() = 0;

    virtual std::optional<BitmapInfo> measureBitmap(const MemoryFile&, ImportFailure* = nullptr) = 0;
    virtual std::shared_ptr<const ImportedBitmap> decodeBitmap(
        const MemoryFile&, const BitmapRequest&, ImportFailure* = nullptr)
        = 0;

    virtual std::optional<DocumentInfo> measureDocument(const MemoryFile& pdf, ImportFailure* = nullptr) = 0;
    /// Drawable pixels with alpha, transparent where the page paints nothing and beside the page.
    virtual std::shared_ptr<const ImportedBitmap> renderPageArea(
        const MemoryFile& pdf, const PageAreaRequest&, ImportFailure* = nullptr)
        = 0;
    /// Page 1 alone, with a media box at (0, 0) that is the old media and art boxes' intersection (the media
    /// box when they are apart). The rotation is not applied.
    virtual std::shared_ptr<const MemoryFile> normalisedDocument(
        const MemoryFile& pdf, ImportFailure* = nullptr)
        = 0;
    virtual std::shared_ptr<const MemoryFile> convertEPS(const MemoryFile& eps, ImportFailure* = nullptr) = 0;
    /// With or without the 512 bytes in front.
    virtual std::shared_ptr<const MemoryFile> convertPICT(const MemoryFile& pict, ImportFailure* = nullptr)
        = 0;
    /// `written` with the pages in place of their marks, as forms: vectors, fonts and colours are kept. JPEG
    /// pictures in it get the profiles that they carry; their bytes stay.
    virtual std::shared_ptr<const MemoryFile> placePages(
        const MemoryFile& written, std::span<const PlacedPage>, ImportFailure* = nullptr)
        = 0;

protected:
    Importer() = default;
};

} // namespace vxr
