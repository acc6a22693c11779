#include <apps/import/pict/PictPlayer.h>

#include <apps/import/pict/PictShapes.h>

#include <algorithm>

namespace vxr::importing {
namespace {

constexpr std::size_t workLimit = 3'000'000;
constexpr int shapeGroup = 8; ///< opcodes of one kind of shape: five verbs and three reserved ones

/// Colours by the numbers of the oldest pictures.
PictColor oldColor(std::uint32_t number)
{
    switch (number) {
    case 30:
        return { 1, 1, 1 };
    case 69:
        return { 1, 1, 0 };
    case 137:
        return { 1, 0, 1 };
    case 205:
        return { 1, 0, 0 };
    case 273:
        return { 0, 1, 1 };
    case 341:
        return { 0, 1, 0 };
    case 409:
        return { 0, 0, 1 };
    default:
        return { 0, 0, 0 };
    }
}

std::vector<PictPoint> readPolygon(PictReader& reader)
{
    const std::size_t size = reader.u16();
    if (size < 10)
        throw PictError("A polygon is damaged.");
    PictReader body(reader.bytes(size - 2));
    body.skip(8); // bounds
    std::vector<PictPoint> points;
    while (body.left() >= 4)
        points.push_back(body.point());
    return points;
}

bool isWithin(const PictRect& inner, const PictRect& outer)
{
    return inner.left >= outer.left && inner.top >= outer.top && inner.right <= outer.right
        && inner.bottom <= outer.bottom;
}

} // namespace

PictPlayer::PictPlayer(cairo_t* page, const PictRect& space, double scaleX, double scaleY)
    : mPage(page)
    , mSpace(space)
    , mScaleX(scaleX)
    , mScaleY(scaleY)
    , mClip(space)
{
    applyClip();
}

bool PictPlayer::play(unsigned opcode, PictReader& reader)
{
    if (opcode == 0x00FF)
        return false;
    if (!playState(opcode, reader) && !playColor(opcode, reader) && !playLine(opcode, reader)
        && !playText(opcode, reader) && !playShape(opcode, reader) && !playBitmap(opcode, reader))
        skipUnknown(opcode, reader);
    return true;
}

void PictPlayer::spend(std::size_t work)
{
    mWork += work;
    if (mWork > workLimit)
        throw PictError("The picture has too many parts.");
}

void PictPlayer::applyClip()
{
    spend(std::size_t(mClip.rectangleCount()));
    cairo_reset_clip(mPage);
    cairo_identity_matrix(mPage);
    cairo_scale(mPage, mScaleX, mScaleY);
    cairo_translate(mPage, -mSpace.left, -mSpace.top);
    addRect(mPage, mSpace);
    cairo_clip(mPage);
    cairo_translate(mPage, -mOrigin.x, -mOrigin.y);
    mClip.appendTo(mPage);
    cairo_clip(mPage);
}

bool PictPlayer::playState(unsigned opcode, PictReader& reader)
{
    switch (opcode) {
    case 0x0000: // nothing
        return true;
    case 0x0001:
        mClip = PictRegion::read(reader);
        applyClip();
        return true;
    case 0x0002:
        mBackgroundPattern = PictPattern::read(reader);
        return true;
    case 0x0007:
        mPenSize = reader.point();
        mPenSize = { std::max(mPenSize.x, 0), std::max(mPenSize.y, 0) };
        return true;
    case 0x0008:
        mPenMode = reader.u16();
        return true;
    case 0x0009:
        mPenPattern = PictPattern::read(reader);
        return true;
    case 0x000A:
        mFillPattern = PictPattern::read(reader);
        return true;
    case 0x000B:
        mOvalSize = reader.point();
        return true;
    case 0x000C: {
        const int dx = reader.s16(), dy = reader.s16();
        mOrigin = { mOrigin.x + dx, mOrigin.y + dy };
        applyClip();
        return true;
    }
    case 0x0012:
        mBackgroundPattern = PictPattern::readPixelPattern(reader);
        return true;
    case 0x0013:
        mPenPattern = PictPattern::readPixelPattern(reader);
        return true;
    case 0x0014:
        mFillPattern = PictPattern::readPixelPattern(reader);
        return true;
    default:
        return false;
    }
}

bool PictPlayer::playColor(unsigned opcode, PictReader& reader)
{
    switch (opcode) {
    case 0x000E:
        mColors.foreground = oldColor(reader.u32());
        return true;
    case 0x000F:
        mColors.background = oldColor(reader.u32());
        return true;
    case 0x001A:
        mColors.foreground = reader.color();
        return true;
    case 0x001B:
        mColors.background = reader.color();
        return true;
    case 0x001D:
        mColors.highlight = reader.color();
        return true;
    case 0x001E:
        mColors.highlight = PictColors().highlight;
        return true;
    case 0x001F:
        mColors.operation = reader.color();
        return true;
    default:
        return false;
    }
}

void PictPlayer::drawLineTo(PictPoint end)
{
    spend(1);
    addLine(mPage, mPen, end, mPenSize);
    fillPathWithPattern(mPage, mPenPattern, mPenMode, mColors);
    mPen = end;
}

bool PictPlayer::playLine(unsigned opcode, PictReader& reader)
{
    const auto shortEnd = [&] {
        const int dx = reader.s8(), dy = reader.s8();
        return PictPoint { mPen.x + dx, mPen.y + dy };
    };
    switch (opcode) {
    case 0x0020:
        mPen = reader.point();
        drawLineTo(reader.point());
        return true;
    case 0x0021:
        drawLineTo(reader.point());
        return true;
    case 0x0022:
        mPen = reader.point();
        drawLineTo(shortEnd());
        return true;
    case 0x0023:
        drawLineTo(shortEnd());
        return true;
    default:
        return false;
    }
}

void PictPlayer::drawTextAt(PictPoint at, PictReader& reader)
{
    mTextAt = at;
    const auto text = reader.bytes(reader.u8());
    spend(1);
    // Pictures that hold a compressed image say so in words to readers that can't show it.
    if (mHasCompressed && utf8Text(text).find("decompressor") != std::string::npos)
        return;
    drawText(mPage, text, at, mText, mColors);
}

bool PictPlayer::playText(unsigned opcode, PictReader& reader)
{
    switch (opcode) {
    case 0x0003:
        mText.font = reader.u16();
        return true;
    case 0x0004:
        mText.face = reader.u8();
        return true;
    case 0x0005:
        mText.mode = reader.u16();
        return true;
    case 0x0006:
        mText.extraOfSpaces = reader.fixed();
        return true;
    case 0x000D:
        mText.size = reader.s16();
        return true;
    case 0x0010: {
        const PictPoint numerator = reader.point(), denominator = reader.point();
        const auto ratio = [](int n, int d) { return n > 0 && d > 0 ? double(n) / d : 1; };
        mText.scaleX = ratio(numerator.x, denominator.x);
        mText.scaleY = ratio(numerator.y, denominator.y);
        return true;
    }
    case 0x0016:
        mText.extraOfCharacters = reader.s16() / 16.0;
        return true;
    case 0x0028:
        drawTextAt(reader.point(), reader);
        return true;
    case 0x0029:
        drawTextAt({ mTextAt.x + reader.u8(), mTextAt.y }, reader);
        return true;
    case 0x002A:
        drawTextAt({ mTextAt.x, mTextAt.y + reader.u8() }, reader);
        return true;
    case 0x002B: {
        const int dx = reader.u8(), dy = reader.u8();
        drawTextAt({ mTextAt.x + dx, mTextAt.y + dy }, reader);
        return true;
    }
    case 0x002C: {
        PictReader body(reader.bytes(reader.u16()));
        const int font = body.u16();
        mText.fontNames[font] = utf8Text(body.bytes(body.u8()));
        return true;
    }
    default:
        return false;
    }
}

void PictPlayer::draw(Verb verb, const Shape& shape)
{
    spend(1);
    shape(verb == Verb::Frame);
    switch (verb) {
    case Verb::Frame:
    case Verb::Paint:
        return fillPathWithPattern(mPage, mPenPattern, mPenMode, mColors);
    case Verb::Erase:
        return fillPathWithPattern(mPage, mBackgroundPattern, 0, mColors);
    case Verb::Invert:
        return invertPath(mPage);
    case Verb::Fill:
        return fillPathWithPattern(mPage, mFillPattern, 0, mColors);
    }
}

bool PictPlayer::playShape(unsigned opcode, PictReader& reader)
{
    if (opcode < 0x30 || opcode > 0x8F)
        return false;
    const unsigned kind = (opcode - 0x30) / (2 * shapeGroup);
    const bool isSame = opcode & shapeGroup;
    const unsigned verb = opcode % shapeGroup;
    const bool isReserved = verb > unsigned(Verb::Fill);
    /// A frame is the shape with the shape within the pen cut out, which runs the other way or not: even-odd.
    const auto ring = [&](const auto& add, const PictRect& rect) {
        return [&, add, rect](bool isFrame) {
            add(rect);
            if (isFrame)
                add(insetByPen(rect, mPenSize));
        };
    };
    const auto drawRing = [&](const auto& add, const PictRect& rect) {
        cairo_set_fill_rule(mPage, CAIRO_FILL_RULE_EVEN_ODD);
        draw(Verb(verb), ring(add, rect));
        cairo_set_fill_rule(mPage, CAIRO_FILL_RULE_WINDING);
    };
    const auto takeRect = [&](PictRect& last) {
        if (!isSame)
            last = reader.rect();
    };
    switch (kind) {
    case 0:
        takeRect(mRect);
        if (!isReserved)
            drawRing([&](const PictRect& r) { addRect(mPage, r); }, mRect);
        return true;
    case 1:
        takeRect(mRoundRect);
        if (!isReserved)
            drawRing(
                [&](const PictRect& r) {
                    const bool isInner = r.width() < mRoundRect.width();
                    addRoundRect(mPage, r,
                        isInner ? PictPoint { mOvalSize.x - 2 * mPenSize.x, mOvalSize.y - 2 * mPenSize.y }
                                : mOvalSize);
                },
                mRoundRect);
        return true;
    case 2:
        takeRect(mOval);
        if (!isReserved)
            drawRing([&](const PictRect& r) { addOval(mPage, r); }, mOval);
        return true;
    case 3: {
        takeRect(mArc);
        const int start = reader.s16(), sweep = reader.s16();
        if (!isReserved)
            draw(Verb(verb), [&](bool isFrame) {
                if (isFrame)
                    addArcFrame(mPage, mArc, start, sweep, mPenSize);
                else
                    addWedge(mPage, mArc, start, sweep);
            });
        return true;
    }
    case 4:
        if (!isSame)
            mPolygon = readPolygon(reader);
        spend(mPolygon.size());
        if (!isReserved)
            draw(Verb(verb), [&](bool isFrame) {
                if (!isFrame)
                    return addPolygon(mPage, mPolygon);
                for (std::size_t i = 1; i < mPolygon.size(); ++i)
                    addLine(mPage, mPolygon[i - 1], mPolygon[i], mPenSize);
            });
        return true;
    default:
        if (!isSame)
            mRegion = PictRegion::read(reader);
        spend(std::size_t(mRegion.rectangleCount()));
        if (!isReserved)
            draw(Verb(verb), [&](bool isFrame) {
                (isFrame ? mRegion.border(mPenSize.x, mPenSize.y) : mRegion).appendTo(mPage);
            });
        return true;
    }
}

bool PictPlayer::playBitmap(unsigned opcode, PictReader& reader)
{
    const bool isDirect = opcode == 0x9A || opcode == 0x9B;
    if (opcode != 0x90 && opcode != 0x91 && opcode != 0x98 && opcode != 0x99 && !isDirect)
        return false;
    const auto format = isDirect ? PictPixelFormat::readDirect(reader) : PictPixelFormat::read(reader);
    const PictRect source = reader.rect(), target = reader.rect();
    const int mode = reader.u16();
    const bool hasMask = opcode & 1;
    const PictRegion mask = hasMask ? PictRegion::read(reader) : PictRegion();
    const PictPixels image = format.readPixels(reader, opcode >= 0x98);
    spend(1 + std::size_t(mask.rectangleCount()));
    if (mHasCompressed && isWithin(target, mCompressedTarget))
        return true; // the coarse stand-in for the compressed image
    cairo_save(mPage);
    if (hasMask) {
        mask.appendTo(mPage);
        cairo_clip(mPage);
    }
    drawPixels(mPage, image, source, target, mode, mColors);
    cairo_restore(mPage);
    return true;
}

void PictPlayer::skipUnknown(unsigned opcode, PictReader& reader)
{
    if (opcode == 0x8200)
        playCompressed(PictReader(reader.bytes(reader.u32())));
    else if (opcode == 0x00A0)
        reader.skip(2); // a comment's kind
    else if (opcode == 0x00A1) {
        reader.skip(2);
        reader.skip(reader.u16());
    } else if (opcode == 0x0011) {
        reader.skip(mIsVersion2 ? 2 : 1);
    } else if (opcode == 0x0015) {
        reader.skip(2);
    } else if ((opcode >= 0x17 && opcode <= 0x1C) || (opcode >= 0xB0 && opcode <= 0xCF)
        || (opcode >= 0x8000 && opcode <= 0x80FF)) {
        return;
    } else if ((opcode >= 0x24 && opcode <= 0x2F) || (opcode >= 0x92 && opcode <= 0xAF)) {
        reader.skip(reader.u16());
    } else if ((opcode >= 0xD0 && opcode <= 0xFE) || opcode >= 0x8100) {
        reader.skip(reader.u32());
    } else if (opcode >= 0x0100 && opcode <= 0x7FFF) {
        reader.skip(std::size_t(2) * (opcode >> 8));
    } else {
        throw PictError("The picture has an opcode without a meaning.");
    }
}

} // namespace vxr::importing
