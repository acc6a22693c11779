#include <vxr/platform/graphics/Context.h>

#include <algorithm>
#include <cmath>

namespace vxr {

namespace {

/// Accuracy of a stroked outline as a fraction of the flatness. The flatness bounds the error; antialiased
/// edges need less.
constexpr float outlineShareOfFlatness = 1 / 6.0f;
constexpr float finestOutline = 0.01f; ///< device pixels

} // namespace

Context::Context() = default;
Context::~Context() = default;

// If the current transform has no inverse, a point is mapped to the space of the path's first points;
// otherwise the path is mapped to the current space.
void Context::alignPathToTransform()
{
    const AffineTransform current = currentTransform();
    if (current == mPathTransform)
        return;
    if (!mPath.isEmpty()) {
        const auto inverse = current.inverted();
        if (!inverse)
            return;
        mPath.transformUsingAffineTransform(concat(mPathTransform, *inverse));
    }
    mPathTransform = current;
}

Point Context::alignedPoint(Point p)
{
    alignPathToTransform();
    const AffineTransform current = currentTransform();
    if (current == mPathTransform)
        return p;
    const auto inverse = mPathTransform.inverted();
    return inverse ? inverse->map(current.map(p)) : p;
}

void Context::beginPath()
{
    mPath.removeAllPoints();
    mPathTransform = currentTransform();
}

void Context::moveTo(Point p) { mPath.moveTo(alignedPoint(p)); }

void Context::lineTo(Point p) { mPath.lineTo(alignedPoint(p)); }

void Context::curveTo(Point control1, Point control2, Point end)
{
    mPath.curveTo(alignedPoint(control1), alignedPoint(control2), alignedPoint(end));
}

void Context::closePath() { mPath.close(); }

void Context::addRect(const Rect& r)
{
    moveTo(r.origin);
    lineTo({ r.maxX(), r.minY() });
    lineTo({ r.maxX(), r.maxY() });
    lineTo({ r.minX(), r.maxY() });
    closePath();
}

void Context::addPath(const Path& path)
{
    struct Adder {
        Context& context;
        void moveTo(Point p) { context.moveTo(p); }
        void lineTo(Point p) { context.lineTo(p); }
        void curveTo(Point control1, Point control2, Point end) { context.curveTo(control1, control2, end); }
        void close() { context.closePath(); }
    };
    path.visit(Adder { *this });
}

void Context::replacePathWithStrokedPath()
{
    alignPathToTransform();
    const float scale = static_cast<float>(std::sqrt(std::abs(mPathTransform.determinant())));
    if (!std::isfinite(scale) || scale <= 0) {
        mPath.removeAllPoints();
        return;
    }
    const float error = std::max(flatness() * outlineShareOfFlatness, finestOutline);
    mPath = *mPath.strokedOutline(lineStyle(), error / scale);
}

void Context::clip(WindingRule rule)
{
    alignPathToTransform();
    clipToPath(mPath, rule);
    beginPath();
}

void Context::fillPath(WindingRule rule)
{
    alignPathToTransform();
    fillPath(mPath, rule);
    beginPath();
}

void Context::strokePath()
{
    alignPathToTransform();
    strokePath(mPath, lineStyle());
    beginPath();
}

} // namespace vxr
