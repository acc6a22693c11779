#pragma once

#include <vxr/platform/graphics/values/Geometry.h>

namespace vxr {

class VXRCanvasRole;
class VXRLayeredRenderable;

// Where a layer's pixels lie: at whole pixels, hardly ever exactly where the renderable does.

/// What a layer covers: the alignment bounds, or of those that reach too far for a grid of tiles the part
/// around what is seen.
Rect boundsOfLayer(const VXRLayeredRenderable&, float zoom);

/// Where the first pixel of a layer over `bounds` is put, in pixels from the corner of what is seen.
Point placeOfLayer(const Rect& bounds, const Rect& seen, float zoom, bool isFlipped);

/// How far the renderable lies from a layer that was put at `place`, in canvas units.
Point errorOfPlace(Point place, const Rect& bounds, float zoom, const VXRCanvasRole&);

/// What a layer has to hold for all that shows within `visible`, in canvas coordinates: the caster of a
/// shadow in sight may itself be out of sight, and where the layer's place has to be rounded a pixel more of
/// it may come into sight.
Rect rectThatShows(const VXRLayeredRenderable&, const Rect& visible, float zoom);

} // namespace vxr
