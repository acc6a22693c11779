#pragma once

#include <vxr/geometry/Color.h>
#include <vxr/host/archiving/VXAXMLUnarchiver.h>
#include <vxr/renderables/VXRRenderable.h>

namespace app {

/// A line that objects are aligned with; nothing draws it.
struct Guide {
    bool isHorizontal = false;
    float position = 0; ///< y of a horizontal one, x of a vertical one

    friend bool operator==(const Guide&, const Guide&) = default;
};

/// What a document knows of a renderable beside the model.
struct RenderableNotes {
    std::string label; ///< what the user calls it; may be empty
};
using RenderableNotesMap = std::unordered_map<const vxr::VXRRenderable*, RenderableNotes>;

/// What pages of a document share.
struct PageSurroundings {
    /// Styles by name. Renderables that have one of these very objects refer to it by its name.
    std::map<std::string, std::shared_ptr<vxr::Object>> styles;
    /// A `VXEDataManager` with the bytes of pictures; also the source of stroke bundles. Or none.
    std::shared_ptr<vxr::Object> data;
};

/// One page of a document, in canvas units of 1/96 inch, y down from the upper left corner.
///
/// Attributes and elements of the page's text that nothing here knows are kept and written back with what
/// they belong to.
struct DocumentPage {
    vxr::Size size { 816, 1056 };
    std::shared_ptr<vxr::Color> background; ///< none for no background
    std::vector<Guide> guides;
    std::vector<std::shared_ptr<vxr::VXRRenderable>> renderables; ///< back to front
    RenderableNotesMap notes;
    std::shared_ptr<vxr::VXAXMLKeptPartsOfObjects> keptOfObjects; ///< or none
    vxr::VXAXMLKeptParts kept; ///< of the page itself

    std::string text(const PageSurroundings& = {}) const;
    /// What can't be read is replaced or left out, with a line in `troubles`. Throws `VXAXMLError` when the
    /// text is no XML or no page.
    static DocumentPage fromText(
        std::string_view text, std::vector<std::string>& troubles, const PageSurroundings& = {});
};

/// Gives the archiver, or unarchiver, what pages and styles of a document need.
void prepare(vxr::VXAXMLArchiver&, const PageSurroundings&);
void prepare(vxr::VXAXMLUnarchiver&, const PageSurroundings&);

} // namespace app
