#pragma once

#include <apps/import/pict/PictReader.h>

#include <span>

#include <cairo.h>

namespace vxr::importing {

// Each appends the area that is painted to the current path, for the nonzero rule unless said. A pen covers
// the rectangle of its size to the right of and below its point; a frame lies inside its shape and is as
// thick as the pen.

void addRect(cairo_t*, const PictRect&);
void addOval(cairo_t*, const PictRect&);
/// Corners are quarters of an oval of that size.
void addRoundRect(cairo_t*, const PictRect&, PictPoint ovalSize);
/// A wedge from the middle. Degrees run clockwise from the top and are those of the square that the
/// rectangle is stretched from.
void addWedge(cairo_t*, const PictRect&, int startAngle, int arcAngle);
/// The ring between the wedge's arc and that of the oval within the pen.
void addArcFrame(cairo_t*, const PictRect&, int startAngle, int arcAngle, PictPoint pen);
void addPolygon(cairo_t*, std::span<const PictPoint>);
/// What the pen covers on its way.
void addLine(cairo_t*, PictPoint from, PictPoint to, PictPoint pen);

/// The rectangle without what the pen covers along its edges; may be empty.
PictRect insetByPen(const PictRect&, PictPoint pen);

} // namespace vxr::importing
