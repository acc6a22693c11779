#pragma once

#include <vxr/platform/base/Object.h>
#include <vxr/platform/graphics/EngineCaches.h>
#include <vxr/platform/graphics/values/AffineTransform.h>

#include <functional>

namespace vxr {

class Context;

/// A coloured cell drawn by a callback and repeated at exact, possibly fractional steps.
///
/// `matrix` maps the cell's space to the context's base space, not to its current space.
class VXR_EXPORT Pattern final : public Object {
public:
    using Draw = std::function<void(Context&)>;

    /// `cell` is the area the callback may paint. Steps are in cell space and must not be zero.
    Pattern(const Rect& cell, const AffineTransform& matrix, float xStep, float yStep, Draw draw);
    ~Pattern() override;

    const Rect& cell() const { return mCell; }
    const AffineTransform& matrix() const { return mMatrix; }
    float xStep() const { return mXStep; }
    float yStep() const { return mYStep; }
    void drawCell(Context& context) const { mDraw(context); }

    EngineCaches& engineCaches() const { return mEngineCaches; }

private:
    Rect mCell;
    AffineTransform mMatrix;
    float mXStep, mYStep;
    Draw mDraw;
    mutable EngineCaches mEngineCaches;
};

} // namespace vxr
