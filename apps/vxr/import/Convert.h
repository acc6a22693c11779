#pragma once

#include <apps/vxr/svg/Drawing.h>

#include <vxr/geometry/Color.h>
#include <vxr/platform/graphics/path/Path.h>

#include <memory>

namespace app {

// From the reader's double precision to the model's types.
vxr::Point pointFrom(svg::Vec);
vxr::Rect rectFrom(const svg::Box&); ///< the zero rectangle for no box
vxr::AffineTransform transformFrom(const svg::Matrix&);
std::shared_ptr<vxr::Color> colorFrom(const svg::Rgba&);
vxr::WindingRule windingRuleFrom(svg::FillRule);
std::shared_ptr<vxr::Path> pathFrom(const svg::Outline&, svg::FillRule = svg::FillRule::NonZero);

} // namespace app
