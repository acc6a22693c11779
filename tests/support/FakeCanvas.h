#pragma once

#include <tests/support/RecordingContext.h>
#include <vxr/protocols/VXRCanvasRole.h>

#include <string>
#include <utility>
#include <vector>

namespace vxr::test {

using Lines = std::vector<std::string>;

/// A canvas that answers what a test tells it and writes down what it is told.
class FakeCanvas : public VXRCanvasRole {
public:
    virtual ~FakeCanvas() = default;
    explicit FakeCanvas(Lines* calls = nullptr)
        : lines(calls)
    {
    }

    Lines* lines;
    float scale = 1;
    bool compositor = false;
    int destination = VXRDestinationDirect;
    bool blackAndWhite = false;
    bool staticCanvas = false;
    std::optional<AffineTransform> shadowTransform;
    Rect visible { 0, 0, 500, 500 };

    void registerRenderable(VXRRenderable&) override { write("register"); }
    void unregisterRenderable(VXRRenderable&) override { write("unregister"); }
    void setNeedsDisplayInRect(const Rect& r) override { write("damage " + text(r)); }
    void invalidateRenderable(VXRRenderable&) override { write("told"); }
    void invalidateRenderableInRect(VXRRenderable&, const Rect& r) override { write("told-in " + text(r)); }
    float viewScale() const override { return scale; }
    bool usesCompositor() const override { return compositor; }
    int renderingDestination() const override { return destination; }
    bool rendersBlackAndWhite() const override { return blackAndWhite; }
    bool isStatic() const override { return staticCanvas; }
    std::optional<AffineTransform> additionalShadowTransform() const override { return shadowTransform; }
    Rect clipViewVisibleRect() const override { return visible; }
    Rect visibleRect() const override { return visible; }
    Rect convertRectToWindow(const Rect& r) const override { return r; }

private:
    void write(std::string line)
    {
        if (lines)
            lines->push_back(std::move(line));
    }
};

} // namespace vxr::test
