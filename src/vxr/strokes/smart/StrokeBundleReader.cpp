#include <vxr/strokes/smart/StrokeBundleReader.h>

#include <vxr/geometry/Color.h>
#include <vxr/geometry/tracing/VXRImageTracer.h>
#include <vxr/platform/graphics/Image.h>

#include <fmt/format.h>

#include <charconv>
#include <cmath>

namespace vxr {

namespace {

constexpr std::size_t mostText = 1 << 20, mostElements = 50000;
constexpr int mostImageSide = 1024;

std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r";
    const std::size_t first = text.find_first_not_of(blanks);
    return first == text.npos ? std::string_view()
                              : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string_view takeWord(std::string_view& text)
{
    text = trimmed(text);
    const std::size_t end = std::min(text.find_first_of(" \t"), text.size());
    const std::string_view word = text.substr(0, end);
    text = trimmed(text.substr(end));
    return word;
}

std::optional<float> takeNumber(std::string_view& text)
{
    const std::string_view word = takeWord(text);
    float value = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
    constexpr float most = 1e4f;
    if (error != std::errc() || end != word.data() + word.size() || !(std::fabs(value) <= most))
        return {};
    return value;
}

} // namespace

StrokeBundleReader::StrokeBundleReader(std::string_view text, std::string folder)
    : mText(text)
    , mFolder(std::move(folder))
    , mBundle(std::make_shared<VXRStrokeBundle>())
{
}

bool StrokeBundleReader::fail(const std::string& reason)
{
    mError = fmt::format("line {}: {}", mLine, reason);
    return false;
}

std::shared_ptr<const VXRStrokeBundle> StrokeBundleReader::read()
{
    if (mText.size() > mostText) {
        fail("the text is too long");
        return nullptr;
    }
    for (std::string_view rest = mText; !rest.empty();) {
        ++mLine;
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        const std::string_view line = trimmed(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
        if (!line.empty() && line.front() != '#' && !readLine(line))
            return nullptr;
    }
    if (mBundle->name.empty() || mBundle->bodies.empty()) {
        fail("a bundle has a name and a body");
        return nullptr;
    }
    return mBundle;
}

bool StrokeBundleReader::readLine(std::string_view line)
{
    std::string_view rest = line;
    const std::string_view word = takeWord(rest);
    if (word == "name") {
        mBundle->name = rest;
        return !rest.empty() || fail("a name is missing");
    }
    if (word == "stretched" || word == "turned") {
        (word == "stretched" ? mBundle->stretchesBody : mBundle->turns) = true;
        return true;
    }
    if (word == "head" || word == "body" || word == "tail") {
        mPieces = word == "head" ? &mBundle->heads : word == "body" ? &mBundle->bodies : &mBundle->tails;
        if (word != "body" && !mPieces->empty())
            return fail("there is one head and one tail at most");
        return readPiece(rest);
    }
    if (word == "ink" || word == "color") {
        mInk = {};
        if (word == "color") {
            const auto red = takeNumber(rest), green = takeNumber(rest), blue = takeNumber(rest);
            if (!red || !green || !blue)
                return fail("a colour has three numbers");
            mInk.color = Color::colorWithCalibratedRGB(*red, *green, *blue);
        }
        const auto opacity = rest.empty() ? std::optional(1.0f) : takeNumber(rest);
        if (!opacity || *opacity < 0 || *opacity > 1)
            return fail("an opacity lies between 0 and 1");
        mInk.opacity = *opacity;
        return true;
    }
    if (word == "path")
        return readPath(rest);
    if (word == "image")
        return readImage(rest);
    return fail(fmt::format("'{}' is not known", word));
}

bool StrokeBundleReader::readPiece(std::string_view rest)
{
    const auto length = takeNumber(rest);
    if (!length || !(*length >= 0.01f))
        return fail("a piece has a length of at least 0.01");
    mPieces->push_back({ *length, {} });
    mInk = {};
    return true;
}

VXRStrokeBundle::Piece* StrokeBundleReader::piece()
{
    if (mPieces && !mPieces->empty())
        return &mPieces->back();
    fail("a drawing belongs to a piece");
    return nullptr;
}

bool StrokeBundleReader::readPath(std::string_view data)
{
    VXRStrokeBundle::Piece* target = piece();
    if (!target)
        return false;
    auto path = Path::path();
    while (!data.empty()) {
        const std::string_view command = takeWord(data);
        const int points = command == "M" || command == "L" ? 1
            : command == "C"                                ? 3
            : command == "Z"                                ? 0
                                                            : -1;
        if (points < 0 || (path->isEmpty() && command != "M"))
            return fail("a path is made of M, L, C and Z, M first");
        Point p[3];
        for (int i = 0; i < points; ++i) {
            const auto x = takeNumber(data), y = takeNumber(data);
            if (!x || !y)
                return fail("a coordinate is missing");
            p[i] = { *x, *y };
        }
        if (command == "M")
            path->moveTo(p[0]);
        else if (command == "L")
            path->lineTo(p[0]);
        else if (command == "C")
            path->curveTo(p[0], p[1], p[2]);
        else
            path->close();
    }
    mElements += path->elementCount();
    if (mElements > mostElements)
        return fail("the drawings have too many elements");
    target->parts.push_back({ path, mInk.color, mInk.opacity });
    return true;
}

/// Dark and opaque pixels become ink, in three strengths that lie on one another: the picture then bends and
/// prints like any drawing. "image FILE HEIGHT", the height in line widths.
bool StrokeBundleReader::readImage(std::string_view rest)
{
    VXRStrokeBundle::Piece* target = piece();
    if (!target)
        return false;
    const std::string file(takeWord(rest));
    const auto height = takeNumber(rest);
    if (file.empty() || file.find('/') != file.npos || file.front() == '.' || !height || !(*height > 0))
        return fail("an image has a file of the same folder and a height");
    std::string reason;
    const auto image = Image::createWithPNGFile(mFolder + "/" + file, &reason);
    if (!image)
        return fail(fmt::format("{}: {}", file, reason));
    if (image->width() > mostImageSide || image->height() > mostImageSide)
        return fail(fmt::format("{} is larger than {} pixels", file, mostImageSide));
    // Over what lies below, each strength brings the ink to a third, two thirds and all of it.
    constexpr std::pair<std::uint8_t, float> strengths[] = { { 43, 1.0f / 3 }, { 128, 0.5f }, { 213, 1 } };
    for (const auto& [threshold, opacity] : strengths) {
        VXRTraceOptions options;
        options.outlines.threshold = threshold;
        const VXRTrace trace = VXRImageTracer::traceImageInRect(
            *image, { 0, *height / 2, target->length, -*height }, VXRTraceSource::Darkness, options);
        mElements += trace.path->elementCount();
        if (!trace.complete || mElements > mostElements)
            return fail(fmt::format("{} has too many outlines", file));
        target->parts.push_back({ trace.path, mInk.color, opacity * mInk.opacity });
    }
    return true;
}

std::shared_ptr<const VXRStrokeBundle> VXRStrokeBundle::bundleFromText(
    std::string_view text, const std::string& folder, std::string* error)
{
    StrokeBundleReader reader(text, folder);
    auto bundle = reader.read();
    if (!bundle && error)
        *error = reader.error();
    return bundle;
}

} // namespace vxr
