#include <vxr/platform/imaging/ImportProgram.h>

#include <vxr/platform/imaging/ImportAnswers.h>
#include <vxr/platform/imaging/ImportConnection.h>

#include <unistd.h>

#include <cstring>
#include <map>
#include <utility>

namespace vxr {

using namespace importing;

namespace {

std::string sentenceFor(const Reply& reply)
{
    switch (reply.outcome) {
    case ImportOutcome::TooLarge:
        return "The file takes more memory or room than a job may use.";
    case ImportOutcome::TimedOut:
        return "The file takes more time than a job may use.";
    case ImportOutcome::Crashed:
        return "The job died of signal " + std::to_string(reply.signal) + ".";
    case ImportOutcome::Refused:
        return "The file can't be read.";
    default:
        return "The import program answered what it must not.";
    }
}

void report(ImportFailure* failure, ImportOutcome outcome, std::string message)
{
    if (failure)
        *failure = { outcome, std::move(message) };
}

std::nullopt_t noSense(ImportFailure* failure)
{
    report(failure, ImportOutcome::Unavailable, "The import program answered what it must not.");
    return std::nullopt;
}

Request requestFor(Job job)
{
    Request request;
    request.job = job;
    return request;
}

/// The input of `PlacePages`. Pages of one document share its bytes. None when memory is short.
std::shared_ptr<const MemoryFile> packPages(const MemoryFile& written, std::span<const PlacedPage> pages)
{
    PlaceHeader header;
    header.count = std::uint32_t(pages.size());
    header.writtenOffset = sizeof header + pages.size() * sizeof(PlaceRecord);
    header.writtenBytes = written.size();
    std::vector<PlaceRecord> records;
    std::map<const MemoryFile*, std::uint64_t> offsets;
    std::vector<const MemoryFile*> documents { &written };
    std::uint64_t end = header.writtenOffset + header.writtenBytes;
    for (const PlacedPage& page : pages) {
        PlaceRecord record {};
        page.mark.copy(record.mark, sizeof record.mark - 1);
        const auto [place, isNew] = offsets.emplace(page.document.get(), end);
        if (isNew) {
            documents.push_back(page.document.get());
            end += page.document->size();
        }
        record.offset = place->second;
        record.bytes = page.document->size();
        records.push_back(record);
    }
    std::vector<std::byte> packed(end);
    std::byte* at = packed.data();
    const auto append = [&](const void* bytes, std::size_t size) {
        if (size > 0)
            std::memcpy(at, bytes, size);
        at += size;
    };
    append(&header, sizeof header);
    append(records.data(), records.size() * sizeof(PlaceRecord));
    for (const MemoryFile* document : documents)
        append(document->bytes().data(), document->size());
    return MemoryFile::createWithCopy(packed);
}

} // namespace

ImportProgram::ImportProgram()
    : ImportProgram(programPath())
{
}

ImportProgram::ImportProgram(std::string path)
    : mConnection(std::make_unique<ImportConnection>(std::move(path)))
    , mLimits(std::make_unique<Limits>())
{
}

ImportProgram::~ImportProgram() = default;

void ImportProgram::setLimits(
    std::size_t memoryBytes, std::size_t outputBytes, unsigned processorSeconds, unsigned waitMilliseconds)
{
    *mLimits = { memoryBytes, outputBytes, processorSeconds, waitMilliseconds };
}

bool ImportProgram::isAvailable() { return !fileTypes().empty(); }

const std::vector<ImportFileType>& ImportProgram::fileTypes()
{
    if (!mFileTypes) {
        const auto result = run(requestFor(Job::FileTypes), nullptr, nullptr);
        mFileTypes = result ? readFileTypes(result->report->bytes()) : std::vector<ImportFileType>();
    }
    return *mFileTypes;
}

/// Answers a result only for a job that is done, with a report that has passed the checks.
std::optional<ImportProgram::Result> ImportProgram::run(
    Request request, const MemoryFile* input, ImportFailure* failure)
{
    request.limits = *mLimits;
    std::string message;
    const auto answer = mConnection->ask(request, input ? input->descriptor() : -1, message);
    if (!answer) {
        report(failure, ImportOutcome::Unavailable, message);
        return std::nullopt;
    }
    Result result;
    if (answer->report >= 0)
        result.report = MemoryFile::createWithSealedDescriptor(answer->report, mLimits->outputBytes);
    if (answer->payload >= 0)
        result.payload = MemoryFile::createWithSealedDescriptor(answer->payload, mLimits->outputBytes);
    if (answer->reply.outcome != ImportOutcome::Done) {
        report(failure, answer->reply.outcome, sentenceFor(answer->reply));
        return std::nullopt;
    }
    const auto read = result.report ? readReport(result.report->bytes()) : std::nullopt;
    if (!read || !result.payload)
        return noSense(failure);
    if (read->outcome == ImportOutcome::Done)
        return result;
    const std::string reason = readMessage(*read);
    report(failure, read->outcome, reason.empty() ? sentenceFor({ .outcome = read->outcome }) : reason);
    return std::nullopt;
}

std::optional<BitmapInfo> ImportProgram::measureBitmap(const MemoryFile& file, ImportFailure* failure)
{
    const auto result = run(requestFor(Job::MeasureBitmap), &file, failure);
    if (!result)
        return std::nullopt;
    auto info = readBitmapInfo(result->report->bytes());
    if (!info)
        return noSense(failure);
    return info;
}

std::shared_ptr<const ImportedBitmap> ImportProgram::runForBitmap(
    Request request, const MemoryFile& input, ImportFailure* failure)
{
    const auto result = run(request, &input, failure);
    if (!result)
        return nullptr;
    const auto read = readReport(result->report->bytes());
    auto info = readBitmapInfo(result->report->bytes());
    const auto format = readPixelFormat(*read, result->payload->size());
    const bool isArea = request.job == Job::RenderPageArea;
    const bool isWhatWasAsked = info && format
        && (isArea ? format->isDrawable && format->hasAlpha && format->width == std::uint32_t(request.width)
                    && format->height == std::uint32_t(request.height)
                   : format->isDrawable == (request.drawable != 0) && format->width == info->format.width
                    && format->height == info->format.height);
    if (!isWhatWasAsked) {
        noSense(failure);
        return nullptr;
    }
    const std::byte* pixels = result->payload->bytes().data();
    return std::make_shared<const ImportedBitmap>(std::move(*info), *format, pixels, result->payload);
}

std::shared_ptr<const ImportedBitmap> ImportProgram::decodeBitmap(
    const MemoryFile& file, const BitmapRequest& wanted, ImportFailure* failure)
{
    Request request = requestFor(Job::DecodeBitmap);
    request.drawable = wanted.drawable;
    request.useProfile = wanted.useProfile;
    return runForBitmap(request, file, failure);
}

std::optional<DocumentInfo> ImportProgram::measureDocument(const MemoryFile& pdf, ImportFailure* failure)
{
    const auto result = run(requestFor(Job::MeasureDocument), &pdf, failure);
    if (!result)
        return std::nullopt;
    auto info = readDocumentInfo(*readReport(result->report->bytes()));
    if (!info)
        return noSense(failure);
    return info;
}

std::shared_ptr<const ImportedBitmap> ImportProgram::renderPageArea(
    const MemoryFile& pdf, const PageAreaRequest& area, ImportFailure* failure)
{
    Request request = requestFor(Job::RenderPageArea);
    request.scaleX = area.scaleX;
    request.offsetX = area.offsetX;
    request.offsetY = area.offsetY;
    request.scaleY = area.scaleY;
    request.x = area.x;
    request.y = area.y;
    request.width = area.width;
    request.height = area.height;
    return runForBitmap(request, pdf, failure);
}

std::shared_ptr<const MemoryFile> ImportProgram::runForDocument(
    Request request, const MemoryFile& input, ImportFailure* failure)
{
    const auto result = run(request, &input, failure);
    if (!result)
        return nullptr;
    if (result->payload->size() > 0)
        return result->payload;
    noSense(failure);
    return nullptr;
}

std::shared_ptr<const MemoryFile> ImportProgram::normalisedDocument(
    const MemoryFile& pdf, ImportFailure* failure)
{
    return runForDocument(requestFor(Job::NormaliseDocument), pdf, failure);
}

std::shared_ptr<const MemoryFile> ImportProgram::convertEPS(const MemoryFile& eps, ImportFailure* failure)
{
    return runForDocument(requestFor(Job::ConvertEPS), eps, failure);
}

std::shared_ptr<const MemoryFile> ImportProgram::convertPICT(const MemoryFile& pict, ImportFailure* failure)
{
    return runForDocument(requestFor(Job::ConvertPICT), pict, failure);
}

std::shared_ptr<const MemoryFile> ImportProgram::placePages(
    const MemoryFile& written, std::span<const PlacedPage> pages, ImportFailure* failure)
{
    const auto packed = packPages(written, pages);
    if (!packed) {
        report(failure, ImportOutcome::TooLarge, "Not enough memory to place pages.");
        return nullptr;
    }
    return runForDocument(requestFor(Job::PlacePages), *packed, failure);
}

ImportFailure ImportProgram::misbehave(int misdeed)
{
    Request request = requestFor(Job::Misbehave);
    request.misdeed = misdeed;
    ImportFailure failure;
    run(request, nullptr, &failure);
    return failure;
}

} // namespace vxr
