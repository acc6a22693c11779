// Polygon clipping from random contours: nothing crashes or hangs, and the four results obey
// |A or B| + |A and B| = |A| + |B| and its relatives.

#include <tests/support/EvenOddArea.h>
#include <tests/support/PolygonBuilder.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

using namespace vxr;
using namespace vxr::testing;

namespace {

constexpr std::size_t mostJudgedVertices = 48; ///< the reference area is quadratic in the result

/// How the bytes after the first become coordinates.
enum class Form { Lattice, Fine, Raw };

struct Operands {
    TestPolygon a, b;
    std::size_t vertices = 0;
    double extent = 0;
    bool finite = true;
};

class Reader {
public:
    Reader(const std::uint8_t* data, std::size_t size)
        : mData(data)
        , mEnd(data + size)
    {
    }

    template <class T> bool read(T& value)
    {
        if (std::size_t(mEnd - mData) < sizeof value)
            return false;
        std::memcpy(&value, mData, sizeof value);
        mData += sizeof value;
        return true;
    }

    bool readCoordinate(Form form, double& value)
    {
        if (form == Form::Raw)
            return read(value);
        if (form == Form::Lattice) {
            std::uint8_t byte;
            if (!read(byte))
                return false;
            value = byte;
            return true;
        }
        std::int16_t word;
        if (!read(word))
            return false;
        value = word / 7.0;
        return true;
    }

private:
    const std::uint8_t* mData;
    const std::uint8_t* mEnd;
};

/// Each vertex is a tag byte and two coordinates. Some tags begin a new contour, of the same or of the
/// other operand.
Operands readOperands(Reader& reader, Form form)
{
    Operands operands;
    TestPolygon::Contour contour;
    bool second = false;
    const auto finishContour = [&] {
        (second ? operands.b : operands.a).add(contour);
        contour.clear();
    };
    std::uint8_t tag;
    double x, y;
    while (reader.read(tag) && reader.readCoordinate(form, x) && reader.readCoordinate(form, y)) {
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

void expectEqual(const char* law, double left, double right, double tolerance)
{
    if (std::abs(left - right) <= tolerance)
        return;
    std::fprintf(stderr, "%s: %.17g is not %.17g (tolerance %g)\n", law, left, right, tolerance);
    std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Reader reader(data, size);
    std::uint8_t head;
    if (!reader.read(head))
        return 0;
    const Form form = head % 4 == 3 ? Form::Raw : head % 4 == 2 ? Form::Fine : Form::Lattice;
    const Operands in = readOperands(reader, form);

    TestPolygon results[4];
    for (int operation = 0; operation < 4; ++operation) {
        results[operation] = clip(gpc_op(operation), in.a, in.b);
        for (int i = 0; i < results[operation].count(); ++i)
            if (results[operation].contour(i).size() < 3)
                std::abort();
        if (!in.finite && results[operation].count() != 0)
            std::abort();
    }
    // Beyond 1e100 the reference area itself overflows.
    if (!in.finite || in.vertices > mostJudgedVertices || in.extent > 1e100)
        return 0;

    const double areaA = evenOddArea(in.a.set()), areaB = evenOddArea(in.b.set());
    double areas[4];
    for (int operation = 0; operation < 4; ++operation)
        areas[operation] = evenOddArea(results[operation].set());
    // Relative to the areas, and as exact as the clipper's grid across the operands.
    const double tolerance = 1e-6 * (areaA + areaB) + 1e-9 * in.extent * in.extent;
    expectEqual(
        "|A or B| + |A and B| = |A| + |B|", areas[GPC_UNION] + areas[GPC_INT], areaA + areaB, tolerance);
    expectEqual("|A - B| + |A and B| = |A|", areas[GPC_DIFF] + areas[GPC_INT], areaA, tolerance);
    expectEqual(
        "|A xor B| + |A and B| = |A or B|", areas[GPC_XOR] + areas[GPC_INT], areas[GPC_UNION], tolerance);
    return 0;
}
