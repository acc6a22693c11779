#pragma once

#include <vxr/protocols/VXRShapePainter.h>
#include <vxr/strokes/VXRStroke.h>

namespace app {

/// A stroke whose pen lives in the shape's local frame, so that a transform that stretches the shape
/// stretches the pen with it, and that can be painted with any fill. It is drawn by filling the
/// stroked outline.
class OutlineStroke final : public vxr::VXRStroke {
public:
    /// `pen` is in units of the shape's local frame; `canvasWidth` is the largest width of the
    /// line on the canvas, from which the shape's bounds are computed.
    OutlineStroke(vxr::LineStyle pen, float canvasWidth, std::shared_ptr<vxr::VXRShapePainter> painter);
    ~OutlineStroke() override;

    const vxr::LineStyle& pen() const { return mPen; }
    const std::shared_ptr<vxr::VXRShapePainter>& painter() const { return mPainter; }

    void paintShape(vxr::VXRPaintedShape&) override;
    void paintShapeWithNormalClip(vxr::VXRPaintedShape&) override;
    bool isEqual(const Object& other) const override;
    std::shared_ptr<vxr::VXRStroke> copyWithZone() const override;

private:
    std::shared_ptr<const vxr::Path> outlineOf(const vxr::VXRPaintedShape&);

    vxr::LineStyle mPen;
    std::shared_ptr<vxr::VXRShapePainter> mPainter;
    // The outline of the shape drawn last, for redraws.
    std::weak_ptr<const vxr::Path> mOutlined;
    float mTolerance = 0;
    std::shared_ptr<const vxr::Path> mOutline;
};

} // namespace app
