#pragma once

#include <vxr/platform/imaging/Importer.h>

namespace vxr {

namespace importing {
class ImportConnection;
struct Limits;
struct Request;
} // namespace importing

/// The importer behind which the import program works: each operation is a job in a process of its own, with
/// limits, no new privileges and no network. A crash, a hang or a refusal costs that result only, and is
/// logged once for each file by whoever asked.
class VXR_EXPORT ImportProgram final : public Importer {
public:
    /// Uses the program that `programPath` names.
    ImportProgram();
    /// Uses the program at `path`.
    explicit ImportProgram(std::string path);
    ~ImportProgram() override;

    /// Where the program is: as set by the host, by the environment variable VXR_IMPORT_PROGRAM, or beside
    /// the library, in this order. It need not exist.
    static std::string programPath();
    /// The host's choice; an empty path takes it back. For importers made later.
    static void setProgramPath(std::string path);

    /// Bytes that a job may take for itself (256 MB at least are granted) and for its result, seconds of
    /// processor time, and milliseconds until it is given up.
    void setLimits(std::size_t memoryBytes, std::size_t outputBytes, unsigned processorSeconds,
        unsigned waitMilliseconds);

    bool isAvailable() override;
    const std::vector<ImportFileType>& fileTypes() override;
    std::optional<BitmapInfo> measureBitmap(const MemoryFile&, ImportFailure* = nullptr) override;
    std::shared_ptr<const ImportedBitmap> decodeBitmap(
        const MemoryFile&, const BitmapRequest&, ImportFailure* = nullptr) override;
    std::optional<DocumentInfo> measureDocument(const MemoryFile& pdf, ImportFailure* = nullptr) override;
    std::shared_ptr<const ImportedBitmap> renderPageArea(
        const MemoryFile& pdf, const PageAreaRequest&, ImportFailure* = nullptr) override;
    std::shared_ptr<const MemoryFile> normalisedDocument(
        const MemoryFile& pdf, ImportFailure* = nullptr) override;
    std::shared_ptr<const MemoryFile> convertEPS(const MemoryFile& eps, ImportFailure* = nullptr) override;
    std::shared_ptr<const MemoryFile> convertPICT(const MemoryFile& pict, ImportFailure* = nullptr) override;
    std::shared_ptr<const MemoryFile> placePages(
        const MemoryFile& written, std::span<const PlacedPage>, ImportFailure* = nullptr) override;

    /// Makes a job do what hostile files try, and says how it ended. For tests.
    ImportFailure misbehave(int misdeed);

private:
    struct Result {
        std::shared_ptr<const MemoryFile> report, payload;
    };

    std::optional<Result> run(importing::Request, const MemoryFile* input, ImportFailure*);
    std::shared_ptr<const MemoryFile> runForDocument(
        importing::Request, const MemoryFile& input, ImportFailure*);
    std::shared_ptr<const ImportedBitmap> runForBitmap(
        importing::Request, const MemoryFile& input, ImportFailure*);

    std::unique_ptr<importing::ImportConnection> mConnection;
    std::unique_ptr<importing::Limits> mLimits;
    std::optional<std::vector<ImportFileType>> mFileTypes;
};

} // namespace vxr
