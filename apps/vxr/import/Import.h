#pragma once

#include <apps/vxr/svg/Drawing.h>

#include <vxr/renderables/VXRRenderable.h>

#include <unordered_map>

namespace app {

/// A drawing as the model holds it. Canvas units are the drawing's user units.
struct ImportedDrawing {
    vxr::Size size;
    std::vector<std::shared_ptr<vxr::VXRRenderable>> renderables; ///< back to front
    /// Where each renderable, those in groups too, comes from: `path#id` and its line.
    std::unordered_map<const vxr::VXRRenderable*, std::pair<std::string, int>> sources;
    std::size_t shapeCount = 0;
    double pointsPerUnit = 0.75; ///< on paper; a drawing's unit is 1/96 inch
    std::vector<svg::Warning> warnings; ///< about pictures
};

/// One renderable a shape, drawn through its own fill and stroke; groups where an opacity or clip is
/// shared. Pictures that are files are read from `folder`, where the drawing is, or below it; none when that
/// is empty.
ImportedDrawing importDrawing(const svg::Drawing&, const std::string& folder = {});

} // namespace app
