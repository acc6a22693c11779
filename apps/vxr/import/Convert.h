#pragma once

#include <apps/vxr/svg/Drawing.h>

#include <vxr/geometry/Color.h>
#include <vxr/platform/graphics/path/Path.h>

#include <memory>

namespace app {

// Conversions from the reader's types to the model's.
vxr::Point pointFrom(svg::Vec);
vxr::AffineTransform transformFrom(const svg::Matrix&);
std::shared_ptr<vxr::Color> colorFrom(const svg::Rgba&);
svg::Rgba rgbaFrom(const vxr::Color&);
vxr::WindingRule windingRuleFrom(svg::FillRule);
std::shared_ptr<vxr::Path> pathFrom(const svg::Outline&, svg::FillRule = svg::FillRule::NonZero);

} // namespace app
