#include <apps/import/PdfDocument.h>

#include <apps/import/DecoderJobs.h>

#include <qpdf/Buffer.hh>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFPageObjectHelper.hh>
#include <qpdf/QPDFWriter.hh>

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace vxr::importing {

namespace {

constexpr double mostUnits = 1e6;

bool isSame(const PageBox& a, const PageBox& b)
{
    return a.x == b.x && a.y == b.y && a.width == b.width && a.height == b.height;
}

void record(double (&target)[4], const std::optional<PageBox>& box)
{
    if (!box)
        return;
    const double values[] { box->x, box->y, box->width, box->height };
    std::ranges::copy(values, target);
}

} // namespace

std::shared_ptr<QPDF> openDocument(std::string_view pdf)
{
    auto document = QPDF::create();
    document->setSuppressWarnings(true);
    document->setImmediateCopyFrom(true);
    document->processMemoryFile("document", pdf.data(), pdf.size());
    if (document->isEncrypted())
        throw Refusal("The document is encrypted.");
    return document;
}

QPDFPageObjectHelper firstPage(QPDF& document)
{
    auto pages = QPDFPageDocumentHelper(document).getAllPages();
    if (pages.empty())
        throw Refusal("The document has no page.");
    return pages.front();
}

std::optional<PageBox> pageBox(QPDFPageObjectHelper& page, const char* key)
{
    const std::string name = key;
    auto box = name == "/MediaBox" ? page.getMediaBox()
        : name == "/CropBox"       ? page.getCropBox()
        : name == "/BleedBox"      ? page.getBleedBox()
        : name == "/TrimBox"       ? page.getTrimBox()
                                   : page.getArtBox();
    // Anything but four numbers gives zeros; corners come in order.
    const auto corners = box.getArrayAsRectangle();
    for (const double value : { corners.llx, corners.lly, corners.urx, corners.ury })
        if (!(std::abs(value) < mostUnits))
            return std::nullopt;
    const PageBox result { corners.llx, corners.lly, corners.urx - corners.llx, corners.ury - corners.lly };
    if (!(result.width > 0 && result.height > 0))
        return std::nullopt;
    return result;
}

PageBox mediaBox(QPDFPageObjectHelper& page)
{
    const auto box = pageBox(page, "/MediaBox");
    if (!box)
        throw Refusal("The page has no usable media box.");
    return *box;
}

int pageRotation(QPDFPageObjectHelper& page)
{
    auto rotation = page.getAttribute("/Rotate", false);
    if (!rotation.isNumber() || !std::isfinite(rotation.getNumericValue()))
        return 0;
    const double turns = std::round(std::fmod(rotation.getNumericValue(), 360) / 90);
    return ((int(turns) % 4 + 4) % 4) * 90;
}

PageBox sharedBox(const PageBox& first, const PageBox& second)
{
    const double left = std::max(first.x, second.x), bottom = std::max(first.y, second.y);
    const double right = std::min(first.x + first.width, second.x + second.width);
    const double top = std::min(first.y + first.height, second.y + second.height);
    return right > left && top > bottom ? PageBox { left, bottom, right - left, top - bottom } : first;
}

QPDFObjectHandle rectangleOf(const PageBox& box)
{
    auto array = QPDFObjectHandle::newArray();
    for (const double value : { box.x, box.y, box.x + box.width, box.y + box.height })
        array.appendItem(exactNumber(value));
    return array;
}

QPDFObjectHandle exactNumber(double value)
{
    return QPDFObjectHandle::newReal(fmt::format("{:.10f}", value));
}

std::string writtenDocument(QPDF& document, const std::string& leastVersion)
{
    QPDFWriter writer(document);
    writer.setOutputMemory();
    writer.setObjectStreamMode(qpdf_o_preserve);
    writer.setMinimumPDFVersion(leastVersion);
    writer.setDeterministicID(true);
    writer.write();
    const auto buffer = writer.getBufferSharedPointer();
    return { reinterpret_cast<const char*>(buffer->getBuffer()), buffer->getSize() };
}

std::string documentWithPlainBoxes(const JobInput& input)
{
    std::shared_ptr<QPDF> document;
    try {
        document = openDocument(input.text());
    } catch (const std::exception&) {
        return {}; // poppler opens some that are damaged
    }
    auto page = firstPage(*document);
    const PageBox media = mediaBox(page);
    const auto crop = pageBox(page, "/CropBox");
    if (pageRotation(page) == 0 && (!crop || isSame(sharedBox(media, *crop), media)))
        return {};
    page.getObjectHandle().replaceKey("/CropBox", rectangleOf(media));
    page.getObjectHandle().replaceKey("/Rotate", QPDFObjectHandle::newInteger(0));
    return writtenDocument(*document, document->getPDFVersion());
}

void measureDocument(const JobInput& input, JobOutput& output)
{
    const auto document = openDocument(input.text());
    auto page = firstPage(*document);
    DocumentRecord& result = output.report.document;
    const PageBox media = mediaBox(page);
    const PageBox crop = pageBox(page, "/CropBox").value_or(media);
    record(result.boxes[0], media);
    record(result.boxes[1], crop);
    record(result.boxes[2], pageBox(page, "/BleedBox").value_or(crop));
    record(result.boxes[3], pageBox(page, "/TrimBox").value_or(crop));
    record(result.boxes[4], pageBox(page, "/ArtBox").value_or(crop));
    result.pages = std::uint32_t(QPDFPageDocumentHelper(*document).getAllPages().size());
    result.rotation = pageRotation(page);
    document->getPDFVersion().copy(result.version, sizeof result.version - 1);
}

void normaliseDocument(const JobInput& input, JobOutput& output)
{
    const auto source = openDocument(input.text());
    auto page = firstPage(*source);
    const PageBox media = mediaBox(page);
    const PageBox box = sharedBox(media, pageBox(page, "/ArtBox").value_or(media));
    QPDFPageDocumentHelper(*source).flattenAnnotations(); // a form has none

    // A form, not the page's contents behind a matrix: patterns go with the form, but not with a matrix.
    auto form = page.getFormXObjectForPage(false);
    form.getDict().removeKey("/Matrix");
    form.getDict().replaceKey("/BBox", rectangleOf(box));
    QPDF target;
    target.emptyPDF();
    auto copy = target.copyForeignObject(form);
    auto result = QPDFObjectHandle::parse("<</Type/Page/Resources<</XObject<<>>>>>>");
    result.getKey("/Resources").getKey("/XObject").replaceKey("/Page", copy);
    result.replaceKey("/MediaBox", rectangleOf({ 0, 0, box.width, box.height }));
    if (copy.getDict().getKey("/Group").isDictionary())
        result.replaceKey("/Group", copy.getDict().getKey("/Group")); // the colours that the page blends in
    auto unit = page.getObjectHandle().getKey("/UserUnit");
    if (unit.isNumber())
        result.replaceKey("/UserUnit", exactNumber(unit.getNumericValue()));
    result.replaceKey("/Contents",
        target.newStream(fmt::format("q 1 0 0 1 {:.10f} {:.10f} cm /Page Do Q", -box.x, -box.y)));
    auto layers = source->getRoot().getKey("/OCProperties"); // what is hidden stays hidden
    if (layers.isDictionary())
        target.getRoot().replaceKey("/OCProperties",
            target.copyForeignObject(layers.isIndirect() ? layers : source->makeIndirectObject(layers)));
    QPDFPageDocumentHelper(target).addPage(target.makeIndirectObject(result), false);
    output.writePayload(writtenDocument(target, std::max(source->getPDFVersion(), std::string("1.5"))));
}

} // namespace vxr::importing
