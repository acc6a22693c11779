#include <vxr/platform/graphics/EngineContext.h>
#include <vxr/platform/graphics/Pattern.h>
#include <vxr/platform/graphics/PatternCells.h>
#include <vxr/platform/graphics/cairo/CairoEngine.h>

#include <utility>

namespace vxr {

namespace {

constexpr double maxPeriodPixels = 1 << 22; ///< larger cells are painted where they are seen
constexpr double maxPaintedCells = 4096; ///< more are small, and are repeated as one
constexpr double wholePixels = 1e-3; ///< steps this close to whole pixels are
constexpr double unitsOnPaper = 16; ///< of a repeated cell for one of its own, at least
constexpr double leastPixels = 8; ///< a repeated cell is drawn in on a bitmap, to be averaged
constexpr double leastStep = 1; ///< of a repeated cell in pixels
constexpr double maxUnits = 1 << 14;

/// What is kept of a pattern between two uses.
struct CairoPatternCache {
    AffineTransform cellTransform; ///< that `cell` was recorded under
    CairoSurfacePtr cell;
    double columns = 0, rows = 0; ///< that `period` was recorded in
    CairoSurfacePtr period;
};

CairoPatternCache& cacheOf(const Pattern& pattern)
{
    return pattern.engineCaches().findOrMake<CairoPatternCache>();
}

DeviceBox boundsOf(const cairo_matrix_t& matrix, double x0, double y0, double x1, double y1)
{
    DeviceBox bounds = inverseBox();
    for (auto [x, y] : { std::pair(x0, y0), std::pair(x1, y0), std::pair(x0, y1), std::pair(x1, y1) }) {
        cairo_matrix_transform_point(&matrix, &x, &y);
        bounds.include(x, y);
    }
    return bounds;
}

CairoSurfacePtr rasterized(cairo_surface_t* source, double width, double height, double scale)
{
    CairoSurfacePtr image(
        cairo_image_surface_create(CAIRO_FORMAT_ARGB32, static_cast<int>(width), static_cast<int>(height)));
    CairoPtr cr(cairo_create(image.get()));
    cairo_scale(cr.get(), scale, scale);
    cairo_set_source_surface(cr.get(), source, 0, 0);
    cairo_pattern_set_extend(cairo_get_source(cr.get()), CAIRO_EXTEND_PAD);
    cairo_paint(cr.get());
    return image;
}

/// A pattern as it lies in the device space of one context.
class PlacedPattern {
public:
    PlacedPattern(const Pattern& pattern, const AffineTransform& toDevice, double deviceHeight, bool onPaper)
        : mPattern(pattern)
        , mToDevice(toDevice)
        , mMatrix(cairoMatrix(toDevice, deviceHeight))
        , mXStep(usablePatternStep(pattern.xStep(), pattern.cell().size.width))
        , mYStep(usablePatternStep(pattern.yStep(), pattern.cell().size.height))
        , mOnPaper(onPaper)
    {
    }

    /// What covers `area`: cells in place while they are few, one cell repeated otherwise.
    CairoPatternPtr source(const DeviceBox& area) const
    {
        if (mOnPaper)
            return repeatedCell(mXStep * unitsOnPaper, mYStep * unitsOnPaper);
        const DeviceBox period = wholePeriod();
        const bool repeats
            = !period.isEmpty() && period.width() * period.height() < area.width() * area.height();
        const DeviceBox& box = repeats ? period : area;
        if (cellsIn(box).count() <= maxPaintedCells)
            return paintedCells(box, repeats ? CAIRO_EXTEND_REPEAT : CAIRO_EXTEND_NONE);
        return repeatedCell(
            std::hypot(mMatrix.xx, mMatrix.yx) * mXStep, std::hypot(mMatrix.xy, mMatrix.yy) * mYStep);
    }

private:
    /// Indices of cells; the cell (i, j) is moved by i and j steps.
    struct Range {
        double i0, i1, j0, j1;

        double count() const { return (i1 - i0 + 1) * (j1 - j0 + 1); }
    };

    Range cellsIn(const DeviceBox& box) const
    {
        cairo_matrix_t toCell = mMatrix;
        cairo_matrix_invert(&toCell);
        const DeviceBox area = boundsOf(toCell, box.x0, box.y0, box.x1, box.y1);
        const Rect& cell = mPattern.cell();
        return { std::floor((area.x0 - cell.maxX()) / mXStep), std::ceil((area.x1 - cell.minX()) / mXStep),
            std::floor((area.y0 - cell.maxY()) / mYStep), std::ceil((area.y1 - cell.minY()) / mYStep) };
    }

    /// A box of one period when the steps are whole pixels along the axes; empty otherwise.
    DeviceBox wholePeriod() const
    {
        const double width = std::abs(mMatrix.xx) * mXStep, height = std::abs(mMatrix.yy) * mYStep;
        const double skew = std::abs(mMatrix.xy) * mYStep + std::abs(mMatrix.yx) * mXStep;
        const double w = std::round(width), h = std::round(height);
        if (std::abs(width - w) > wholePixels || std::abs(height - h) > wholePixels || skew > wholePixels
            || w < 1 || h < 1 || w * h > maxPeriodPixels)
            return {};
        const double x = std::floor(mMatrix.x0), y = std::floor(mMatrix.y0);
        return { x, y, x + w, y + h };
    }

    /// The cell at the origin under the transform without its translation, recorded once.
    cairo_surface_t* recordedCell() const
    {
        CairoPatternCache& cache = cacheOf(mPattern);
        AffineTransform transform = mToDevice;
        transform.tX = transform.tY = 0;
        if (cache.cell && cache.cellTransform == transform)
            return cache.cell.get();
        const Rect& cell = mPattern.cell();
        const DeviceBox box
            = boundsOf(cairoMatrix(transform, 0), cell.minX(), cell.minY(), cell.maxX(), cell.maxY());
        cache.cellTransform = transform;
        cache.cell = recordDrawing(box.grown(1).roundedOut(), 0, mOnPaper, [&](Context& context) {
            context.setBaseTransform(transform);
            drawPatternCell(context, mPattern, {});
        });
        return cache.cell.get();
    }

    /// Pixels of `box`, each cell drawn where it lies.
    CairoPatternPtr paintedCells(const DeviceBox& box, cairo_extend_t extend) const
    {
        cairo_surface_t* cell = recordedCell();
        CairoSurfacePtr image(cairo_image_surface_create(
            CAIRO_FORMAT_ARGB32, static_cast<int>(box.width()), static_cast<int>(box.height())));
        cairo_surface_set_device_offset(image.get(), -box.x0, -box.y0);
        CairoPtr cr(cairo_create(image.get()));
        const Range range = cellsIn(box);
        for (double j = range.j0; j <= range.j1; ++j) {
            for (double i = range.i0; i <= range.i1; ++i) {
                double x = i * mXStep, y = j * mYStep;
                cairo_matrix_transform_point(&mMatrix, &x, &y);
                cairo_set_source_surface(cr.get(), cell, x, y);
                cairo_paint(cr.get());
            }
        }
        CairoPatternPtr source(cairo_pattern_create_for_surface(image.get()));
        cairo_pattern_set_extend(source.get(), extend);
        cairo_pattern_set_filter(source.get(), CAIRO_FILTER_NEAREST);
        return source;
    }

    /// One period recorded in a whole number of columns and rows, since the engine repeats by whole units;
    /// the matrix undoes the scale, so that the steps are exact.
    CairoPatternPtr repeatedCell(double columns, double rows) const
    {
        columns = std::ceil(std::clamp(columns, 1.0, maxUnits));
        rows = std::ceil(std::clamp(rows, 1.0, maxUnits));
        CairoPatternCache& cache = cacheOf(mPattern);
        const Rect& cell = mPattern.cell();
        if (!cache.period || cache.columns != columns || cache.rows != rows) {
            cache.columns = columns;
            cache.rows = rows;
            cache.period = periodOf(columns, rows);
        }
        cairo_matrix_t toDevice = mMatrix;
        cairo_matrix_translate(&toDevice, cell.minX(), cell.minY());
        cairo_matrix_scale(&toDevice, visibleStep(mXStep, mMatrix.xx, mMatrix.yx) / columns,
            -visibleStep(mYStep, mMatrix.xy, mMatrix.yy) / rows);
        cairo_matrix_translate(&toDevice, 0, -rows);
        if (cairo_matrix_invert(&toDevice) != CAIRO_STATUS_SUCCESS)
            return nullptr;
        CairoPatternPtr source(cairo_pattern_create_for_surface(cache.period.get()));
        cairo_pattern_set_matrix(source.get(), &toDevice);
        cairo_pattern_set_extend(source.get(), CAIRO_EXTEND_REPEAT);
        return source;
    }

    /// Steps far below a pixel are drawn longer: no eye can tell, and it takes no sums over thousands of
    /// cells to find a pixel's colour.
    double visibleStep(double step, double dx, double dy) const
    {
        const double length = std::hypot(dx, dy) * step;
        return mOnPaper || length >= leastStep ? step : step * leastStep / length;
    }

    CairoSurfacePtr recordedPeriod(double columns, double rows) const
    {
        return recordDrawing({ 0, 0, columns, rows }, rows, mOnPaper, [&](Context& context) {
            drawPatternPeriod(
                context, mPattern, static_cast<float>(columns / mXStep), static_cast<float>(rows / mYStep));
        });
    }

    /// On paper the period stays a recording. For a bitmap it becomes pixels, a small one by way of more.
    CairoSurfacePtr periodOf(double columns, double rows) const
    {
        if (mOnPaper)
            return recordedPeriod(columns, rows);
        const double finer = std::ceil(leastPixels / std::min({ columns, rows, leastPixels }));
        const CairoSurfacePtr fine = rasterized(
            recordedPeriod(columns * finer, rows * finer).get(), columns * finer, rows * finer, 1);
        return finer > 1 ? rasterized(fine.get(), columns, rows, 1 / finer)
                         : CairoSurfacePtr(cairo_surface_reference(fine.get()));
    }

    const Pattern& mPattern;
    AffineTransform mToDevice;
    cairo_matrix_t mMatrix;
    double mXStep, mYStep;
    bool mOnPaper;
};

} // namespace

bool CairoEngine::setPatternSource(const Pattern& pattern, const DeviceBox& wanted)
{
    const AffineTransform toDevice = concat(pattern.matrix(), baseTransform());
    const DeviceBox area = intersection(wanted.grown(1), state.clip).roundedOut();
    if (!toDevice.inverted() || pattern.cell().isEmpty() || area.isEmpty())
        return false;
    const PlacedPattern placed(pattern, toDevice, deviceHeight(), onPaper);
    const CairoPatternPtr source = placed.source(area);
    if (!source || cairo_pattern_status(source.get()) != CAIRO_STATUS_SUCCESS)
        return false;
    cairo_identity_matrix(cr());
    cairo_set_source(cr(), source.get());
    const cairo_matrix_t m = matrix();
    cairo_set_matrix(cr(), &m);
    return true;
}

CairoSurfacePtr recordDrawing(
    const DeviceBox& extents, double deviceHeight, bool onPaper, const std::function<void(Context&)>& draw)
{
    const cairo_rectangle_t rectangle { extents.x0, extents.y0, extents.width(), extents.height() };
    CairoSurfacePtr surface(cairo_recording_surface_create(CAIRO_CONTENT_COLOR_ALPHA, &rectangle));
    auto engine = std::make_unique<CairoEngine>(CairoEngine::Kind::Recording, nullptr, 0, 0);
    if (onPaper)
        engine->drawOnPaper();
    engine->startSurface(CairoSurfacePtr(cairo_surface_reference(surface.get())), extents, deviceHeight);
    EngineContext<Context> context(std::move(engine));
    draw(context);
    return surface;
}

} // namespace vxr
