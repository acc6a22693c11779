#include <vxr/platform/graphics/raster/PatternSource.h>

#include <vxr/platform/graphics/EngineContext.h>
#include <vxr/platform/graphics/Pattern.h>
#include <vxr/platform/graphics/PatternCells.h>
#include <vxr/platform/graphics/raster/RasterEngine.h>

#include <cstring>

namespace vxr {

namespace {

constexpr double maxPeriodPixels = 1 << 22; ///< larger periods are painted where they are seen
constexpr double wholePixels = 1e-3; ///< steps this close to whole pixels are
constexpr double leastCellPixels = 64; ///< smaller cells are drawn once and repeated
constexpr double leastCellSide = 4;
constexpr double mostCells = 1 << 16; ///< drawn one by one, however the cells are skewed
constexpr double leastPixelsPerCell = 8; ///< of an area, for each cell that is drawn into it
constexpr double mostOverlap = 8; ///< cells that may lie over one another along an axis
constexpr double leastPixels = 8; ///< a repeated cell is drawn in, to be averaged
constexpr double leastStep = 1; ///< of a repeated cell in pixels
constexpr double mostPixels = 1 << 11; ///< a repeated cell is drawn in, along either side

struct PixelBuffer {
    IntRect box;
    std::vector<std::uint32_t> pixels;

    explicit PixelBuffer(const IntRect& extents)
        : box(extents)
        , pixels(static_cast<std::size_t>(extents.width()) * static_cast<std::size_t>(extents.height()))
    {
    }
    EngineContext<Context> context(double deviceHeight)
    {
        return EngineContext<Context>(
            std::make_unique<RasterEngine>(pixels.data(), box.width(), box, deviceHeight));
    }
    const std::uint32_t* row(int y) const
    {
        return pixels.data() + static_cast<std::ptrdiff_t>(y - box.y0) * box.width();
    }
};

/// What an engine keeps of a pattern between two uses.
struct RasterPatternCache {
    AffineTransform toDevice;
    double deviceHeight = 0;
    std::shared_ptr<const PixelBuffer> pixels;
};

DeviceBox boundsOf(const DeviceMatrix& m, double x0, double y0, double x1, double y1)
{
    DeviceBox bounds = inverseBox();
    for (const Vec2 corner : { Vec2(x0, y0), Vec2(x1, y0), Vec2(x0, y1), Vec2(x1, y1) }) {
        const Vec2 p = m.map(corner);
        bounds.include(p.x, p.y);
    }
    return bounds;
}

int remainder(int value, int period)
{
    const int r = value % period;
    return r < 0 ? r + period : r;
}

/// Pixels where they lie, all of what is asked for.
class PaintedSource final : public SpanSource {
public:
    explicit PaintedSource(std::shared_ptr<const PixelBuffer> pixels)
        : mPixels(std::move(pixels))
    {
    }
    const std::uint32_t* span(int x, int y, int, std::uint32_t*) override
    {
        return mPixels->row(y) + (x - mPixels->box.x0);
    }

private:
    std::shared_ptr<const PixelBuffer> mPixels;
};

/// A box of pixels repeated by its own size.
class TiledSource final : public SpanSource {
public:
    explicit TiledSource(std::shared_ptr<const PixelBuffer> period)
        : mPeriod(std::move(period))
    {
    }
    const std::uint32_t* span(int x, int y, int count, std::uint32_t* buffer) override
    {
        const IntRect& box = mPeriod->box;
        const std::uint32_t* row = mPeriod->row(box.y0 + remainder(y - box.y0, box.height()));
        int from = remainder(x - box.x0, box.width());
        if (from + count <= box.width())
            return row + from;
        for (int done = 0; done < count; from = 0) {
            const int part = std::min(count - done, box.width() - from);
            std::memcpy(buffer + done, row + from, 4 * static_cast<std::size_t>(part));
            done += part;
        }
        return buffer;
    }

private:
    std::shared_ptr<const PixelBuffer> mPeriod;
};

/// A box of pixels that some map repeats, mixed from the nearest four.
class MappedSource final : public SpanSource {
public:
    MappedSource(std::shared_ptr<const PixelBuffer> period, DeviceMatrix toDevice)
        : mPeriod(std::move(period))
        , mAnchor({ toDevice.x0, toDevice.y0 })
    {
        toDevice.x0 = mAnchor.rest.x;
        toDevice.y0 = mAnchor.rest.y;
        mToPeriod = toDevice.inverted();
    }
    const std::uint32_t* span(int x, int y, int count, std::uint32_t* buffer) override
    {
        for (int i = 0; i < count; ++i)
            buffer[i] = colorAt(mToPeriod.map(Vec2(x - mAnchor.x + i + 0.5, y - mAnchor.y + 0.5)));
        return buffer;
    }

private:
    std::uint32_t colorAt(Vec2 p) const
    {
        const IntRect& box = mPeriod->box;
        const auto split = [](double v, int period, int& at, unsigned& weight) {
            const double wrapped = v - std::floor(v / period) * period;
            const double whole = std::floor(wrapped);
            weight = static_cast<unsigned>((wrapped - whole) * 256);
            at = remainder(static_cast<int>(whole), period);
        };
        int column = 0, line = 0;
        unsigned right = 0, down = 0;
        split(p.x - 0.5, box.width(), column, right);
        split(p.y - 0.5, box.height(), line, down);
        const std::uint32_t* above = mPeriod->row(line);
        const std::uint32_t* below = mPeriod->row(remainder(line + 1, box.height()));
        const int next = remainder(column + 1, box.width());
        std::uint32_t mixed = 0;
        for (int shift = 0; shift < 32; shift += 8) {
            const auto byte = [shift](std::uint32_t v) { return v >> shift & 255; };
            const unsigned top = byte(above[column]) * (256 - right) + byte(above[next]) * right;
            const unsigned bottom = byte(below[column]) * (256 - right) + byte(below[next]) * right;
            mixed |= ((top * (256 - down) + bottom * down + 32768) >> 16) << shift;
        }
        return mixed;
    }

    std::shared_ptr<const PixelBuffer> mPeriod;
    DeviceAnchor mAnchor;
    DeviceMatrix mToPeriod;
};

/// The mean of each `factor` x `factor` pixels.
std::shared_ptr<const PixelBuffer> reduced(const PixelBuffer& fine, int factor)
{
    const auto result = std::make_shared<PixelBuffer>(
        IntRect { 0, 0, fine.box.width() / factor, fine.box.height() / factor });
    const auto area = static_cast<unsigned>(factor * factor);
    for (int y = 0; y < result->box.height(); ++y) {
        for (int x = 0; x < result->box.width(); ++x) {
            unsigned sums[4] {};
            for (int i = 0; i < factor * factor; ++i) {
                const std::uint32_t pixel = fine.row(y * factor + i / factor)[x * factor + i % factor];
                for (int channel = 0; channel < 4; ++channel)
                    sums[channel] += pixel >> 8 * channel & 255;
            }
            std::uint32_t mean = 0;
            for (int channel = 0; channel < 4; ++channel)
                mean |= ((sums[channel] + area / 2) / area) << 8 * channel;
            result->pixels[static_cast<std::size_t>(y * result->box.width() + x)] = mean;
        }
    }
    return result;
}

/// A pattern as it lies in the device space of one context. Which way it is painted depends on its own size
/// there alone.
class PlacedPattern {
public:
    PlacedPattern(const Pattern& pattern, const AffineTransform& toDevice, double deviceHeight)
        : mPattern(pattern)
        , mToDevice(toDevice)
        , mMatrix(toDevice, deviceHeight)
        , mDeviceHeight(deviceHeight)
        , mXStep(usablePatternStep(pattern.xStep(), pattern.cell().size.width))
        , mYStep(usablePatternStep(pattern.yStep(), pattern.cell().size.height))
    {
    }

    std::unique_ptr<SpanSource> source(const IntRect& area) const
    {
        const IntRect period = wholePeriod();
        if (!period.isEmpty() && cellsIn(period).count() <= mostCells)
            return std::make_unique<TiledSource>(keptPeriod(period));
        const double columnStep = std::hypot(mMatrix.xx, mMatrix.yx) * mXStep;
        const double rowStep = std::hypot(mMatrix.xy, mMatrix.yy) * mYStep;
        const double pixels = std::abs(mMatrix.determinant()) * mXStep * mYStep;
        if (pixels >= std::max(leastCellPixels, leastPixelsPerCell * overlap()) && columnStep >= leastCellSide
            && rowStep >= leastCellSide && cellsIn(area).count() <= mostCells)
            return std::make_unique<PaintedSource>(painted(area));
        return repeatedCell(columnStep, rowStep);
    }

private:
    /// Indices of cells; the cell (i, j) is moved by i and j steps.
    struct Range {
        double i0, i1, j0, j1;

        /// Infinite where indices are no whole numbers any more.
        double count() const
        {
            constexpr double farthest = 1 << 30;
            const bool isNear = std::max({ -i0, i1, -j0, j1 }) < farthest;
            return isNear ? (i1 - i0 + 1) * (j1 - j0 + 1) : HUGE_VAL;
        }
    };

    /// How many cells lie over one another.
    double overlap() const
    {
        const auto along
            = [](double cell, double step) { return std::ceil(std::min(cell / step, mostOverlap)); };
        return along(mPattern.cell().size.width, mXStep) * along(mPattern.cell().size.height, mYStep);
    }

    /// The cells that reach into a box, not those that touch it.
    Range cellsIn(const IntRect& box) const
    {
        const DeviceBox area = boundsOf(mMatrix.inverted(), box.x0, box.y0, box.x1, box.y1);
        const Rect& cell = mPattern.cell();
        const auto first = [](double low, double least, double most, double step) {
            return std::max(
                std::floor((low - most) / step) + 1, std::floor((low - least) / step) - mostOverlap);
        };
        return { first(area.x0, cell.minX(), cell.maxX(), mXStep),
            std::ceil((area.x1 - cell.minX()) / mXStep) - 1, first(area.y0, cell.minY(), cell.maxY(), mYStep),
            std::ceil((area.y1 - cell.minY()) / mYStep) - 1 };
    }

    /// A box of one period when the steps are whole pixels along the axes; empty otherwise.
    IntRect wholePeriod() const
    {
        constexpr double farthest = 1 << 24;
        const double width = std::abs(mMatrix.xx) * mXStep, height = std::abs(mMatrix.yy) * mYStep;
        const double skew = std::abs(mMatrix.xy) * mYStep + std::abs(mMatrix.yx) * mXStep;
        const double w = std::round(width), h = std::round(height);
        if (std::abs(width - w) > wholePixels || std::abs(height - h) > wholePixels || skew > wholePixels
            || w < 1 || h < 1 || w * h > maxPeriodPixels || !(std::abs(mMatrix.x0) < farthest)
            || !(std::abs(mMatrix.y0) < farthest))
            return {};
        const int x = int(std::floor(mMatrix.x0)), y = int(std::floor(mMatrix.y0));
        return { x, y, x + int(w), y + int(h) };
    }

    std::shared_ptr<const PixelBuffer> keptPeriod(const IntRect& period) const
    {
        auto& cache = mPattern.engineCaches().findOrMake<RasterPatternCache>();
        if (!cache.pixels || cache.toDevice != mToDevice || cache.deviceHeight != mDeviceHeight
            || cache.pixels->box != period)
            cache = { mToDevice, mDeviceHeight, painted(period) };
        return cache.pixels;
    }

    /// Each cell drawn where it lies.
    std::shared_ptr<const PixelBuffer> painted(const IntRect& box) const
    {
        auto buffer = std::make_shared<PixelBuffer>(box);
        auto context = buffer->context(mDeviceHeight);
        context.setBaseTransform(mToDevice);
        const Range range = cellsIn(box);
        for (double j = range.j0; j <= range.j1; ++j)
            for (double i = range.i0; i <= range.i1; ++i)
                drawPatternCell(
                    context, mPattern, { static_cast<float>(i * mXStep), static_cast<float>(j * mYStep) });
        return buffer;
    }

    /// One period drawn in a whole number of pixels, a small one by way of more, and mapped to the device.
    std::unique_ptr<SpanSource> repeatedCell(double columnStep, double rowStep) const
    {
        const auto pixelsFor
            = [](double step) { return static_cast<int>(std::clamp(std::ceil(step), 1.0, mostPixels)); };
        if (!std::isfinite(columnStep) || !std::isfinite(rowStep))
            return nullptr;
        const int columns = pixelsFor(columnStep), rows = pixelsFor(rowStep);
        const int finer = static_cast<int>(std::ceil(leastPixels / std::min({ columns, rows, 8 })));
        PixelBuffer fine({ 0, 0, columns * finer, rows * finer });
        auto context = fine.context(rows * finer);
        drawPatternPeriod(context, mPattern, static_cast<float>(columns * finer / mXStep),
            static_cast<float>(rows * finer / mYStep));
        // Steps far below a pixel are drawn longer: no eye can tell, and a pixel's colour is a mean anyway.
        const auto visible = [](double step, double pixels) {
            return pixels >= leastStep ? step : step * leastStep / pixels;
        };
        DeviceMatrix toCell;
        toCell.xx = visible(mXStep, columnStep) / columns;
        toCell.yy = -visible(mYStep, rowStep) / rows;
        toCell.x0 = mPattern.cell().minX();
        toCell.y0 = mPattern.cell().minY() - toCell.yy * rows;
        return std::make_unique<MappedSource>(reduced(fine, finer), mMatrix.after(toCell));
    }

    const Pattern& mPattern;
    AffineTransform mToDevice;
    DeviceMatrix mMatrix;
    double mDeviceHeight;
    double mXStep, mYStep;
};

} // namespace

std::unique_ptr<SpanSource> makePatternSource(
    const Pattern& pattern, const AffineTransform& base, double deviceHeight, const IntRect& area)
{
    const AffineTransform toDevice = concat(pattern.matrix(), base);
    if (!toDevice.inverted() || pattern.cell().isEmpty() || area.isEmpty())
        return nullptr;
    return PlacedPattern(pattern, toDevice, deviceHeight).source(area);
}

} // namespace vxr
