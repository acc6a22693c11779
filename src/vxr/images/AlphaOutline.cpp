#include <vxr/images/AlphaOutline.h>

#include <vxr/platform/graphics/BitmapContext.h>
#include <vxr/platform/graphics/Image.h>

#include <vector>

namespace vxr {

namespace {

constexpr std::uint32_t halfOpaque = 128;

/// Which pixels are inside. Beyond the image nothing is.
class Inside {
public:
    explicit Inside(const Image& image)
        : mWidth(image.width())
        , mHeight(image.height())
        , mBits(static_cast<std::size_t>(mWidth) * static_cast<std::size_t>(mHeight))
    {
        const auto bitmap = BitmapContext::createBitmap(mWidth, mHeight);
        bitmap->drawImage({ 0, 0, static_cast<float>(mWidth), static_cast<float>(mHeight) }, image);
        const std::uint32_t* pixels = bitmap->pixels();
        for (std::size_t i = 0; i < mBits.size(); ++i)
            mBits[i] = pixels[i] >> 24 >= halfOpaque;
    }

    bool at(int x, int y) const
    {
        return x >= 0 && y >= 0 && x < mWidth && y < mHeight
            && mBits[static_cast<std::size_t>(y) * static_cast<std::size_t>(mWidth)
                + static_cast<std::size_t>(x)];
    }
    int width() const { return mWidth; }
    int height() const { return mHeight; }

private:
    int mWidth, mHeight;
    std::vector<bool> mBits;
};

/// Walks along edges with the inside on the right, y down, from corner to corner of pixels.
class Tracer {
public:
    explicit Tracer(const Inside& inside)
        : mInside(inside)
        , mSeen(static_cast<std::size_t>(inside.width() + 1) * static_cast<std::size_t>(inside.height() + 1))
    {
    }

    std::shared_ptr<Path> trace()
    {
        auto path = Path::path();
        for (int y = 0; y < mInside.height(); ++y)
            for (int x = 0; x < mInside.width(); ++x)
                if (mInside.at(x, y) && !mInside.at(x, y - 1) && !seen(x, y))
                    traceContour(*path, x, y);
        return path;
    }

private:
    /// Whether the upper edge of the pixel has been walked along.
    std::vector<bool>::reference seen(int x, int y)
    {
        return mSeen[static_cast<std::size_t>(y) * static_cast<std::size_t>(mInside.width() + 1)
            + static_cast<std::size_t>(x)];
    }

    /// From the upper left corner of a pixel along its upper edge.
    void traceContour(Path& path, int startX, int startY)
    {
        int x = startX, y = startY, dx = 1, dy = 0;
        path.moveTo({ static_cast<float>(x), static_cast<float>(y) });
        do {
            if (dx == 1)
                seen(x, y) = true;
            x += dx;
            y += dy;
            // The pixels ahead, to the left and right of the way.
            const int aheadX = x + (dx + dy - 1) / 2, aheadY = y + (dy - dx - 1) / 2;
            const bool left = mInside.at(aheadX, aheadY);
            const bool right = mInside.at(aheadX - dy, aheadY + dx);
            const int fromX = dx, fromY = dy;
            if (!right) { // a corner, also where two areas touch: each keeps to itself
                dx = -fromY;
                dy = fromX;
            } else if (left) {
                dx = fromY;
                dy = -fromX;
            }
            if ((dx != fromX || dy != fromY) && !(x == startX && y == startY))
                path.lineTo({ static_cast<float>(x), static_cast<float>(y) });
        } while (x != startX || y != startY || dx != 1 || dy != 0);
        path.close();
    }

    const Inside& mInside;
    std::vector<bool> mSeen;
};

} // namespace

std::shared_ptr<Path> outlineOfAlpha(const Image& image)
{
    if (image.isOpaque())
        return Path::pathWithRect(
            { 0, 0, static_cast<float>(image.width()), static_cast<float>(image.height()) });
    return Tracer(Inside(image)).trace();
}

} // namespace vxr
