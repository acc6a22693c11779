// Text wrap of random lines at random paths: nothing crashes or hangs, and a line's pieces are those
// of clipping it with the whole polygon.

#include <tests/fuzz/FuzzInput.h>
#include <tests/support/PlainWrap.h>

using namespace vxr;
using namespace vxr::testing;

namespace {

Point nextPoint(FuzzInput& bytes)
{
    const float x = bytes.byte();
    return { x, float(bytes.byte()) };
}

std::shared_ptr<Path> readPath(FuzzInput& bytes)
{
    auto path = Path::path();
    while (bytes.left()) {
        const int tag = bytes.byte();
        if (tag % 8 == 0) {
            path->close();
        } else if (tag % 8 == 1) {
            path->moveTo(nextPoint(bytes));
        } else if (tag % 8 == 2) {
            const Point a = nextPoint(bytes), b = nextPoint(bytes);
            path->curveTo(a, b, nextPoint(bytes));
        } else {
            path->lineTo(nextPoint(bytes));
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

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzInput bytes(data, size);
    const float step = float(1 + bytes.byte() % 40) / 2, left = float(bytes.byte()) / 4,
                width = float(20 + bytes.byte());
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
            if (skip < 1 || !samePieces(pieces, expected, 1e-3f)) {
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
