#include <vxr/platform/graphics/GraphicsContext.h>

namespace vxr {

namespace {

/// Sets a path's flatness in a context for the duration of a scope. Not a saved state, which would also
/// restore the clip.
class FlatnessScope {
public:
    FlatnessScope(Context& context, float flatness)
        : mContext(context)
        , mBefore(context.flatness())
        , mDiffers(flatness != mBefore)
    {
        if (mDiffers)
            mContext.setFlatness(flatness);
    }
    ~FlatnessScope()
    {
        if (mDiffers)
            mContext.setFlatness(mBefore);
    }
    FlatnessScope(const FlatnessScope&) = delete;
    FlatnessScope& operator=(const FlatnessScope&) = delete;

private:
    Context& mContext;
    float mBefore;
    bool mDiffers;
};

} // namespace

void Path::fill() const
{
    Context& context = currentDrawingPort();
    FlatnessScope scope(context, mFlatness);
    context.fillPath(*this, mWindingRule);
}

void Path::stroke() const
{
    Context& context = currentDrawingPort();
    FlatnessScope scope(context, mFlatness);
    context.strokePath(*this, lineStyle());
}

void Path::addClip() const
{
    Context& context = currentDrawingPort();
    FlatnessScope scope(context, mFlatness);
    context.clipToPath(*this, mWindingRule);
}

} // namespace vxr
