// Text wrap of random lines at random paths: nothing crashes or hangs, and a line's pieces are those
// of clipping it with the whole polygon.

#include <vxr/textwrap/VXRTextWrap.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

using namespace vxr;

namespace {

class Bytes {
public:
    Bytes(const std::uint8_t* data, std::size_t size)
        : mData(data)
        , mEnd(data + size)
    {
    }

    bool isAtEnd() const { return mData == mEnd; }
    int next() { return isAtEnd() ? 0 : *mData++; }
    Point nextPoint()
    {
        const int x = next(), y = next();
        return { float(x), float(y) };
    }

private:
    const std::uint8_t* mData;
    const std::uint8_t* mEnd;
};

std::shared_ptr<Path> readPath(Bytes& bytes)
{
    auto path = Path::path();
    while (!bytes.isAtEnd()) {
        const int tag = bytes.next();
        if (tag % 8 == 0) {
            path->close();
        } else if (tag % 8 == 1) {
            path->moveTo(bytes.nextPoint());
        } else if (tag % 8 == 2) {
            const Point a = bytes.nextPoint(), b = bytes.nextPoint();
            path->curveTo(a, b, bytes.nextPoint());
        } else {
            path->lineTo(bytes.nextPoint());
        }
    }
    return path;
}

/// Where the outline touches itself in a point, the clipper may part the area there or not, depending on
/// what else it sees: a piece without width comes and goes.
std::vector<Rect> withoutTouching(std::vector<Rect> pieces)
{
    std::erase_if(pieces, [](const Rect& r) { return r.size.width < 1e-4f; });
    return pieces;
}

std::vector<Rect> plainlyWrapped(const Rect& line, const Path& path, int type)
{
    const VXRPolygonOwner shape(polygonFromBezier(path)), rect(polygonFromRect(line)), result(emptyPolygon());
    gpc_polygon_clip(type == 0 ? GPC_DIFF : GPC_INT, rect.get(), shape.get(), result.get());
    return wrappedSubrectsFromPolygon(result.get(), line);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Bytes bytes(data, size);
    const float step = float(1 + bytes.next() % 40) / 2, left = float(bytes.next()) / 4,
                width = float(20 + bytes.next());
    const std::shared_ptr<const Path> path = readPath(bytes);
    if (path->elementCount() > 200)
        return 0;
    for (float y = -step; y < 256; y += 2 * step) {
        const Rect line(left, y, width, step);
        for (const int type : { 0, 1 }) {
            int skip = 0;
            const auto pieces = withoutTouching(
                VXRTextWrap::wrappedSubrectsForRectPathTypeSkipHint(line, path, type, skip));
            const auto expected = withoutTouching(plainlyWrapped(line, *path, type));
            bool agree = skip >= 1 && pieces.size() == expected.size();
            for (std::size_t i = 0; agree && i < pieces.size(); ++i)
                agree = std::abs(pieces[i].minX() - expected[i].minX()) < 1e-3f
                    && std::abs(pieces[i].maxX() - expected[i].maxX()) < 1e-3f;
            if (!agree) {
                std::fprintf(stderr, "line %g %g %g %g type %d: %zu pieces, %zu expected\n", double(left),
                    double(y), double(width), double(step), type, pieces.size(), expected.size());
                std::abort();
            }
        }
    }
    VXRTextWrap::unobstructedSpanForPathStartingSpanContainerBounds(
        *path, { left, 0, width, step }, { 0, 0, 256, 256 });
    return 0;
}
