#pragma once

#include "RenderableXML.h"

#include <vxr/geometry/Color.h>

namespace app {

/// A line that objects are aligned with; nothing draws it.
struct Guide {
    bool isHorizontal = false;
    float position = 0; ///< y of a horizontal one, x of a vertical one

    friend bool operator==(const Guide&, const Guide&) = default;
};

/// One page of a document, in canvas units of 1/96 inch, y down from the upper left corner.
///
/// Elements of the page's text that nothing here knows are kept and written back.
struct DocumentPage {
    vxr::Size size { 816, 1056 };
    std::shared_ptr<vxr::Color> background; ///< none for no background
    std::vector<Guide> guides;
    std::vector<std::shared_ptr<vxr::VXRRenderable>> renderables; ///< back to front
    RenderableNotesMap notes;
    std::vector<KeptXML> unknown;

    std::string text(const SharedStyles& = {}) const;
    /// What can't be read is replaced or left out, with a line in `troubles`. Throws `VXAXMLError` when the
    /// text is no XML or no page.
    static DocumentPage fromText(
        std::string_view text, std::vector<std::string>& troubles, const SharedStyles& = {});
};

} // namespace app
