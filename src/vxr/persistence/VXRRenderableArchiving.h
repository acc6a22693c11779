#pragma once

#include <vxr/persistence/VXRArchiving.h>
#include <vxr/renderables/VXRGroup.h>

namespace vxr {

class VXRShape;

// What renderables of a class write onto their element and read from it, for the records of subclasses.
VXR_EXPORT void VXREncodeRenderable(const VXRRenderable&, VXAXMLArchiver&, VXAXMLNode*);
VXR_EXPORT void VXRReadRenderable(VXRRenderable&, VXAXMLUnarchiver&, VXAXMLNode*);
VXR_EXPORT void VXREncodeShape(const VXRShape&, VXAXMLArchiver&, VXAXMLNode*);
VXR_EXPORT void VXRReadShape(VXRShape&, VXAXMLUnarchiver&, VXAXMLNode*);
VXR_EXPORT void VXREncodeGroup(const VXRGroup&, VXAXMLArchiver&, VXAXMLNode*);
VXR_EXPORT void VXRReadGroup(VXRGroup&, VXAXMLUnarchiver&, VXAXMLNode*);

/// A fill, stroke or shadow of any class from a node that names it. A stroke with a bundle's name is a smart
/// one. None for a null node or an unknown class.
VXR_EXPORT std::shared_ptr<Object> VXRStyleFromNode(VXAXMLUnarchiver&, VXAXMLNode*);

/// An element for each renderable, named after its class. Throws `GenericException` for a class that has no
/// element name.
VXR_EXPORT void VXREncodeRenderables(const VXRGroup::Members&, VXAXMLArchiver&, VXAXMLNode* parent);
/// Of all child elements. What is of no known class is logged; the unarchiver's class of unknown elements
/// reads it, if there is one.
VXR_EXPORT VXRGroup::Members VXRReadRenderables(VXAXMLUnarchiver&, const VXAXMLNode* parent);

/// Gives ids to those renderables, in groups too, to which lines among them are connected or which they
/// reflect. Before they are written; references to other renderables are not.
VXR_EXPORT void VXRGiveIdsToReferredRenderables(const VXRGroup::Members&, VXAXMLArchiver&);

} // namespace vxr
