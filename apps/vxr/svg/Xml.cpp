#include "Xml.h"

#include "Scanner.h"

#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>

#include <algorithm>
#include <climits>
#include <exception>
#include <memory>

namespace app::svg {

const std::string* XmlElement::attribute(std::string_view attributeName) const
{
    for (const XmlAttribute& entry : attributes) {
        if (entry.name == attributeName)
            return &entry.value;
    }
    return nullptr;
}

namespace {

constexpr std::string_view svgNamespace = "http://www.w3.org/2000/svg";
constexpr std::string_view xlinkNamespace = "http://www.w3.org/1999/xlink";
constexpr std::string_view xmlNamespace = "http://www.w3.org/XML/1998/namespace";

std::string_view view(const xmlChar* text)
{
    return text ? std::string_view(reinterpret_cast<const char*>(text)) : std::string_view();
}

/// Builds the tree from the parser's events. Its functions are called through C code and let no exception
/// out: the first one stops the parser and is thrown again after it.
class TreeBuilder {
public:
    TreeBuilder(xmlParserCtxtPtr context, const XmlLimits& limits)
        : mContext(context)
        , mLimits(limits)
    {
    }

    template <typename Step> static void guarded(void* user, Step step)
    {
        TreeBuilder& builder = *static_cast<TreeBuilder*>(static_cast<xmlParserCtxtPtr>(user)->_private);
        if (builder.mFailure)
            return;
        try {
            step(builder);
        } catch (...) {
            builder.mFailure = std::current_exception();
            xmlStopParser(builder.mContext);
        }
    }

    void startElement(std::string_view name, std::string_view space, int count, const xmlChar** attributes)
    {
        if (static_cast<int>(mOpen.size()) >= mLimits.depth)
            fail("elements are nested more than " + std::to_string(mLimits.depth) + " deep");
        if (++mElements > mLimits.elements)
            fail("there are more than " + std::to_string(mLimits.elements) + " elements");
        if (count > mLimits.attributes)
            fail("an element has more than " + std::to_string(mLimits.attributes) + " attributes");
        XmlElement element;
        element.line = line();
        if (space.empty() || space == svgNamespace)
            element.name = name;
        if (mOpen.empty() && element.name != "svg")
            fail("the root element is '" + std::string(name) + "', not an SVG 'svg' element");
        for (int i = 0; i < count; ++i)
            addAttribute(element, attributes + 5 * i);

        // Only the last child of each open element is open itself, so growing a list moves none of them.
        if (mOpen.empty()) {
            mRoot = std::move(element);
            mOpen.push_back(&mRoot);
        } else {
            mOpen.back()->children.push_back(std::move(element));
            mOpen.push_back(&mOpen.back()->children.back());
        }
    }

    void endElement() { mOpen.pop_back(); }

    void characters(std::string_view text)
    {
        if (!mOpen.empty() && mOpen.back()->name == "style")
            mOpen.back()->text.append(text);
    }

    /// The document type's name has been read; what follows is either its end or an internal subset.
    void documentType()
    {
        if (mContext->input && mContext->input->cur && *mContext->input->cur == '[')
            fail("a DOCTYPE with an internal subset is not accepted");
    }

    void declaration() { fail("declarations in a DOCTYPE are not accepted"); }

    void report(const xmlError& error)
    {
        if (error.level == XML_ERR_FATAL && !mFailure) {
            std::string message = error.message ? error.message : "not well-formed";
            while (!message.empty() && isSpace(message.back()))
                message.pop_back();
            throw DocumentError(error.line, message);
        }
    }

    XmlElement finish()
    {
        if (mFailure)
            std::rethrow_exception(mFailure);
        if (mRoot.name.empty())
            throw DocumentError(0, "the document has no root element");
        return std::move(mRoot);
    }

private:
    int line() const { return mContext->input ? mContext->input->line : 0; }

    [[noreturn]] void fail(const std::string& message) const { throw DocumentError(line(), message); }

    static void addAttribute(XmlElement& element, const xmlChar** entry)
    {
        // Local name, prefix, namespace, begin and end of the value.
        const std::string_view space = view(entry[2]);
        std::string name(view(entry[0]));
        if (space == xlinkNamespace)
            name.insert(0, "xlink:");
        else if (space == xmlNamespace)
            name.insert(0, "xml:");
        else if (!space.empty() && space != svgNamespace)
            return;
        element.attributes.push_back({ std::move(name),
            std::string(
                reinterpret_cast<const char*>(entry[3]), static_cast<std::size_t>(entry[4] - entry[3])) });
    }

    xmlParserCtxtPtr mContext;
    const XmlLimits& mLimits;
    XmlElement mRoot;
    std::vector<XmlElement*> mOpen;
    int mElements = 0;
    std::exception_ptr mFailure;
};

xmlSAXHandler makeHandler()
{
    xmlSAXHandler handler {};
    handler.initialized = XML_SAX2_MAGIC;
    handler.startElementNs = [](void* user, const xmlChar* name, const xmlChar*, const xmlChar* space, int,
                                 const xmlChar**, int count, int, const xmlChar** attributes) {
        TreeBuilder::guarded(
            user, [&](TreeBuilder& b) { b.startElement(view(name), view(space), count, attributes); });
    };
    handler.endElementNs = [](void* user, const xmlChar*, const xmlChar*, const xmlChar*) {
        TreeBuilder::guarded(user, [](TreeBuilder& b) { b.endElement(); });
    };
    handler.characters = [](void* user, const xmlChar* text, int length) {
        TreeBuilder::guarded(user, [&](TreeBuilder& b) {
            b.characters({ reinterpret_cast<const char*>(text), static_cast<std::size_t>(length) });
        });
    };
    handler.cdataBlock = handler.characters;
    handler.internalSubset = [](void* user, const xmlChar*, const xmlChar*, const xmlChar*) {
        TreeBuilder::guarded(user, [](TreeBuilder& b) { b.documentType(); });
    };
    handler.entityDecl = [](void* user, const xmlChar*, int, const xmlChar*, const xmlChar*, xmlChar*) {
        TreeBuilder::guarded(user, [](TreeBuilder& b) { b.declaration(); });
    };
    handler.serror = [](void* user, xmlErrorPtr error) {
        TreeBuilder::guarded(user, [&](TreeBuilder& b) { b.report(*error); });
    };
    return handler;
}

/// The parser compares every attribute of an element with all before it, which takes it minutes for an
/// element with a million of them. So they are counted before it gets to see the text.
void checkAttributeCounts(std::string_view text, int limit)
{
    int line = 1;
    std::size_t at = 0;
    const auto skipPast = [&](std::string_view end) {
        const std::size_t found = text.find(end, at);
        const std::size_t stop = found == std::string_view::npos ? text.size() : found + end.size();
        line += static_cast<int>(std::count(text.begin() + at, text.begin() + stop, '\n'));
        at = stop;
    };
    while (at < text.size()) {
        if (text[at] != '<') {
            line += text[at++] == '\n';
        } else if (text.substr(at, 4) == "<!--") {
            skipPast("-->");
        } else if (text.substr(at, 9) == "<![CDATA[") {
            skipPast("]]>");
        } else if (text.substr(at, 2) == "<?") {
            skipPast("?>");
        } else {
            int count = 0;
            for (++at; at < text.size() && text[at] != '>' && text[at] != '<';) {
                const char c = text[at++];
                line += c == '\n';
                if (c != '"' && c != '\'')
                    continue;
                skipPast({ &c, 1 });
                if (++count > limit)
                    throw DocumentError(
                        line, "an element has more than " + std::to_string(limit) + " attributes");
            }
        }
    }
}

/// Only encodings that agree with ASCII get to the parser, so that the count above reads what it reads.
void checkEncoding(std::string_view text)
{
    if (text.find('\0') != std::string_view::npos)
        throw DocumentError(1, "the text has NUL bytes; UTF-8 is expected");
    if (text.starts_with("\xEF\xBB\xBF"))
        text.remove_prefix(3);
    if (!text.starts_with("<?xml"))
        return;
    const std::string_view declaration = text.substr(0, text.find("?>"));
    std::size_t at = declaration.find("encoding");
    if (at == std::string_view::npos)
        return;
    Scanner in(declaration.substr(at + 8));
    in.skipSpace();
    in.consume('=');
    in.skipSpace();
    in.advance();
    const std::string_view name = in.word();
    for (std::string_view known : { "utf-8", "us-ascii", "ascii", "iso-8859-", "windows-125" }) {
        if (equalsIgnoringCase(name.substr(0, known.size()), known))
            return;
    }
    throw DocumentError(1, "the encoding '" + std::string(name) + "' is not supported");
}

xmlParserInputPtr refuseToLoad(const char*, const char*, xmlParserCtxtPtr) { return nullptr; }

} // namespace

XmlElement parseXml(std::string_view text, const XmlLimits& limits)
{
    if (text.size() > std::min<std::size_t>(limits.bytes, INT_MAX))
        throw DocumentError(0, "the file has more than " + std::to_string(limits.bytes) + " bytes");
    if (trimmed(text).empty())
        throw DocumentError(0, "the file is empty");
    checkEncoding(text);
    checkAttributeCounts(text, limits.attributes);

    static const bool prepared = [] {
        xmlInitParser();
        xmlSetExternalEntityLoader(refuseToLoad);
        return true;
    }();
    static_cast<void>(prepared);

    const std::unique_ptr<xmlParserCtxt, decltype(&xmlFreeParserCtxt)> context(
        xmlCreateMemoryParserCtxt(text.data(), static_cast<int>(text.size())), xmlFreeParserCtxt);
    if (!context)
        throw std::bad_alloc();
    // No entity substitution, no DTD loading, no XInclude, and the parser's own limits stay on.
    xmlCtxtUseOptions(context.get(), XML_PARSE_NONET | XML_PARSE_NOWARNING);
    *context->sax = makeHandler();
    TreeBuilder builder(context.get(), limits);
    context->_private = &builder;
    xmlParseDocument(context.get());
    if (context->myDoc) {
        xmlFreeDoc(context->myDoc);
        context->myDoc = nullptr;
    }
    return builder.finish();
}

} // namespace app::svg
