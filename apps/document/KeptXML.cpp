#include "KeptXML.h"

#include <libxml/tree.h>

#include <new>

namespace app {

KeptXML::KeptXML(const vxr::VXAXMLNode* node)
    : mDocument(xmlNewDoc(nullptr), xmlFreeDoc)
{
    // The copy declares the namespaces that it uses itself.
    xmlNode* copy = mDocument ? xmlDocCopyNode(const_cast<xmlNode*>(node), mDocument.get(), 1) : nullptr;
    if (!copy)
        throw std::bad_alloc();
    xmlDocSetRootElement(mDocument.get(), copy);
    xmlReconciliateNs(mDocument.get(), copy);
}

void KeptXML::appendTo(vxr::VXAXMLNode* parent) const
{
    xmlNode* copy = xmlDocCopyNode(xmlDocGetRootElement(mDocument.get()), parent->doc, 1);
    if (!copy)
        throw std::bad_alloc();
    xmlAddChild(parent, copy);
    xmlReconciliateNs(parent->doc, copy);
}

} // namespace app
