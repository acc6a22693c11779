#include <vxr/platform/base/Data.h>
#include <vxr/platform/graphics/Context.h>
#include <vxr/platform/graphics/Image.h>
#include <vxr/platform/imaging/Importer.h>
#include <vxr/platform/pictures/ImportedImages.h>
#include <vxr/platform/pictures/PDFDocument.h>

#include <algorithm>
#include <cmath>

namespace vxr {

namespace {

Rect rectOf(const PageBox& box)
{
    return { { static_cast<float>(box.x), static_cast<float>(box.y) },
        { static_cast<float>(box.width), static_cast<float>(box.height) } };
}

void tell(std::string* reason, const ImportFailure& failure)
{
    if (reason)
        *reason = failure.message;
}

} // namespace

PDFDocument::~PDFDocument() = default;

std::shared_ptr<const PDFDocument> PDFDocument::createWithData(
    std::shared_ptr<const Data> data, std::string* reason)
{
    auto file = data ? MemoryFile::createWithCopy(data->bytes()) : nullptr;
    ImportFailure failure;
    const auto info = file ? Importer::shared().measureDocument(*file, &failure) : std::nullopt;
    if (!info || info->pages < 1) {
        tell(reason, failure);
        return nullptr;
    }
    std::shared_ptr<PDFDocument> document(new PDFDocument);
    document->mData = std::move(data);
    document->mFile = std::move(file);
    document->mPages = static_cast<int>(info->pages);
    document->mRotation = info->rotation;
    int index = 0;
    for (const PageBox& box : { info->media, info->crop, info->bleed, info->trim, info->art })
        document->mBoxes[index++] = rectOf(box);
    return document;
}

std::shared_ptr<const PDFDocument> PDFDocument::createWithDrawing(
    const Rect& media, const Rect& art, std::function<void(Context&)> draw)
{
    std::shared_ptr<PDFDocument> document(new PDFDocument);
    document->mDraw = std::move(draw);
    for (Rect& box : document->mBoxes)
        box = media;
    document->mBoxes[static_cast<int>(PDFBox::Art)] = art;
    return document;
}

bool PDFDocument::drawAsVectors(Context& context, const Rect& rect) const
{
    if (!mDraw)
        return context.placePage(rect, mData, [this] { return overview(); });
    const Rect media = box(PDFBox::Media);
    StateSaver saved(context);
    context.translate(rect.minX(), rect.minY());
    context.scale(rect.size.width / media.size.width, rect.size.height / media.size.height);
    context.translate(-media.minX(), -media.minY());
    mDraw(context);
    return true;
}

std::shared_ptr<const Image> PDFDocument::renderArea(
    Size scale, int x, int y, int width, int height, Size offset, std::string* reason) const
{
    if (!mFile)
        return nullptr;
    const PageAreaRequest request { scale.width, scale.height, x, y, width, height, offset.width,
        offset.height };
    ImportFailure failure;
    auto image = imageOfImportedBitmap(Importer::shared().renderPageArea(*mFile, request, &failure));
    if (!image)
        tell(reason, failure);
    return image;
}

std::shared_ptr<const Image> PDFDocument::overview(std::string* reason) const
{
    constexpr double pixels = 1 << 20, finest = 4;
    const Size media = box(PDFBox::Media).size;
    const double area = static_cast<double>(media.width) * media.height;
    if (!(area > 0) || !std::isfinite(area))
        return nullptr;
    const double scale = std::min(std::sqrt(pixels / area), finest);
    const int width = std::max(1, static_cast<int>(std::lround(media.width * scale)));
    const int height = std::max(1, static_cast<int>(std::lround(media.height * scale)));
    return renderArea({ static_cast<float>(width) / media.width, static_cast<float>(height) / media.height },
        0, 0, width, height, {}, reason);
}

std::shared_ptr<const Data> PDFDocument::normalisedData(std::string* reason) const
{
    ImportFailure failure;
    const auto normalised = mFile ? Importer::shared().normalisedDocument(*mFile, &failure) : nullptr;
    if (!normalised)
        tell(reason, failure);
    return normalised ? Data::dataWithBytes(normalised->bytes()) : nullptr;
}

} // namespace vxr
