#include <tests/support/RecordingContext.h>
#include <vxr/fills/VXRShadow.h>
#include <vxr/geometry/Color.h>
#include <vxr/platform/graphics/BitmapContext.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/renderables/VXRLineEnd.h>
#include <vxr/renderables/VXRShape.h>
#include <vxr/strokes/VXRManipulatedStroke.h>
#include <vxr/strokes/VXRStrokePattern.h>
#include <vxr/strokes/manipulations/VXROffsetOddWidthPathManipulation.h>
#include <vxr/strokes/manipulations/VXROutsetPathManipulation.h>
#include <vxr/strokes/manipulations/VXROutsetPathStroker.h>
#include <vxr/strokes/manipulations/VXROverstrokePathManipulation.h>
#include <vxr/strokes/manipulations/VXRPatternedPathStroker.h>
#include <vxr/strokes/manipulations/VXRRoundedPathManipulation.h>
#include <vxr/strokes/manipulations/VXRVaryWidthPathManipulation.h>
#include <vxr/strokes/manipulations/VXRWobblyPathManipulation.h>

#include <gtest/gtest.h>

#include <optional>
#include <random>

// Whatever a shape is made of, it paints within its erasable bounds.

using namespace vxr;
using namespace vxr::test;

namespace {

constexpr int side = 240;

/// Random shapes in the middle of a square of `side`.
class ShapeMaker {
public:
    explicit ShapeMaker(unsigned seed)
        : mRandom(seed)
    {
    }

    std::shared_ptr<VXRShape> make()
    {
        auto shape = VXRShape::shapeWithBezierPath(path());
        shape->setFill(chance(2) ? Color::colorWithCalibratedRGB(1, 0, 0) : nullptr);
        shape->setStroke(chance(5) ? nullptr : stroke());
        shape->setWantsInteriorStroke(chance(5));
        shape->setHeadLineEnd(lineEnd());
        shape->setTailLineEnd(lineEnd());
        if (chance(3)) {
            // Whole angles of 90 degrees and a whole distance: a bitmap moves its shadow by whole pixels.
            shape->setShadow(VXRShadow::shadowWithAngleOffsetRadiusOpacityColor(
                90 * below(4), below(15), static_cast<int>(below(12)), 1, Color::blackColor()));
        }
        shape->rotateByRadiansPivot(between(-4, 4), { 0, 0 });
        shape->scaleXByYByPivot(between(-1.2f, 1.2f), between(0.2f, 1.2f), { 0, 0 });
        const Point center = shape->center();
        shape->offsetBy(side / 2 - center.x + between(-1, 1), side / 2 - center.y + between(-1, 1));
        return shape;
    }

private:
    bool chance(int outOf) { return below(outOf) == 0; }
    float below(int limit) { return static_cast<float>(mRandom() % static_cast<unsigned>(limit)); }
    float between(float a, float b) { return a + (b - a) * static_cast<float>(mRandom()) / 4294967296.0f; }
    Point point() { return { between(0, 70), between(0, 70) }; }

    std::shared_ptr<Path> path()
    {
        auto path = Path::path();
        const int subpaths = chance(6) ? 2 : 1;
        for (int k = 0; k < subpaths; ++k) {
            path->moveTo(point());
            for (float n = below(5) + 1; n > 0; --n) {
                if (chance(3))
                    path->curveTo(point(), point(), point());
                else
                    path->lineTo(point());
            }
            if (chance(3))
                path->close();
        }
        return path;
    }

    std::shared_ptr<VXRStroke> stroke()
    {
        const float lengths[] = { between(0, 4), between(0.2f, 4), between(0, 4), between(0.2f, 4) };
        auto pattern = chance(2) ? VXRStrokePattern::solidPattern()
                                 : VXRStrokePattern::strokePatternWithPatternCountPhase(
                                     lengths, chance(2) ? 2 : 4, between(-3, 3));
        auto stroke = VXRStroke::strokeWithColorWidthCapJoinPattern(Color::blackColor(), between(0.1f, 18),
            static_cast<int>(below(3)), static_cast<int>(below(3)), std::move(pattern));
        stroke->setMiterLimit(between(1, 10));
        return chance(3) ? manipulated(*stroke) : stroke;
    }

    /// Up to three steps, of which one in three swells the line, and one time in three a stroker.
    std::shared_ptr<VXRStroke> manipulated(const VXRStroke& plain)
    {
        VXRManipulatedStroke::Manipulations steps;
        for (float n = below(3) + 1; n > 0; --n) {
            const auto seed = static_cast<std::uint32_t>(mRandom());
            switch (mRandom() % 6) {
            case 0:
                steps.push_back(std::make_shared<VXROffsetOddWidthPathManipulation>());
                break;
            case 1:
                steps.push_back(std::make_shared<VXROutsetPathManipulation>(between(-1, 1)));
                break;
            case 2:
                steps.push_back(std::make_shared<VXROverstrokePathManipulation>(between(0, 2), seed));
                break;
            case 3:
                steps.push_back(std::make_shared<VXRRoundedPathManipulation>(between(0, 3)));
                break;
            case 4:
                steps.push_back(
                    std::make_shared<VXRVaryWidthPathManipulation>(between(0, 1), between(1, 9), seed));
                break;
            default:
                steps.push_back(
                    std::make_shared<VXRWobblyPathManipulation>(between(0, 1), between(1, 9), seed));
            }
        }
        std::shared_ptr<VXRPathStroker> stroker;
        if (chance(6))
            stroker = std::make_shared<VXROutsetPathStroker>(3, between(0.5f, 2), between(0.2f, 1));
        else if (chance(6))
            stroker = std::make_shared<VXRPatternedPathStroker>(
                Path::pathWithRect({ 0.2f, -0.8f, 1, 1.6f }), 1.5f, chance(2));
        auto stroke = VXRManipulatedStroke::strokeWithColorWidthManipulationsStroker(
            Color::blackColor(), std::min(plain.width(), 8.0f), std::move(steps), std::move(stroker));
        stroke->setCap(plain.cap());
        stroke->setJoin(plain.join());
        stroke->setMiterLimit(plain.miterLimit());
        stroke->setPattern(plain.pattern());
        return stroke;
    }

    std::shared_ptr<VXRLineEnd> lineEnd()
    {
        static const std::shared_ptr<VXRLineEnd> kinds[]
            = { VXRLineEnd::simpleArrow(), VXRLineEnd::openArrow(), VXRLineEnd::filledArrow(),
                  VXRLineEnd::filledDiamond(), VXRLineEnd::filledCircle(), nullptr };
        return kinds[mRandom() % 6];
    }

    std::mt19937 mRandom;
};

/// Whether all that is painted lies in the rectangle, in pixels, y down; none where nothing is painted.
std::optional<bool> paintsWithin(const BitmapContext& context, const Rect& allowed)
{
    std::optional<bool> within;
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x) {
            if (context.pixels()[y * side + x])
                within = within.value_or(true)
                    && rectContainsRect(allowed, Rect(static_cast<float>(x), static_cast<float>(y), 1, 1));
        }
    return within;
}

} // namespace

TEST(PaintedArea, LiesWithinTheErasableBounds)
{
    ShapeMaker maker(20);
    int painted = 0;
    for (int i = 0; i < 2000; ++i) {
        const auto shape = maker.make();
        const auto context = BitmapContext::createBitmap(side, side);
        {
            const CurrentContextScope scope(*context, true, true);
            context->translate(0, side);
            context->scale(1, -1);
            shape->renderLayeredIntoContext(*context);
        }
        const auto within = paintsWithin(*context, integralRect(shape->erasableBounds()));
        painted += within.has_value();
        EXPECT_TRUE(within.value_or(true)) << "shape " << i << " erases " << shape->erasableBounds() << "\n"
                                           << text(*shape->transformedPath());
    }
    EXPECT_GT(painted, 1500);
}
