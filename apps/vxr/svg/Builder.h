#pragma once

#include "Document.h"

namespace app::svg {

/// The context in which an element is read.
struct Scope {
    Style style; ///< of the parent
    Matrix toCanvas; ///< from the parent's user space
    Viewport viewport;
    int depth = 0;
    const Paint* contextFill = nullptr; ///< inside a marker: the paints of the shape it stands on
    const Paint* contextStroke = nullptr;
};

/// Turns elements into nodes of a drawing.
class Builder {
public:
    explicit Builder(Document&);

    /// The canvas size and the nodes of the root element.
    void build(Drawing&);

private:
    using Nodes = std::vector<Node>;

    void addElement(const XmlElement&, const Scope&, Nodes&);
    void addChildren(const XmlElement&, const Scope&, Nodes&);
    void addSwitch(const XmlElement&, const Scope&, Nodes&);
    void addUse(const XmlElement&, const Scope&, Nodes&);
    /// The contents of an `svg` or `symbol` fitted into its viewport.
    void addViewport(const XmlElement&, const XmlElement* use, Scope, Nodes&);
    void addShape(const XmlElement&, const Scope&, Nodes&);
    void addImage(const XmlElement&, const Scope&, Nodes&);
    void countShape(const XmlElement&); ///< throws `DocumentError` past the limit
    void warnOfSkipped(const XmlElement&);
    bool meetsConditions(const XmlElement&); ///< `systemLanguage` and `requiredExtensions`

    /// Puts `nodes` into one group when they share an opacity or a clip, and appends them to `out`.
    void appendWrapped(const XmlElement&, const Scope&, Nodes nodes, Nodes& out);

    std::optional<Outline> outlineOf(const XmlElement&, const Scope&);
    Outline pathOutline(const XmlElement&);
    Outline pointsOutline(const XmlElement&, bool closed);
    double length(const XmlElement&, const char* name, double whole, const Style&, double fallback = 0);
    Matrix transformOf(const XmlElement&, const Style&);

    Paint paint(const PaintValue&, double opacity, const Scope&, const Box&, int line);

    // Markers.
    void addMarkers(Shape&, const Scope&, Nodes& after);
    Nodes markerNodes(
        const XmlElement& marker, const Shape&, const Scope&, const MarkerVertex&, bool isStart);
    double markerAngle(const XmlElement& marker, const MarkerVertex&, bool isStart);
    double markerScale(const XmlElement& marker, const Shape&);
    static std::optional<LineEnd> lineEndFrom(const Nodes&, const Shape&, const MarkerVertex&, bool isStart);

    /// Puts `nodes` into a group clipped to a box of `element`'s own space, unless they lie within it.
    static void clipToBox(const XmlElement& element, const Box&, const Matrix& toCanvas, Nodes& nodes);

    // Clips. `user` is the clipped element's space, `nodes` its content.
    std::shared_ptr<const Clip> clip(const std::string& id, int line, const Scope& user, const Nodes& nodes);
    void addClipAreas(const XmlElement&, const Scope&, Clip&);

    /// Whether `element` is already being expanded; if not, it is now until `mActive` shrinks again.
    bool enter(const XmlElement&);
    void leave() { mActive.pop_back(); }

    Document& mDocument;
    PaintResolver mPaints;
    std::vector<const XmlElement*> mActive; ///< targets of references being followed
    int mShapes = 0;
};

} // namespace app::svg
