#include "Document.h"

#include <numbers>

namespace app::svg {

namespace {

/// One drawn piece between two vertices, with its directions there. A piece of no length has none.
struct Piece {
    Vec from, to;
    std::optional<Vec> leaving, arriving;
    bool endsInsideArc = false;
};

struct Subpath {
    Vec start;
    std::vector<Piece> pieces;
    bool isClosed = false;
};

std::optional<Vec> direction(Vec from, std::initializer_list<Vec> towards)
{
    for (Vec p : towards) {
        if (p != from)
            return p - from;
    }
    return std::nullopt;
}

Piece cubicPiece(Vec from, Vec c1, Vec c2, Vec to)
{
    Piece piece { from, to, direction(from, { c1, c2, to }), direction(to, { c2, c1, from }), false };
    if (piece.arriving)
        piece.arriving = *piece.arriving * -1;
    return piece;
}

std::vector<Subpath> splitIntoPieces(const Outline& outline)
{
    std::vector<Subpath> subpaths;
    Vec current;
    std::size_t next = 0;
    const auto& points = outline.points();
    for (std::size_t i = 0; i < outline.verbs().size(); ++i) {
        const Verb verb = outline.verbs()[i];
        if (verb == Verb::Move) {
            current = points[next++];
            subpaths.push_back({ current, {}, false });
            continue;
        }
        Subpath& subpath = subpaths.back();
        Piece piece;
        if (verb == Verb::Cubic) {
            piece = cubicPiece(current, points[next], points[next + 1], points[next + 2]);
            next += 3;
        } else {
            const Vec to = verb == Verb::Close ? subpath.start : points[next++];
            piece = cubicPiece(current, current, to, to);
            subpath.isClosed |= verb == Verb::Close;
        }
        piece.endsInsideArc = outline.endsInsideArc(i);
        current = piece.to;
        subpath.pieces.push_back(piece);
    }
    return subpaths;
}

double angleBetween(const std::optional<Vec>& in, const std::optional<Vec>& out)
{
    if (!in && !out)
        return 0;
    const double a = in ? std::atan2(in->y, in->x) : std::atan2(out->y, out->x);
    const double b = out ? std::atan2(out->y, out->x) : a;
    // Half way along the shorter turn.
    const double turn = std::remainder(b - a, 2 * std::numbers::pi);
    return a + turn / 2;
}

} // namespace

std::vector<MarkerVertex> markerVertices(const Outline& outline)
{
    std::vector<MarkerVertex> vertices;
    for (const Subpath& subpath : splitIntoPieces(outline)) {
        const std::vector<Piece>& pieces = subpath.pieces;
        if (pieces.empty()) {
            vertices.push_back({ subpath.start, 0 });
            continue;
        }
        // At the ends of a closed sub-path the directions wrap around.
        const std::optional<Vec> before = subpath.isClosed ? (pieces.back().arriving ? pieces.back().arriving
                                                  : pieces.size() > 1 ? pieces[pieces.size() - 2].arriving
                                                                      : std::nullopt)
                                                           : std::nullopt;
        vertices.push_back({ pieces.front().from, angleBetween(before, pieces.front().leaving) });
        for (std::size_t i = 0; i < pieces.size(); ++i) {
            if (pieces[i].endsInsideArc)
                continue;
            const bool isLast = i + 1 == pieces.size();
            const std::optional<Vec> after = !isLast ? pieces[i + 1].leaving
                : subpath.isClosed                   ? pieces.front().leaving
                                                     : std::nullopt;
            const std::optional<Vec>& into = isLast && subpath.isClosed ? before : pieces[i].arriving;
            vertices.push_back({ pieces[i].to, angleBetween(into, after) });
        }
    }
    return vertices;
}

} // namespace app::svg
