#pragma once

#include "Style.h"
#include "Values.h"

#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace app::svg {

/// A drawing as plain data: styles are computed, references resolved and `use` expanded. What remains are
/// shapes, and groups where several shapes share an opacity or a clip.
///
/// The canvas is the root's viewport: (0, 0) at the top left, y down, 1/96 inch a unit.

struct GradientStop {
    double offset = 0; ///< ascending in [0, 1]; two may be equal
    Rgba color;
};

struct Gradient {
    enum class Kind { Linear, Radial };
    enum class Spread { Pad, Reflect, Repeat };

    Kind kind = Kind::Linear;
    Spread spread = Spread::Pad;
    Vec start, end; ///< of a linear one
    Vec center, focus; ///< of a radial one; the focus lies inside the circle
    double radius = 0, focusRadius = 0;
    Matrix toUser; ///< from the gradient's space to the shape's user space; invertible
    std::vector<GradientStop> stops; ///< at least two
};

struct Paint {
    enum class Kind { None, Color, Gradient };

    Kind kind = Kind::None;
    Rgba color; ///< of a Color, `fill-opacity` or `stroke-opacity` included
    std::shared_ptr<const Gradient> gradient;
    double opacity = 1; ///< of a gradient as a whole
};

/// Lengths in the shape's user space.
struct Stroke {
    Paint paint;
    double width = 1;
    Cap cap = Cap::Butt;
    Join join = Join::Miter;
    double miterLimit = 4;
    std::vector<double> dash;
    double dashOffset = 0;
    bool scales = true; ///< with the shape's transform; otherwise lengths are canvas units

    bool paints() const { return paint.kind != Paint::Kind::None && width > 0; }
    double reach() const; ///< how far it can extend beyond the outline
};

/// A marker that consists of one figure filled in the stroke's colour. User units of the shape; the
/// line's end is at the origin and the line comes from the negative x side.
struct LineEnd {
    Outline outline;
};

/// A placed picture. Its shape is the viewport that it is fitted to, at (0, 0) of the shape's user space,
/// without paints of its own.
struct Picture {
    std::string reference; ///< a data URL or where the file is, as written
    double width = 0, height = 0; ///< 0 for what follows the picture
    AspectRatio aspect;
};

struct Shape {
    std::string element, id;
    int line = 0;
    Outline outline; ///< in user space
    Matrix toCanvas; ///< from user space; invertible
    FillRule fillRule = FillRule::NonZero;
    Paint fill;
    Stroke stroke;
    double opacity = 1;
    std::optional<LineEnd> startEnd, finalEnd;
    std::shared_ptr<const Picture> picture; ///< none for an ordinary shape
};

/// The union of areas, in canvas coordinates. No area at all clips everything away.
struct Clip {
    struct Area {
        Outline outline;
        FillRule rule = FillRule::NonZero;
        std::shared_ptr<const Clip> within; ///< this area alone is cut by it; may be none
    };
    std::vector<Area> areas;
    std::shared_ptr<const Clip> within; ///< the union as a whole is cut by it; may be none
};

struct Node;

struct Group {
    std::string element, id;
    int line = 0;
    double opacity = 1;
    std::shared_ptr<const Clip> clip; ///< none for no clip
    std::vector<Node> children;
};

struct Node {
    std::variant<Shape, Group> content;
};

struct Warning {
    int line = 0;
    std::string message;
};

struct Drawing {
    double width = 0, height = 0; ///< of the viewport
    std::vector<Node> nodes; ///< back to front
    std::vector<Warning> warnings; ///< in the order found
};

/// Limits on a drawing once `use` is expanded.
struct DrawingLimits {
    int shapes = 200'000;
    int visits = 2'000'000; ///< of elements, repeated ones included
    int depth = 400;
};

/// Reads the text of an SVG document. Parts that the model can't represent are left out, with one warning
/// per kind. Throws `DocumentError` when the document can't be read or exceeds a limit.
Drawing readDrawing(std::string_view text, const XmlLimits& = {}, const DrawingLimits& = {});

/// Bounds of the outlines of `nodes` after `fromCanvas`, clips not counted; with as much around them as their
/// strokes may cover, if asked.
Box boundsOf(const std::vector<Node>& nodes, const Matrix& fromCanvas, bool withStrokes = false);
std::size_t shapeCount(const std::vector<Node>& nodes);

} // namespace app::svg
