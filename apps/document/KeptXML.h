#pragma once

#include <vxr/host/archiving/VXAXMLNode.h>

#include <memory>

struct _xmlDoc;

namespace app {

/// A copy of an element that nothing here knows, kept to be written back as it was.
class KeptXML {
public:
    explicit KeptXML(const vxr::VXAXMLNode*);

    void appendTo(vxr::VXAXMLNode* parent) const;

private:
    std::shared_ptr<_xmlDoc> mDocument; ///< with the element as its root
};

} // namespace app
