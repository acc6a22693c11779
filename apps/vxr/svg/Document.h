#pragma once

#include "Drawing.h"

#include <set>
#include <unordered_map>

namespace app::svg {

/// A parsed document with its ids, its style sheet and the warnings found so far.
class Document {
public:
    Document(const XmlElement& root, const DrawingLimits& limits);

    const XmlElement& root() const { return mRoot; }
    /// Null when no element has the id; the first one when several have.
    const XmlElement* elementWithId(std::string_view id) const;
    /// The element that `href` or `xlink:href` leads to within the document; null otherwise.
    const XmlElement* referenced(const XmlElement&) const;

    /// The style of an element inside one of style `parent`. Invalid values give a warning.
    Style styleOf(const XmlElement&, const Style& parent, const Viewport&);
    /// The style an element has where it stands in the document, which is what the contents of gradients,
    /// clip paths and markers inherit from.
    Style styleInPlace(const XmlElement&, const Viewport&);

    /// Keeps the first warning of each kind.
    void warnOnce(const std::string& kind, int line, const std::string& message);
    void warn(int line, const std::string& message);
    std::vector<Warning> takeWarnings() { return std::move(mWarnings); }

    /// Counts an element about to be visited. Throws `DocumentError` past the limit.
    void visit(const XmlElement&);
    const DrawingLimits& limits() const { return mLimits; }

private:
    void index(const XmlElement&, const XmlElement* parent);

    const XmlElement& mRoot;
    DrawingLimits mLimits;
    StyleSheet mSheet;
    std::unordered_map<std::string_view, const XmlElement*> mIds;
    std::unordered_map<const XmlElement*, const XmlElement*> mParents;
    std::set<std::string> mKindsWarned;
    std::vector<Warning> mWarnings;
    int mVisits = 0;
};

/// The fill or stroke of one shape. `bounds` are its outline's, in user space, for units of the bounding
/// box. An empty reference or a gradient without stops paints nothing.
class PaintResolver {
public:
    explicit PaintResolver(Document& document)
        : mDocument(document)
    {
    }

    Paint resolve(
        const PaintValue&, double opacity, const Style&, const Box& bounds, const Viewport&, int line);

private:
    /// A gradient with its inheritance followed but its lengths not yet measured.
    struct Source {
        const XmlElement* element = nullptr; ///< the referenced element
        Gradient::Kind kind = Gradient::Kind::Linear;
        std::unordered_map<std::string, const std::string*> attributes;
        std::vector<GradientStop> stops;
    };

    const Source& source(const XmlElement& gradient, const Viewport&);
    std::vector<GradientStop> readStops(const XmlElement& gradient, const Viewport&);
    Paint paintFor(const Source&, double opacity, const Box& bounds, const Viewport&);

    Document& mDocument;
    std::unordered_map<const XmlElement*, Source> mSources;
};

/// A vertex at which a marker may be drawn.
struct MarkerVertex {
    Vec point;
    double angle = 0; ///< radians, the bisector of the two directions
};

/// The vertices of a path in order, arcs' inner points left out.
std::vector<MarkerVertex> markerVertices(const Outline&);

} // namespace app::svg
