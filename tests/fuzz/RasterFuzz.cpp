// Random drawing into a bitmap: nothing crashes or hangs, and a part that is drawn alone shows the pixels of
// the whole.

#include <tests/fuzz/FuzzInput.h>
#include <vxr/platform/graphics/BitmapContext.h>
#include <vxr/platform/graphics/Image.h>
#include <vxr/platform/graphics/Pattern.h>
#include <vxr/platform/graphics/Shading.h>
#include <vxr/platform/graphics/path/Path.h>

#include <array>
#include <cstring>

using namespace vxr;
using namespace vxr::testing;

namespace {

constexpr int side = 48;
constexpr int mostOperations = 40, mostElements = 24;

class Drawing : public FuzzInput {
public:
    Drawing(const std::uint8_t* data, std::size_t size, Form form, Context& context)
        : FuzzInput(data, size)
        , mForm(form)
        , mContext(context)
    {
    }

    void run()
    {
        for (int i = 0; i < mostOperations && left(); ++i)
            operate(byte() % 20);
        mContext.unwindToDepth(mDepth);
    }

private:
    float number()
    {
        if (mForm == Form::Lattice)
            return float(byte()) / 4 - 8;
        if (mForm == Form::Raw)
            return next<float>();
        const int high = byte();
        return float(high * 256 + byte()) / 600 - 20;
    }
    Point point()
    {
        const float x = number();
        return { x, number() };
    }
    Rect rect()
    {
        const Point origin = point();
        const float width = number();
        return { origin, { width, number() } };
    }
    ColorValue color()
    {
        const std::uint8_t bits = byte();
        return ColorValue::rgb(
            float(bits & 3) / 3, float(bits >> 2 & 3) / 3, float(bits >> 4 & 3) / 3, float(bits >> 6) / 3);
    }
    WindingRule rule() { return byte() % 2 ? WindingRule::EvenOdd : WindingRule::NonZero; }
    /// Moderate scales: what can be seen of a page at any zoom.
    float factor() { return mForm == Form::Raw ? next<float>() : float(byte() + 1) / 64; }

    Path path()
    {
        Path path;
        for (int left = byte() % mostElements; left >= 0; --left) {
            switch (byte() % 8) {
            case 0:
                path.moveTo(point());
                break;
            case 1:
                path.close();
                break;
            case 2: {
                const Point control1 = point(), control2 = point();
                path.curveTo(control1, control2, point());
                break;
            }
            case 3:
                path.appendRect(rect());
                break;
            default:
                path.lineTo(point());
            }
        }
        return path;
    }

    LineStyle style()
    {
        LineStyle style;
        style.width = number() / 2 + 5;
        const std::uint8_t kinds = byte();
        style.cap = static_cast<LineCap>(kinds % 3);
        style.join = static_cast<LineJoin>(kinds / 4 % 3);
        style.miterLimit = number();
        for (int left = kinds / 16 % 4; left > 0; --left)
            style.dash.push_back(mForm == Form::Raw ? number() : number() + 21);
        style.dashPhase = kinds & 64 ? number() : 0;
        return style;
    }

    std::shared_ptr<const Image> image()
    {
        const int width = 1 + byte() % 20, height = 1 + byte() % 20;
        std::vector<std::uint32_t> pixels(std::size_t(width) * std::size_t(height));
        std::uint32_t seed = next<std::uint16_t>();
        for (std::uint32_t& pixel : pixels)
            pixel = 0xff000000u | (seed = seed * 1664525u + 1013904223u) >> 8;
        ImageLayout layout = ImageLayout::nativeARGB(width, height, 4 * std::size_t(width));
        layout.smooth = byte() % 4 == 0;
        return Image::createWithCopy(layout, pixels.data(), 4 * pixels.size());
    }

    std::shared_ptr<const Shading> shading()
    {
        static const auto function = std::make_shared<const ShadingFunction>(
            nullptr,
            [](void*, const float* t, float* out) {
                out[0] = *t < 0.3f;
                out[1] = *t;
                out[2] = 1 - *t;
                out[3] = 1 - *t / 3;
            },
            nullptr);
        const std::uint8_t kinds = byte();
        const Point start = point(), end = point();
        if (kinds & 4)
            return Shading::createAxial(ColorSpace::deviceRGB(), start, end, function, kinds & 1, kinds & 2);
        const float radius = number() + 8;
        return Shading::createRadial(
            ColorSpace::deviceRGB(), start, radius, end, number() + 8, function, kinds & 1, kinds & 2);
    }

    std::shared_ptr<const Pattern> pattern()
    {
        const Rect cell = rect();
        const float xStep = number() + 9;
        return std::make_shared<const Pattern>(
            cell, AffineTransform::makeRotation(number()), xStep, number() + 9, [](Context& c) {
                c.setFillColor(ColorValue::rgb(1, 0, 1));
                c.fillRect({ 0, 0, 3, 2 });
            });
    }

    void operate(int kind)
    {
        switch (kind) {
        case 0:
            mContext.saveState();
            break;
        case 1:
            if (mContext.stateDepth() > mDepth)
                mContext.restoreState();
            break;
        case 2:
            mContext.translate(number(), number());
            break;
        case 3: {
            const float across = factor();
            mContext.scale(byte() % 4 ? across : -across, factor());
            break;
        }
        case 4:
            mContext.rotate(number());
            break;
        case 5:
            mContext.clipToPath(path(), rule());
            break;
        case 6:
            mContext.clipToRect(rect());
            break;
        case 7:
            mContext.setFillColor(color());
            mContext.setStrokeColor(color());
            break;
        case 8:
            mContext.setFillPattern(pattern(), float(byte()) / 255);
            break;
        case 9:
            mContext.setAlpha(float(byte()) / 255);
            mContext.setCompositeOperation(static_cast<CompositeOperation>(byte() % 3));
            break;
        case 10:
            mContext.setShouldAntialias(byte() % 2);
            mContext.setFlatness(factor());
            mContext.setInterpolationQuality(static_cast<InterpolationQuality>(byte() % 4));
            break;
        case 11:
            mContext.setShadow(
                { number(), number() }, float(byte()) / 8, color()); // its pixels are what it costs
            break;
        case 12:
            mContext.clearShadow();
            break;
        case 13:
            mContext.beginTransparencyLayer();
            break;
        case 14:
            if (mContext.stateDepth() > mDepth)
                mContext.endTransparencyLayer();
            break;
        case 15:
            mContext.strokePath(path(), style());
            break;
        case 16: {
            const Rect place = rect();
            if (const auto drawn = image())
                mContext.drawImage(place, *drawn);
            break;
        }
        case 17:
            if (const auto drawn = shading())
                mContext.drawShading(*drawn);
            break;
        case 18:
            mContext.fillRect(rect());
            break;
        default:
            mContext.fillPath(path(), rule());
        }
    }

    Form mForm;
    Context& mContext;
    std::size_t mDepth = mContext.stateDepth();
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzInput head(data, size);
    const Form form = formOf(head.byte());
    const int x = head.byte() % side, y = head.byte() % side;
    const int width = 1 + head.byte() % (side - x), height = 1 + head.byte() % (side - y);
    const std::size_t begin = std::min<std::size_t>(size, 5);

    const auto whole = BitmapContext::createBitmap(side, side, BitmapEngine::Raster);
    Drawing(data + begin, size - begin, form, *whole).run();
    // Numbers that nobody draws with may lose their last digits in a move; a part may then differ.
    if (form == Form::Raw)
        return 0;
    const auto part = BitmapContext::createBitmap(side, side, BitmapEngine::Raster);
    part->clipToRect({ float(x), float(side - y - height), float(width), float(height) });
    Drawing(data + begin, size - begin, form, *part).run();
    const std::size_t stride = whole->bytesPerRow() / 4;
    for (int row = y; row < y + height; ++row)
        expect(std::memcmp(whole->pixels() + std::size_t(row) * stride + std::size_t(x),
                   part->pixels() + std::size_t(row) * stride + std::size_t(x), 4 * std::size_t(width))
                == 0,
            "a part that is drawn alone shows the pixels of the whole");
    return 0;
}
