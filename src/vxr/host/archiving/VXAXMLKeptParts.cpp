#include <vxr/host/archiving/VXAXMLKeptParts.h>

#include <vxr/host/archiving/XMLTree.h>

#include <algorithm>
#include <new>

namespace vxr {

namespace {

std::string_view uriOf(const xmlNode* node)
{
    return node->ns && node->ns->href ? plainText(node->ns->href) : "";
}

bool isLeft(const xmlAttr* attribute) { return stateOf(attribute) == NodeState::Untouched; }

bool isLeft(const xmlNode* child)
{
    return child->type == XML_ELEMENT_NODE
        && (stateOf(child) == NodeState::Untouched || stateOf(child) == NodeState::Unreadable);
}

template <class Node> bool anyLeft(const Node* first)
{
    while (first && !isLeft(first))
        first = first->next;
    return first != nullptr;
}

/// An element that holds those attributes and children of `node` that nobody asked for; none without any.
std::shared_ptr<xmlDoc> copyOfRest(const xmlNode* node)
{
    if (!anyLeft(node->properties) && !anyLeft(node->children))
        return nullptr;
    std::shared_ptr<xmlDoc> document(xmlNewDoc(xmlText("1.0")), xmlFreeDoc);
    xmlNode* const rest
        = document ? xmlNewDocNode(document.get(), nullptr, xmlText("rest"), nullptr) : nullptr;
    if (!rest)
        throw std::bad_alloc();
    xmlDocSetRootElement(document.get(), rest);
    for (xmlAttr* attribute = node->properties; attribute; attribute = attribute->next) {
        if (!isLeft(attribute))
            continue;
        // Declares the namespace on `rest` where it isn't yet.
        xmlAttr* const copy = xmlCopyProp(rest, attribute);
        if (!copy)
            throw std::bad_alloc();
        xmlAttr** end = &rest->properties;
        for (copy->prev = nullptr; *end; end = &(*end)->next)
            copy->prev = *end;
        *end = copy;
    }
    for (xmlNode* child = node->children; child; child = child->next) {
        if (!isLeft(child))
            continue;
        xmlNode* const copy = xmlDocCopyNode(child, document.get(), 1);
        if (!copy)
            throw std::bad_alloc();
        setState(copy, stateOf(child));
        xmlAddChild(rest, copy);
        xmlReconciliateNs(document.get(), copy);
    }
    return document;
}

} // namespace

VXAXMLKeptElement::VXAXMLKeptElement(const VXAXMLNode* node)
    : mDocument(xmlNewDoc(xmlText("1.0")), xmlFreeDoc)
{
    // The copy declares the namespaces that it uses itself.
    xmlNode* const copy
        = mDocument ? xmlDocCopyNode(const_cast<xmlNode*>(node), mDocument.get(), 1) : nullptr;
    if (!copy)
        throw std::bad_alloc();
    xmlDocSetRootElement(mDocument.get(), copy);
    xmlReconciliateNs(mDocument.get(), copy);
}

void VXAXMLKeptElement::copyTo(VXAXMLNode* target) const
{
    const xmlNode* const kept = xmlDocGetRootElement(mDocument.get());
    xmlNodeSetName(target, kept->name);
    target->ns = nullptr;
    if (kept->ns) {
        const char* const prefix = kept->ns->prefix ? plainText(kept->ns->prefix) : "n";
        target->ns = prefixedNamespace(target, { plainText(kept->ns->href), prefix });
    }
    appendContents(kept, target);
}

// Parts.

int VXAXMLKeptParts::Counter::ordinalOf(const VXAXMLNode* node)
{
    const auto [found, isNew] = mLast.try_emplace({ node->parent, plainText(node->name) }, Place { node, 0 });
    Place& last = found->second;
    int between = 0;
    const xmlNode* at = node;
    while (at && (isNew || at != last.node)) {
        at = at->prev;
        between += at && at->type == XML_ELEMENT_NODE && xmlStrEqual(at->name, node->name)
            && uriOf(at) == uriOf(node);
    }
    last = { node, at ? last.ordinal + between : between };
    return last.ordinal;
}

/// Finds elements by their paths, going on from where the last path led.
class VXAXMLKeptParts::Finder {
public:
    xmlNode* find(xmlNode* top, const Path& path)
    {
        mPlaces.resize(std::max(mPlaces.size(), path.size()));
        xmlNode* node = top;
        for (std::size_t depth = 0; node && depth < path.size(); ++depth)
            node = child(node, path[depth], mPlaces[depth]);
        return node;
    }

private:
    struct Place {
        const xmlNode* parent = nullptr;
        xmlNode* node = nullptr;
        Step step;
    };

    static bool isCalled(const xmlNode* node, const Step& step)
    {
        return node->type == XML_ELEMENT_NODE && step.name == plainText(node->name)
            && step.uri == uriOf(node);
    }
    static xmlNode* child(const xmlNode* parent, const Step& step, Place& last)
    {
        const bool goesOn = last.node && last.parent == parent && last.step.name == step.name
            && last.step.uri == step.uri && last.step.ordinal <= step.ordinal;
        xmlNode* node = goesOn ? last.node : parent->children;
        int ordinal = goesOn ? step.ordinal - last.step.ordinal : step.ordinal;
        while (node && !(isCalled(node, step) && ordinal-- == 0))
            node = node->next;
        last = { parent, node, step };
        return node;
    }

    std::vector<Place> mPlaces; ///< by depth
};

VXAXMLKeptParts VXAXMLKeptParts::partsOf(const VXAXMLNode* node)
{
    VXAXMLKeptParts parts;
    Counter counter;
    if (!node)
        return parts;
    parts.collect(node, node, counter);
    setState(node, NodeState::Object); // nobody else takes them
    return parts;
}

void VXAXMLKeptParts::collect(const VXAXMLNode* node, const VXAXMLNode* top, Counter& counter)
{
    if (auto rest = copyOfRest(node))
        mParts.push_back({ pathTo(node, top, counter), std::move(rest) });
    for (const VXAXMLNode* child = vxaxmlFirstChildElement(node); child;
         child = vxaxmlNextSiblingElement(child)) {
        if (stateOf(child) == NodeState::Asked)
            collect(child, top, counter);
    }
}

VXAXMLKeptParts::Path VXAXMLKeptParts::pathTo(
    const VXAXMLNode* node, const VXAXMLNode* ancestor, Counter& counter)
{
    Path path;
    for (; node && node != ancestor; node = node->parent)
        path.push_back({ plainText(node->name), std::string(uriOf(node)), counter.ordinalOf(node) });
    std::reverse(path.begin(), path.end());
    return path;
}

void VXAXMLKeptParts::addPartsOfNodeBelow(
    const VXAXMLKeptParts& parts, const VXAXMLNode* node, const VXAXMLNode* ancestor, Counter& counter)
{
    const Path start = pathTo(node, ancestor, counter);
    for (const Part& part : parts.mParts) {
        Path path = start;
        path.insert(path.end(), part.path.begin(), part.path.end());
        mParts.push_back({ std::move(path), part.rest });
    }
}

void VXAXMLKeptParts::appendTo(VXAXMLNode* top) const
{
    Finder finder;
    for (const Part& part : mParts) {
        if (xmlNode* const node = finder.find(top, part.path))
            appendContents(xmlDocGetRootElement(part.rest.get()), node);
    }
}

// By objects.

void VXAXMLKeptPartsOfObjects::setParts(const std::shared_ptr<Object>& object, VXAXMLKeptParts parts)
{
    mParts[object.get()] = { object, std::move(parts) };
    if (mParts.size() < mMostBeforeSweep)
        return;
    std::erase_if(mParts, [](const auto& entry) { return entry.second.object.expired(); });
    mMostBeforeSweep = 2 * mParts.size() + 64;
}

const VXAXMLKeptParts* VXAXMLKeptPartsOfObjects::partsOf(const Object& object) const
{
    const auto found = mParts.find(&object);
    return found == mParts.end() || found->second.object.expired() ? nullptr : &found->second.parts;
}

} // namespace vxr
