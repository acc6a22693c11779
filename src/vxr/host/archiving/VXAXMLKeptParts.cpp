#include <vxr/host/archiving/VXAXMLKeptParts.h>

#include <vxr/host/archiving/XMLTree.h>

#include <algorithm>
#include <new>

namespace vxr {

namespace {

std::string uriOf(const xmlNode* node) { return node->ns && node->ns->href ? plainText(node->ns->href) : ""; }

template <class Step> bool isCalled(const xmlNode* node, const Step& step)
{
    return node->type == XML_ELEMENT_NODE && step.name == plainText(node->name) && step.uri == uriOf(node);
}

/// An element that holds those attributes and children of `node` that nobody asked for; none without any.
std::shared_ptr<xmlDoc> copyOfRest(const xmlNode* node)
{
    const std::shared_ptr<xmlDoc> document(xmlNewDoc(xmlText("1.0")), xmlFreeDoc);
    xmlNode* const rest
        = document ? xmlNewDocNode(document.get(), nullptr, xmlText("rest"), nullptr) : nullptr;
    if (!rest)
        throw std::bad_alloc();
    xmlDocSetRootElement(document.get(), rest);
    for (xmlAttr* attribute = node->properties; attribute; attribute = attribute->next) {
        if (stateOf(attribute) != NodeState::Untouched)
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
        const NodeState state = stateOf(child);
        if (child->type != XML_ELEMENT_NODE
            || (state != NodeState::Untouched && state != NodeState::Unreadable))
            continue;
        xmlNode* const copy = xmlDocCopyNode(child, document.get(), 1);
        if (!copy)
            throw std::bad_alloc();
        setState(copy, state);
        xmlAddChild(rest, copy);
        xmlReconciliateNs(document.get(), copy);
    }
    return rest->properties || rest->children ? document : nullptr;
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

VXAXMLKeptParts VXAXMLKeptParts::partsOf(const VXAXMLNode* node)
{
    VXAXMLKeptParts parts;
    if (node)
        parts.collect(node, node);
    return parts;
}

void VXAXMLKeptParts::collect(const VXAXMLNode* node, const VXAXMLNode* top)
{
    if (auto rest = copyOfRest(node))
        mParts.push_back({ pathTo(node, top), std::move(rest) });
    for (const VXAXMLNode* child = vxaxmlFirstChildElement(node); child;
         child = vxaxmlNextSiblingElement(child)) {
        if (stateOf(child) == NodeState::Asked)
            collect(child, top);
    }
}

VXAXMLKeptParts::Path VXAXMLKeptParts::pathTo(const VXAXMLNode* node, const VXAXMLNode* ancestor)
{
    Path path;
    for (; node && node != ancestor; node = node->parent) {
        Step step { plainText(node->name), uriOf(node), 0 };
        for (const xmlNode* before = node->prev; before; before = before->prev)
            step.ordinal += isCalled(before, step);
        path.push_back(std::move(step));
    }
    std::reverse(path.begin(), path.end());
    return path;
}

void VXAXMLKeptParts::addPartsOfNodeBelow(
    const VXAXMLKeptParts& parts, const VXAXMLNode* node, const VXAXMLNode* ancestor)
{
    const Path start = pathTo(node, ancestor);
    for (const Part& part : parts.mParts) {
        Path path = start;
        path.insert(path.end(), part.path.begin(), part.path.end());
        mParts.push_back({ std::move(path), part.rest });
    }
}

void VXAXMLKeptParts::appendTo(VXAXMLNode* top) const
{
    for (const Part& part : mParts) {
        xmlNode* node = top;
        for (auto step = part.path.begin(); node && step != part.path.end(); ++step) {
            int ordinal = step->ordinal;
            xmlNode* child = node->children;
            while (child && !(isCalled(child, *step) && ordinal-- == 0))
                child = child->next;
            node = child;
        }
        if (node)
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
