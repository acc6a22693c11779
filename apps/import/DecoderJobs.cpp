#include <apps/import/DecoderJobs.h>

#include <apps/import/BitmapFile.h>
#include <apps/import/Libraries.h>
#include <apps/import/Signatures.h>
#include <apps/import/pict/Pict.h>

namespace vxr::importing {

namespace {

void convertPICT(const JobInput& input, JobOutput& output)
{
    std::string pdf, error;
    if (!convertPictToPDF(input.bytes(), pdf, error))
        throw Refusal(error);
    output.writePayload(pdf);
}

} // namespace

bool DecoderJobs::takes(const Request&, std::span<const std::byte>) const { return true; }

bool DecoderJobs::load(const Request& request, std::span<const std::byte> start)
{
    const bool isBitmap = request.job == Job::MeasureBitmap || request.job == Job::DecodeBitmap;
    const std::string kind = isBitmap ? bitmapKind(start) : std::string();
    if (isLoadedFor(kind))
        return false;
    loadFor(kind);
    return true;
}

void DecoderJobs::run(const Request& request, const JobInput& input, JobOutput& output)
{
    if (request.job != Job::FileTypes && request.job != Job::Misbehave && input.bytes().empty())
        throw Refusal("The file is empty.");
    switch (request.job) {
    case Job::FileTypes:
        return listFileTypes(output);
    case Job::MeasureBitmap:
        return measureBitmap(BitmapFile(input.bytes()), output);
    case Job::DecodeBitmap: {
        BitmapFile file(input.bytes());
        return decodeBitmap(file, request, output);
    }
    case Job::MeasureDocument:
        return measureDocument(input, output);
    case Job::RenderPageArea:
        return renderPageArea(request, input, output);
    case Job::NormaliseDocument:
        return normaliseDocument(input, output);
    case Job::ConvertEPS:
        return convertEPS(input, output);
    case Job::ConvertPICT:
        return convertPICT(input, output);
    case Job::PlacePages:
        return placePages(input, output);
    case Job::Misbehave:
        return misbehave(Misdeed(request.misdeed), output);
    }
    throw Refusal("There is no such job.");
}

} // namespace vxr::importing
