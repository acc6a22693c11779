#pragma once

#include <vxr/platform/graphics/pixels/GradientTable.h>
#include <vxr/platform/graphics/pixels/RadialBlend.h>
#include <vxr/platform/graphics/values/AffineTransform.h>

#include <memory>

namespace vxr {

/// An axial or radial blend of colours placed on device pixels. A pixel's colour is that of its centre, and
/// depends on its row and column alone, whatever span it is asked in. Columns and rows lie within 2^24 of 0.
class GradientSpans {
public:
    /// `toDevice` maps the blend's space to device pixels, whose rows count downwards: the centre of column
    /// x in row y is (x + 0.5, y + 0.5). An axis shorter than a pixel, or than any fraction of one, still
    /// has its end colours on both sides.
    static GradientSpans axial(
        std::shared_ptr<const GradientTable>, Point start, Point end, const AffineTransform& toDevice);

    /// Of the circles through a pixel the one nearest to the end counts.
    static GradientSpans radial(std::shared_ptr<const GradientTable>, Point start, float startRadius,
        Point end, float endRadius, const AffineTransform& toDevice);

    /// Whether nothing is painted: coincident ends, a negative radius, a singular transform, numbers that
    /// are not finite.
    bool isEmpty() const { return mKind == Kind::Nothing; }
    /// Whether every pixel is known to be opaque.
    bool isOpaque() const { return mIsOpaque; }
    /// Whether all pixels of a row are alike.
    bool isConstantAlongRows() const { return mKind == Kind::Axial && mStep == 0; }

    void fill(int x, int y, std::size_t count, std::uint32_t* colors) const;

private:
    enum class Kind { Nothing, Axial, Circles, AnyCircles };

    GradientSpans() = default;
    void fillAxial(int x, int y, std::size_t count, std::uint32_t* colors) const;
    void fillAnyCircles(int x, int y, std::size_t count, std::uint32_t* colors) const;
    bool prepareCircles();

    Kind mKind = Kind::Nothing;
    bool mIsOpaque = false;
    std::shared_ptr<const GradientTable> mTable;

    // Axial: steps of the table in fixed point, exact sums of a start and whole columns and rows.
    int mFractionBits = 0;
    std::int64_t mStart = 0, mStep = 0, mRowStep = 0;

    RadialBlend mCircles {}; ///< without a division
    double mRowU = 0, mRowV = 0, mStartU = 0, mStartV = 0;

    /// The other circles: the blend's space in double precision.
    struct AnyCircles {
        double xx, xy, x0, yx, yy, y0; ///< columns and rows to the start circle's centre at 0
        double dx, dy, startRadius, growth;
    } mAny {};
};

} // namespace vxr
