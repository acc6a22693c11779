#include <apps/import/DecoderJobs.h>
#include <apps/import/JpegProfiles.h>
#include <apps/import/PdfDocument.h>

#include <vxr/platform/imaging/PageMark.h>

#include <qpdf/Buffer.hh>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFMatrix.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFPageObjectHelper.hh>

#include <algorithm>
#include <cstring>
#include <map>
#include <set>

namespace vxr::importing {

namespace {

constexpr long long mostMarkBytes = 1000;

struct Place {
    std::string mark;
    std::shared_ptr<QPDF> document;
};

/// A document written by the library, and the pages that go into it.
struct Placement {
    std::string_view written;
    std::vector<Place> places;
};

Placement readPlacement(const JobInput& input)
{
    const auto bytes = input.bytes();
    const auto part = [&](std::uint64_t offset, std::uint64_t size) {
        if (offset > bytes.size() || size > bytes.size() - offset)
            throw Refusal("The pages to place lie outside of what came.");
        return input.text().substr(offset, size);
    };
    PlaceHeader header;
    if (bytes.size() < sizeof header)
        throw Refusal("There is no document to place pages in.");
    std::memcpy(static_cast<void*>(&header), bytes.data(), sizeof header);
    const std::string_view table = part(sizeof header, std::uint64_t { header.count } * sizeof(PlaceRecord));
    Placement placement { part(header.writtenOffset, header.writtenBytes), {} };
    // One object for each document: its pages share fonts.
    std::map<std::uint64_t, std::shared_ptr<QPDF>> documents;
    for (std::uint32_t i = 0; i < header.count; ++i) {
        PlaceRecord record;
        std::memcpy(&record, table.data() + i * sizeof record, sizeof record);
        auto& document = documents[record.offset];
        if (!document) {
            document = openDocument(part(record.offset, record.bytes));
            QPDFPageDocumentHelper(*document).flattenAnnotations(); // a form has none
        }
        placement.places.push_back({ { record.mark, ::strnlen(record.mark, sizeof record.mark) }, document });
    }
    return placement;
}

/// Page 1 as a form that fills the unit square.
QPDFObjectHandle unitForm(QPDF& document)
{
    auto page = firstPage(document);
    auto form = page.getFormXObjectForPage(false); // the rotation is not applied
    const PageBox box = mediaBox(page);
    auto matrix = QPDFObjectHandle::newArray();
    for (const double value :
        { 1 / box.width, 0., 0., 1 / box.height, -box.x / box.width, -box.y / box.height })
        matrix.appendItem(exactNumber(value));
    QPDFObjectHandle dictionary = form.getDict();
    dictionary.replaceKey("/Matrix", matrix);
    dictionary.replaceKey("/BBox", rectangleOf(box));
    // Alpha and blend modes then apply to the page as a whole.
    if (!dictionary.getKey("/Group").isDictionary())
        dictionary.replaceKey("/Group", QPDFObjectHandle::parse("<</S/Transparency>>"));
    return form;
}

/// Layers that are hidden in a source would show: their states lie outside of its pages.
void keepLayers(QPDF& target, QPDF& source)
{
    auto from = source.getRoot().getKey("/OCProperties");
    if (!from.isDictionary() || !from.getKey("/OCGs").isArray())
        return;
    auto root = target.getRoot();
    if (!root.hasKey("/OCProperties"))
        root.replaceKey("/OCProperties", QPDFObjectHandle::parse("<</OCGs[]/D<</OFF[]>>>>"));
    auto to = root.getKey("/OCProperties");
    auto states = from.getKey("/D");
    const bool isOffAtFirst = states.isDictionary() && states.getKey("/BaseState").isNameAndEquals("/OFF");
    const auto listed = [&](const char* key) {
        std::set<QPDFObjGen> layers;
        if (states.isDictionary() && states.getKey(key).isArray())
            for (const auto& layer : states.getKey(key).getArrayAsVector())
                layers.insert(layer.getObjGen());
        return layers;
    };
    const auto off = listed("/OFF"), on = listed("/ON");
    for (auto layer : from.getKey("/OCGs").getArrayAsVector()) {
        if (!layer.isIndirect() || !layer.isDictionary())
            continue;
        auto copy = target.copyForeignObject(layer);
        to.getKey("/OCGs").appendItem(copy);
        if (off.contains(layer.getObjGen()) || (isOffAtFirst && !on.contains(layer.getObjGen())))
            to.getKey("/D").getKey("/OFF").appendItem(copy);
    }
}

/// Pages and groups are written to blend in RGB, which takes spot and process colours away. Without that they
/// blend in the output's colours. What stands behind a luminosity mask needs its own.
void freeGroupColors(QPDF& document)
{
    const auto objects = document.getAllObjects();
    std::set<QPDFObjGen> masks;
    for (auto object : objects)
        if (object.isDictionary() && object.getKey("/S").isNameAndEquals("/Luminosity"))
            masks.insert(object.getKey("/G").getObjGen());
    for (auto object : objects) {
        auto dictionary = object.isStream() ? object.getDict() : object;
        if (!dictionary.isDictionary() || masks.contains(object.getObjGen()))
            continue;
        auto group = dictionary.getKey("/Group");
        if (group.isDictionary() && group.getKey("/CS").isNameAndEquals("/DeviceRGB"))
            group.removeKey("/CS");
    }
}

struct MarkedObject {
    QPDFObjectHandle object;
    std::shared_ptr<QPDF> document;
};

std::vector<MarkedObject> findMarks(QPDF& written, const std::vector<Place>& places)
{
    std::map<std::string, std::shared_ptr<QPDF>> byBytes;
    for (const Place& place : places)
        byBytes.emplace(pageMarkJPEG(place.mark), place.document);
    std::vector<MarkedObject> marks;
    for (auto object : written.getAllObjects()) {
        if (!object.isStream() || !object.getDict().getKey("/Filter").isNameAndEquals("/DCTDecode"))
            continue;
        auto length = object.getDict().getKey("/Length");
        if (!length.isInteger() || length.getIntValue() > mostMarkBytes)
            continue;
        const auto raw = object.getRawStreamData();
        const auto found = byBytes.find({ reinterpret_cast<const char*>(raw->getBuffer()), raw->getSize() });
        if (found != byBytes.end())
            marks.push_back({ object, found->second });
    }
    return marks;
}

} // namespace

void placePages(const JobInput& input, JobOutput& output)
{
    const Placement placement = readPlacement(input);
    const auto written = openDocument(placement.written);
    // All marks are found before anything foreign comes in.
    const auto marks = findMarks(*written, placement.places);
    freeGroupColors(*written);
    honourJPEGProfiles(*written);
    std::string version = written->getPDFVersion();
    std::set<QPDF*> used;
    for (MarkedObject mark : marks) {
        auto form = written->copyForeignObject(unitForm(*mark.document));
        QPDFObjectHandle dictionary = form.getDict();
        mark.object.replaceStreamData(
            form.getRawStreamData(), dictionary.getKey("/Filter"), dictionary.getKey("/DecodeParms"));
        auto length = mark.object.getDict().getKey("/Length");
        mark.object.replaceDict(dictionary);
        mark.object.getDict().replaceKey("/Length", length);
        if (used.insert(mark.document.get()).second) {
            keepLayers(*written, *mark.document);
            version = std::max(version, mark.document->getPDFVersion());
        }
    }
    output.writePayload(writtenDocument(*written, version));
}

} // namespace vxr::importing
