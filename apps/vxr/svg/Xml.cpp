#include "Xml.h"

#include "Scanner.h"

#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <exception>
#include <memory>
#include <unordered_map>

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

/// Builds the tree from the parser's events. Exceptions must not pass through the C parser: the first
/// one stops it and is rethrown afterwards.
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
        for (int i = 0; i < count; ++i) {
            const xmlChar** entry = attributes + 5 * i;
            countText(static_cast<std::size_t>(entry[4] - entry[3]));
            addAttribute(element, entry);
        }

        // Only the last child of an open element can be open, so appending never moves an open element.
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
        countText(text.size());
        if (!mOpen.empty() && mOpen.back()->name == "style")
            mOpen.back()->text.append(text);
    }

    /// Drawing programs export plain literals. Other entities could load files or expand without bound.
    void entity(std::string_view name, int type, std::string_view content)
    {
        if (type != XML_INTERNAL_GENERAL_ENTITY || content.find('<') != std::string_view::npos)
            fail("entity '" + std::string(name) + "' is no plain text; other kinds are not accepted");
        if (mEntities.size() >= entityLimit)
            fail("there are more than " + std::to_string(entityLimit) + " entities");
        Entity made { content.size(), 1 };
        for (std::size_t at = content.find('&'); at != std::string_view::npos;
             at = content.find('&', at + 1)) {
            const std::string_view reference = content.substr(at + 1, content.find(';', at) - at - 1);
            const auto found = mEntities.find(std::string(reference));
            if (found == mEntities.end())
                continue; // a predefined one, a character, or an error that the parser reports
            made.length += found->second.length;
            made.depth = std::max(made.depth, found->second.depth + 1);
        }
        if (made.depth > 2)
            fail("entity '" + std::string(name) + "' is nested more than 2 deep");
        if (made.length > entityLengthLimit)
            fail("entity '" + std::string(name) + "' is longer than " + std::to_string(entityLengthLimit)
                + " bytes");
        mEntities.emplace(name, made);
    }

    void declaration() { fail("a DOCTYPE may declare entities only"); }

    void report(const xmlError& error)
    {
        if (error.level == XML_ERR_FATAL && !mFailure) {
            throw DocumentError(error.line, messageFor(error));
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

    /// Only entities can make the text longer than the document.
    void countText(std::size_t size)
    {
        mTextSize += size;
        if (mTextSize > mLimits.bytes)
            fail("the text grows to more than " + std::to_string(mLimits.bytes)
                + " bytes through its entities");
    }

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

    static std::string messageFor(const xmlError& error)
    {
        std::string message = error.message ? error.message : "not well-formed";
        // The parser's own limits, in its own words.
        if (message.find("AttValue length too long") != std::string::npos)
            return "an attribute is longer than 10 million bytes";
        if (message.find("Huge input lookup") != std::string::npos
            || message.find("too big") != std::string::npos)
            return "a piece of text is longer than 10 million bytes";
        while (!message.empty() && isSpace(message.back()))
            message.pop_back();
        return message;
    }

    struct Entity {
        std::size_t length; ///< bytes, references in it expanded
        int depth; ///< 1 without references in it
    };
    static constexpr std::size_t entityLimit = 100;
    static constexpr std::size_t entityLengthLimit = 4096;

    xmlParserCtxtPtr mContext;
    const XmlLimits& mLimits;
    std::unordered_map<std::string, Entity> mEntities;
    std::size_t mTextSize = 0;
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
    // Entities are stored in the parser's own tables.
    handler.startDocument = xmlSAX2StartDocument;
    handler.internalSubset = xmlSAX2InternalSubset;
    handler.getEntity = xmlSAX2GetEntity;
    handler.entityDecl = [](void* user, const xmlChar* name, int type, const xmlChar* publicId,
                             const xmlChar* systemId, xmlChar* content) {
        TreeBuilder::guarded(user, [&](TreeBuilder& b) {
            b.entity(view(name), type, view(content));
            xmlSAX2EntityDecl(user, name, type, publicId, systemId, content);
        });
    };
    static constexpr auto refused
        = [](void* user) { TreeBuilder::guarded(user, [](TreeBuilder& b) { b.declaration(); }); };
    handler.attributeDecl
        = [](void* user, const xmlChar*, const xmlChar*, int, int, const xmlChar*, xmlEnumerationPtr values) {
              xmlFreeEnumeration(values);
              refused(user);
          };
    handler.elementDecl = [](void* user, const xmlChar*, int, xmlElementContentPtr) { refused(user); };
    handler.notationDecl = [](void* user, const xmlChar*, const xmlChar*, const xmlChar*) { refused(user); };
    handler.unparsedEntityDecl
        = [](void* user, const xmlChar*, const xmlChar*, const xmlChar*, const xmlChar*) { refused(user); };
    handler.serror = [](void* user, xmlErrorPtr error) {
        TreeBuilder::guarded(user, [&](TreeBuilder& b) { b.report(*error); });
    };
    return handler;
}

/// The parser compares every attribute of an element with all before it, which takes minutes for an
/// element with a million of them, so they are counted before parsing.
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

/// Only supersets of ASCII are accepted, so that the count above sees the same text as the parser.
void checkEncoding(std::string_view text)
{
    if (text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF"))
        throw DocumentError(1, "the text is in UTF-16; save the drawing in UTF-8");
    if (text.find('\0') != std::string_view::npos)
        throw DocumentError(1, "this is no drawing: the file has bytes that no text has");
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

    // The text is fed in pieces: the parser rejects buffers larger than ten million bytes.
    std::string_view rest = text;
    const auto read = [](void* from, char* buffer, int size) {
        std::string_view& unread = *static_cast<std::string_view*>(from);
        const std::size_t count = std::min(unread.size(), static_cast<std::size_t>(size));
        std::memcpy(buffer, unread.data(), count);
        unread.remove_prefix(count);
        return static_cast<int>(count);
    };
    xmlSAXHandler handler = makeHandler();
    const std::unique_ptr<xmlParserCtxt, decltype(&xmlFreeParserCtxt)> context(
        xmlCreateIOParserCtxt(&handler, nullptr, read, nullptr, &rest, XML_CHAR_ENCODING_NONE),
        xmlFreeParserCtxt);
    if (!context)
        throw std::bad_alloc();
    // Entities are expanded, nothing is loaded, and the parser's own limits stay on.
    xmlCtxtUseOptions(context.get(), XML_PARSE_NOENT | XML_PARSE_NONET | XML_PARSE_NOWARNING);
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
