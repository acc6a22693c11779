#include <vxr/host/archiving/VXAXMLDocument.h>

#include <vxr/host/archiving/XMLTree.h>

#include <fmt/format.h>
#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>

#include <algorithm>
#include <limits>

namespace vxr {

VXAXMLError::VXAXMLError(long line, const std::string& description)
    : InvalidArgumentException(line > 0 ? fmt::format("line {}: {}", line, description) : description)
    , mLine(line)
{
}

VXAXMLError::~VXAXMLError() = default;

namespace {

xmlParserInput* refuseExternalEntity(const char*, const char*, xmlParserCtxt*) { return nullptr; }

/// Counts what the parser meets and stops it at the first thing that a document may not have. The handlers
/// find it in the parser context.
class ParseGuard {
public:
    explicit ParseGuard(const VXAXMLLimits& limits)
        : mLimits(limits)
    {
    }

    void install(xmlParserCtxt& context)
    {
        context._private = this;
        xmlSAXHandler& sax = *context.sax;
        sax.serror = &ParseGuard::onError;
        sax.error = nullptr;
        sax.warning = nullptr;
        sax.fatalError = nullptr;
        sax.internalSubset = &ParseGuard::onDocumentType;
        sax.startElementNs = &ParseGuard::onElement;
        sax.endElementNs = &ParseGuard::onElementEnd;
        sax.characters = &ParseGuard::onCharacters;
        sax.ignorableWhitespace = &ParseGuard::onCharacters;
        sax.cdataBlock = &ParseGuard::onCharacters;
        sax.comment = nullptr;
        sax.processingInstruction = nullptr;
    }

    bool isRefused() const { return !mReason.empty(); }
    void raise() const { throw VXAXMLError(mLine, mReason); }

private:
    static ParseGuard& of(void* context)
    {
        return *static_cast<ParseGuard*>(static_cast<xmlParserCtxt*>(context)->_private);
    }

    void refuse(xmlParserCtxt* context, std::string reason)
    {
        if (isRefused())
            return;
        mReason = std::move(reason);
        mLine = context->input ? context->input->line : 0;
        xmlStopParser(context);
    }

    static void onError(void* context, xmlError* error)
    {
        ParseGuard& guard = of(context);
        if (guard.isRefused() || error->level < XML_ERR_ERROR)
            return;
        guard.mLine = error->line;
        guard.mReason = error->message ? error->message : "not well-formed";
        while (!guard.mReason.empty() && guard.mReason.back() == '\n')
            guard.mReason.pop_back();
    }

    static void onDocumentType(void* context, const xmlChar*, const xmlChar*, const xmlChar*)
    {
        of(context).refuse(static_cast<xmlParserCtxt*>(context), "a document type is not allowed");
    }

    static void onElement(void* context, const xmlChar* name, const xmlChar* prefix, const xmlChar* uri,
        int namespaceCount, const xmlChar** namespaces, int attributeCount, int defaultCount,
        const xmlChar** attributes)
    {
        ParseGuard& guard = of(context);
        auto* const parser = static_cast<xmlParserCtxt*>(context);
        guard.mText = 0;
        if (++guard.mElements > guard.mLimits.elements)
            return guard.refuse(parser, fmt::format("more than {} elements", guard.mLimits.elements));
        if (std::size_t(attributeCount) + std::size_t(namespaceCount) > guard.mLimits.attributesOfOneElement)
            return guard.refuse(parser,
                fmt::format("an element has more than {} attributes", guard.mLimits.attributesOfOneElement));
        if (++guard.mDepth > guard.mLimits.depth)
            return guard.refuse(
                parser, fmt::format("elements are nested more than {} deep", guard.mLimits.depth));
        xmlSAX2StartElementNs(
            context, name, prefix, uri, namespaceCount, namespaces, attributeCount, defaultCount, attributes);
        if (parser->node && parser->input)
            setLine(parser->node, parser->input->line);
    }

    static void onElementEnd(void* context, const xmlChar* name, const xmlChar* prefix, const xmlChar* uri)
    {
        ParseGuard& guard = of(context);
        --guard.mDepth;
        guard.mText = 0;
        xmlSAX2EndElementNs(context, name, prefix, uri);
    }

    static void onCharacters(void* context, const xmlChar* text, int length)
    {
        ParseGuard& guard = of(context);
        guard.mText += std::size_t(length);
        if (guard.mText > guard.mLimits.textOfOneElement)
            return guard.refuse(static_cast<xmlParserCtxt*>(context),
                fmt::format("an element has more than {} bytes of text", guard.mLimits.textOfOneElement));
        xmlSAX2Characters(context, text, length);
    }

    const VXAXMLLimits& mLimits;
    std::size_t mElements = 0;
    std::size_t mDepth = 0;
    std::size_t mText = 0;
    long mLine = 0;
    std::string mReason;
};

struct ContextDeleter {
    void operator()(xmlParserCtxt* context) const
    {
        xmlFreeDoc(context->myDoc);
        xmlFreeParserCtxt(context);
    }
};

} // namespace

std::unique_ptr<VXAXMLDocument> VXAXMLDocument::parse(
    std::span<const std::byte> text, const VXAXMLLimits& limits)
{
    [[maybe_unused]] static const bool once = (xmlInitParser(), true);
    if (text.size() > std::min(limits.bytes, std::size_t(std::numeric_limits<int>::max())))
        throw VXAXMLError(0, fmt::format("more than {} bytes", limits.bytes));
    const std::unique_ptr<xmlParserCtxt, ContextDeleter> context(xmlNewParserCtxt());
    if (!context)
        throw std::bad_alloc();
    ParseGuard guard(limits);
    guard.install(*context);
    // No entities, no document types and no network: nothing can ask for another file. The loader is set all
    // the same, for the length of the call, and put back since the host may have one of its own.
    const auto loader = xmlGetExternalEntityLoader();
    xmlSetExternalEntityLoader(refuseExternalEntity);
    xmlDoc* const document = xmlCtxtReadMemory(context.get(), reinterpret_cast<const char*>(text.data()),
        int(text.size()), nullptr, nullptr, XML_PARSE_NONET | XML_PARSE_NOBLANKS);
    xmlSetExternalEntityLoader(loader);
    std::unique_ptr<VXAXMLDocument> result;
    if (document)
        result.reset(new VXAXMLDocument(document));
    // A parser that was stopped still calls the document well-formed.
    if (guard.isRefused())
        guard.raise();
    if (!result || !result->root())
        throw VXAXMLError(0, "not an XML document");
    return result;
}

VXAXMLDocument::VXAXMLDocument(const VXAXMLNamespace& ns, const char* rootName)
    : mDocument(xmlNewDoc(xmlText("1.0")))
{
    // Names that stand in a document thousands of times are held once.
    mDocument->dict = xmlDictCreate();
    xmlNode* const root = xmlNewDocNode(mDocument, nullptr, xmlText(rootName), nullptr);
    xmlDocSetRootElement(mDocument, root);
    for (const VXAXMLNamespace* declared : { &VelloraNamespace, &VXANamespace })
        xmlNewNs(root, xmlText(declared->uri), xmlText(declared->prefix));
    xmlNs* own = xmlSearchNsByHref(mDocument, root, xmlText(ns.uri));
    if (!own)
        own = xmlNewNs(root, xmlText(ns.uri), xmlText(ns.prefix));
    xmlSetNs(root, own);
}

VXAXMLDocument::~VXAXMLDocument() { xmlFreeDoc(mDocument); }

VXAXMLNode* VXAXMLDocument::root() const { return xmlDocGetRootElement(mDocument); }

namespace {

constexpr const char* declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

} // namespace

std::string VXAXMLDocument::serialize() const
{
    std::string out = declaration;
    appendText(out, root(), 0);
    return out;
}

std::string VXAXMLDocument::serializeWithChildren(
    VXAXMLNode* parent, const std::function<bool(VXAXMLNode*)>& appendNext)
{
    for (const xmlNode* at = parent; at && at->type == XML_ELEMENT_NODE; at = at->parent)
        setState(at, NodeState::Written);
    const TextFiller filler { parent, [&](std::string& out, int depth) {
                                 bool isEmpty = true;
                                 while (appendNext(parent)) {
                                     while (xmlNode* const child = parent->children) {
                                         out += isEmpty ? ">\n" : "";
                                         isEmpty = false;
                                         appendText(out, child, depth + 1);
                                         xmlUnlinkNode(child);
                                         xmlFreeNode(child);
                                     }
                                 }
                                 return !isEmpty;
                             } };
    std::string out = declaration;
    appendText(out, root(), 0, &filler);
    return out;
}

} // namespace vxr
