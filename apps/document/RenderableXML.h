#pragma once

#include "KeptXML.h"

#include <vxr/host/archiving/VXAXMLUnarchiver.h>
#include <vxr/renderables/VXRRenderable.h>

#include <functional>
#include <map>
#include <unordered_map>
#include <vector>

namespace app {

/// What a document knows of a renderable beside the model.
struct RenderableNotes {
    std::string label; ///< what the user calls it; may be empty
    std::vector<KeptXML> unknown; ///< elements within its own that nothing here knows
};
using RenderableNotesMap = std::unordered_map<const vxr::VXRRenderable*, RenderableNotes>;

/// Called with an element and what is wrong with it.
using XMLTrouble = std::function<void(const vxr::VXAXMLNode*, const std::string&)>;

/// Styles of a document by name. Renderables that have one of these very objects refer to it by its name.
using SharedStyles = std::map<std::string, std::shared_ptr<vxr::Object>>;

/// Makes the element names of all that a page may hold known to the archiver; once is enough.
void registerModelClasses();

/// Appends an element for each renderable. Throws `GenericException` for a class that documents don't have.
void writeRenderables(const std::vector<std::shared_ptr<vxr::VXRRenderable>>&, const RenderableNotesMap&,
    const SharedStyles&, vxr::VXAXMLNode* parent);

/// The renderables of an element's children. Children of no known kind become `UnknownRenderable`s.
std::vector<std::shared_ptr<vxr::VXRRenderable>> readRenderables(
    const vxr::VXAXMLNode* parent, RenderableNotesMap&, const SharedStyles&, const XMLTrouble&);

} // namespace app
