#pragma once

#include <vxr/compositing/canvas/VXRCanvas.h>
#include <vxr/fills/VXRAngleGradient.h>
#include <vxr/fills/VXRShadow.h>
#include <vxr/fills/VXRTransformGradient.h>
#include <vxr/geometry/Color.h>
#include <vxr/images/VXRImageFill.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/graphics/Image.h>
#include <vxr/platform/views/ScrollView.h>
#include <vxr/platform/views/Window.h>
#include <vxr/protocols/VXRRenderableLayer.h>
#include <vxr/renderables/VXRLineEnd.h>
#include <vxr/renderables/VXRReflectionRenderable.h>
#include <vxr/renderables/VXRRegularPolygon.h>
#include <vxr/renderables/VXRShape.h>
#include <vxr/renderables/VXRStar.h>
#include <vxr/strokes/VXRStroke.h>
#include <vxr/strokes/VXRStrokePattern.h>

#include <algorithm>
#include <random>

namespace vxr::test {

/// A canvas that shows a list, as an application's canvas does.
class PageCanvas : public VXRCanvas {
public:
    using VXRCanvas::VXRCanvas;
    RenderableList page;
    const RenderableList& objectsToRender() const override { return page; }

    void add(std::shared_ptr<VXRRenderable> renderable)
    {
        renderable->setCanvas(this);
        renderable->invalidate();
        page.push_back(std::move(renderable));
    }
    /// A reflection of an object of the page, in front of everything.
    void reflect(const std::shared_ptr<VXRRenderable>& reflected, float opacity)
    {
        auto reflection = std::make_shared<VXRReflectionRenderable>();
        reflection->setStartOpacity(opacity);
        reflection->setRenderableToReflect(reflected);
        add(std::move(reflection));
    }
    /// Has the reflections of a changed object follow it.
    void updateReflectionsOf(const VXRRenderable& changed)
    {
        for (const auto& object : page) {
            const auto reflection = std::dynamic_pointer_cast<VXRReflectionRenderable>(object);
            if (!reflection || reflection->reflectedRenderable().get() != &changed)
                continue;
            reflection->invalidate();
            reflection->updateOffset();
            updateReflectionsOf(*reflection);
        }
    }
    void remove(std::size_t index)
    {
        page[index]->erase();
        page[index]->setCanvas(nullptr);
        page.erase(page.begin() + std::ptrdiff_t(index));
    }
};

/// A page in a scroll view in a window.
struct PageScene {
    Window window;
    std::shared_ptr<ScrollView> scrollView;
    std::shared_ptr<PageCanvas> canvas;

    PageScene(Size windowSize, Size pageSize)
        : window({ { 0, 0 }, windowSize })
        , scrollView(std::make_shared<ScrollView>(Rect { { 0, 0 }, windowSize }))
        , canvas(std::make_shared<PageCanvas>(Rect { { 0, 0 }, pageSize }))
    {
        window.contentView()->addSubview(scrollView);
        scrollView->setDocumentView(canvas);
        canvas->setUsesCompositor(true);
        canvas->setBackgroundColor(Color::colorWithCalibratedRGB(0.8f, 1, 1));
    }

    std::vector<std::uint32_t> pixels() const
    {
        return { window.pixels(), window.pixels() + window.width() * window.height() };
    }
    std::vector<std::uint32_t> redrawn()
    {
        window.display();
        return pixels();
    }
};

/// Draws within an oval; with a shadow or an opacity, within it in a layer.
class ClippedShape : public VXRShape {
public:
    void renderIntoContext(Context& context) override
    {
        const StateSaver saved(context);
        Path::pathWithOvalInRect(geometricBounds())->addClip();
        VXRShape::renderIntoContext(context);
    }
};

/// A view that shows through, and counts nothing.
class PlainView : public View {
public:
    PlainView(const Rect& frame, const ColorValue& painted)
        : View(frame)
        , color(painted)
    {
    }
    ColorValue color;
    void drawRect(const Rect& r) override
    {
        currentDrawingPort().setFillColor(color);
        currentDrawingPort().fillRect(r);
    }
};

/// Makes and changes objects of all kinds, the same ones for the same seed.
class RandomPage {
public:
    RandomPage(unsigned seed, Size page)
        : mRandom(seed)
        , mPage(page)
    {
    }

    bool makesPictures = true; ///< which have no bytes that a document could keep

    int below(int n) { return int(mRandom() % unsigned(n)); }
    float between(float low, float high) { return low + (high - low) * float(mRandom() % 100000) / 100000; }
    bool oneIn(int n) { return below(n) == 0; }

    std::shared_ptr<Color> color()
    {
        return Color::colorWithCalibratedRGB(
            between(0, 1), between(0, 1), between(0, 1), oneIn(3) ? between(0.2f, 1) : 1);
    }
    std::shared_ptr<Color> opaqueColor()
    {
        return Color::colorWithCalibratedRGB(between(0, 1), between(0, 1), between(0, 1));
    }
    std::shared_ptr<VXRShapePainter> fill()
    {
        switch (below(9)) {
        case 0:
            return nullptr;
        case 6:
            return makesPictures ? imageFill() : color();
        case 7:
        case 8:
            return transformGradient();
        case 1:
        case 2:
            return VXRAngleGradient::linearGradientWithStartColorEndColor(color(), color());
        case 3:
            return VXRAngleGradient::radialGradientWithStartColorEndColor(color(), color());
        default:
            return color();
        }
    }
    std::shared_ptr<VXRShapePainter> imageFill()
    {
        const int width = 1 + below(60), height = 1 + below(60);
        const std::uint32_t transparency = oneIn(2) ? 0 : 0xff000000;
        std::vector<std::uint32_t> pixels;
        for (int i = 0; i < width * height; ++i) {
            const std::uint32_t grey = 0x10101 * std::uint32_t(mRandom() % 256);
            pixels.push_back(transparency | (oneIn(3) ? 0 : 0xff000000 | grey));
        }
        auto fill = VXRImageFill::imageFillWithImageRef(
            Image::createWithCopy(ImageLayout::nativeARGB(width, height, 4 * std::size_t(width)),
                pixels.data(), 4 * pixels.size()));
        fill->setTechnique(below(5));
        return fill;
    }
    std::shared_ptr<VXRShapePainter> transformGradient()
    {
        auto gradient = below(2)
            ? VXRTransformGradient::linearGradientWithStartColorEndColor(color(), color())
            : VXRTransformGradient::radialGradientWithStartColorEndColor(color(), color());
        gradient->setStartPoint({ between(0, 60), between(0, 60) });
        gradient->setEndPoint({ between(0, 90), between(0, 70) });
        gradient->insertStopAtFraction(between(0, 1));
        return gradient;
    }
    std::shared_ptr<VXRStrokePattern> dashes()
    {
        const float lengths[] = { between(0, 25), between(0.5f, 6), between(0, 5), between(0.5f, 6) };
        return oneIn(2)
            ? VXRStrokePattern::mediumDashPattern()
            : VXRStrokePattern::strokePatternWithPatternCountPhase(lengths, oneIn(2) ? 2 : 4, between(-3, 3));
    }
    std::shared_ptr<VXRStroke> stroke()
    {
        if (oneIn(4))
            return nullptr;
        auto pattern = oneIn(3) ? dashes() : VXRStrokePattern::solidPattern();
        const float width = oneIn(2) ? float(1 + below(4)) : between(0.2f, oneIn(4) ? 30 : 6);
        return VXRStroke::strokeWithColorWidthCapJoinPattern(color(), width, below(3), below(3), pattern);
    }
    std::shared_ptr<VXRShadow> shadow()
    {
        if (oneIn(2))
            return nullptr;
        return VXRShadow::shadowWithAngleOffsetRadiusOpacityColor(
            between(0, 360), between(0, 20), below(10), between(0.3f, 1), color());
    }
    Rect frame()
    {
        const float width = between(5, 90), height = between(5, 70);
        return { between(-20, mPage.width - 40), between(-20, mPage.height - 40), width, height };
    }

    std::shared_ptr<VXRShape> shape()
    {
        std::shared_ptr<VXRShape> made;
        const Rect r = frame();
        switch (below(6)) {
        case 0:
            made = VXRShape::shapeWithOvalInRect(r);
            break;
        case 1:
            made = VXRStar::starWithInnerRadiusOuterRadiusNumberOfPoints(
                between(5, 20), between(20, 40), 3 + below(6));
            made->offsetTo(r.origin);
            break;
        case 2:
            made = VXRRegularPolygon::regularPolygonWithRadiusNumberOfSides(between(8, 40), 3 + below(7));
            made->offsetTo(r.origin);
            break;
        case 3: {
            auto line = Path::path();
            line->moveTo(r.origin);
            line->curveTo({ r.maxX(), r.minY() }, { r.minX(), r.maxY() }, { r.maxX(), r.maxY() });
            made = VXRShape::shapeWithBezierPath(line);
            made->setHeadLineEnd(oneIn(2) ? VXRLineEnd::filledArrow() : VXRLineEnd::openArrow());
            made->setTailLineEnd(oneIn(2) ? VXRLineEnd::filledCircle() : nullptr);
            break;
        }
        case 4:
            made = VXRShape::shapeWithRect<ClippedShape>(r);
            break;
        default:
            made = VXRShape::shapeWithRect(oneIn(2) ? integralRect(r) : r);
        }
        restyle(*made);
        if (oneIn(3))
            made->rotateByRadiansPivot(between(0, 6), made->center());
        return made;
    }
    void restyle(VXRShape& shape)
    {
        shape.setFill(fill());
        shape.setStroke(stroke());
        shape.setShadow(shadow());
        shape.setOpacity(oneIn(4) ? between(0.2f, 1) : 1);
    }

private:
    std::mt19937 mRandom;
    Size mPage;
};

} // namespace vxr::test
