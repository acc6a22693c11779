#pragma once

#include <vxr/platform/imaging/Importer.h>

#include <map>
#include <string>
#include <vector>

namespace vxr::test {

/// An importer that knows the files that a test has told it, by their bytes, and writes down what it is
/// asked. Any other file is refused.
class FakeImporter final : public Importer {
public:
    bool available = true;
    std::vector<ImportFileType> types; ///< those of the usual kinds to begin with
    std::map<std::string, std::shared_ptr<const ImportedBitmap>> bitmaps; ///< by the file's bytes
    std::map<std::string, DocumentInfo> documents; ///< PDF files
    std::map<std::string, std::string> normalised; ///< what is not here comes back as it is
    std::map<std::string, std::string> conversions; ///< EPS and PICT files to PDF files
    std::string unplaceable; ///< a PDF file whose page is not placed
    std::uint32_t pageColor = 0xff0000ff; ///< what page areas show, as a drawable pixel
    std::vector<std::string> calls; ///< "decode drawable", "area 2 2 0 0 100 50" ...

    FakeImporter();

    /// A bitmap of one colour, drawable or 8-bit RGB, 16 or as the format says.
    static std::shared_ptr<const ImportedBitmap> bitmap(
        const BitmapFormat&, std::uint8_t sample = 0x80, BitmapInfo = {});
    /// Drawable, opaque, of one colour.
    static std::shared_ptr<const ImportedBitmap> drawable(
        std::uint32_t width, std::uint32_t height, std::uint32_t color);

    /// Makes a new one the shared importer while it lives.
    class Scope;

    bool isAvailable() override { return available; }
    const std::vector<ImportFileType>& fileTypes() override;
    std::optional<BitmapInfo> measureBitmap(const MemoryFile&, ImportFailure* = nullptr) override;
    std::shared_ptr<const ImportedBitmap> decodeBitmap(
        const MemoryFile&, const BitmapRequest&, ImportFailure* = nullptr) override;
    std::optional<DocumentInfo> measureDocument(const MemoryFile&, ImportFailure* = nullptr) override;
    std::shared_ptr<const ImportedBitmap> renderPageArea(
        const MemoryFile&, const PageAreaRequest&, ImportFailure* = nullptr) override;
    std::shared_ptr<const MemoryFile> normalisedDocument(
        const MemoryFile&, ImportFailure* = nullptr) override;
    std::shared_ptr<const MemoryFile> convertEPS(const MemoryFile&, ImportFailure* = nullptr) override;
    std::shared_ptr<const MemoryFile> convertPICT(const MemoryFile&, ImportFailure* = nullptr) override;
    /// The written document with a line for each mark behind it.
    std::shared_ptr<const MemoryFile> placePages(
        const MemoryFile&, std::span<const PlacedPage>, ImportFailure* = nullptr) override;

private:
    std::shared_ptr<const MemoryFile> converted(const MemoryFile&, ImportFailure*);
};

class FakeImporter::Scope {
public:
    Scope()
        : fake(std::make_shared<FakeImporter>())
    {
        Importer::setShared(fake);
    }
    ~Scope() { Importer::setShared(nullptr); }
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

    FakeImporter* operator->() const { return fake.get(); }

    std::shared_ptr<FakeImporter> fake;
};

inline std::shared_ptr<const MemoryFile> memoryFile(const std::string& bytes)
{
    return MemoryFile::createWithCopy(bytes.data(), bytes.size());
}

inline std::string bytesOf(const MemoryFile& file)
{
    return { reinterpret_cast<const char*>(file.bytes().data()), file.size() };
}

} // namespace vxr::test
