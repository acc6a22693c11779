// Polygon clipping from random contours: nothing crashes or hangs, and the four results obey
// |A or B| + |A and B| = |A| + |B| and its relatives.

#include <tests/fuzz/FuzzInput.h>
#include <tests/support/EvenOddArea.h>
#include <tests/support/PolygonBuilder.h>

#include <cmath>

using namespace vxr;
using namespace vxr::testing;

namespace {

constexpr std::size_t mostJudgedVertices = 48; ///< the reference area is quadratic in the result

struct Operands {
    TestPolygon a, b;
    std::size_t vertices = 0;
    double extent = 0;
    bool finite = true;
};

double coordinate(FuzzInput& input, Form form)
{
    return form == Form::Raw ? input.next<double>()
        : form == Form::Fine ? input.next<std::int16_t>() / 7.0
                             : input.byte();
}

/// Each vertex is a tag byte and two coordinates. Some tags begin a new contour, of the same or of the
/// other operand.
Operands readOperands(FuzzInput& input, Form form)
{
    Operands operands;
    TestPolygon::Contour contour;
    bool second = false;
    const auto finishContour = [&] {
        (second ? operands.b : operands.a).add(contour);
        contour.clear();
    };
    const std::size_t vertexSize = form == Form::Raw ? 17 : form == Form::Fine ? 5 : 3;
    while (input.left() >= vertexSize) {
        const std::uint8_t tag = input.byte();
        const double x = coordinate(input, form), y = coordinate(input, form);
        if (tag % 8 == 7) {
            finishContour();
            second = tag % 16 == 15 ? !second : second;
        }
        contour.push_back({ x, y });
        ++operands.vertices;
        operands.finite &= std::isfinite(x) && std::isfinite(y);
        operands.extent = std::max({ operands.extent, std::abs(x), std::abs(y) });
    }
    finishContour();
    return operands;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzInput input(data, size);
    const Form form = formOf(input.byte());
    const Operands in = readOperands(input, form);

    double areas[4] = {};
    // Beyond 1e100 the reference area itself overflows.
    const bool judged = in.finite && in.vertices <= mostJudgedVertices && in.extent <= 1e100;
    for (const gpc_op operation : { GPC_DIFF, GPC_INT, GPC_XOR, GPC_UNION }) {
        const TestPolygon result = clip(operation, in.a, in.b);
        for (int i = 0; i < result.count(); ++i)
            expect(result.contour(i).size() >= 3, "contours enclose something");
        expect(in.finite || result.count() == 0, "what is not finite gives nothing");
        areas[operation] = judged ? evenOddArea(result.set()) : 0;
    }
    if (!judged)
        return 0;

    const double areaA = evenOddArea(in.a.set()), areaB = evenOddArea(in.b.set());
    // Relative to the areas, and as exact as the clipper's grid across the operands.
    const double tolerance = 1e-6 * (areaA + areaB) + 1e-9 * in.extent * in.extent;
    const auto equal = [&](double left, double right) { return std::abs(left - right) <= tolerance; };
    expect(equal(areas[GPC_UNION] + areas[GPC_INT], areaA + areaB), "|A or B| + |A and B| = |A| + |B|");
    expect(equal(areas[GPC_DIFF] + areas[GPC_INT], areaA), "|A - B| + |A and B| = |A|");
    expect(equal(areas[GPC_XOR] + areas[GPC_INT], areas[GPC_UNION]), "|A xor B| + |A and B| = |A or B|");
    return 0;
}
