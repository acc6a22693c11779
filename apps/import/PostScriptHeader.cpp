#include <apps/import/PostScriptHeader.h>

#include <apps/import/Job.h>

#include <fmt/format.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <optional>

namespace vxr::importing {

namespace {

constexpr std::string_view binaryStart = "\xC5\xD0\xD3\xC6";
constexpr double mostUnits = 1e6;

std::uint32_t littleEndian(std::string_view bytes, std::size_t offset)
{
    std::uint32_t number = 0;
    for (std::size_t i = 4; i-- > 0;)
        number = number << 8 | std::uint8_t(bytes[offset + i]);
    return number;
}

/// What stands between a binary header and a preview.
std::string_view plainPostScript(std::string_view eps)
{
    if (!eps.starts_with(binaryStart))
        return eps;
    if (eps.size() < 30)
        throw Refusal("The file ends too early.");
    const std::size_t start = littleEndian(eps, 4), size = littleEndian(eps, 8);
    if (start > eps.size() || size > eps.size() - start)
        throw Refusal("The file ends too early.");
    return eps.substr(start, size);
}

using Box = std::array<double, 4>;

/// Four numbers with an area.
std::optional<Box> boxIn(std::string_view text)
{
    const std::string numbers(text.substr(0, text.find_first_of("\r\n")));
    Box box {};
    const char* at = numbers.c_str();
    for (double& value : box) {
        char* end = nullptr;
        value = std::strtod(at, &end);
        if (end == at || !(std::abs(value) < mostUnits))
            return std::nullopt;
        at = end;
    }
    return box[2] > box[0] && box[3] > box[1] ? std::optional(box) : std::nullopt;
}

/// The value of the first such comment that is one: what stands for "(atend)" comes later.
std::optional<Box> findBox(std::string_view postScript, std::string_view comment)
{
    for (std::size_t at = 0; (at = postScript.find(comment, at)) != std::string_view::npos;) {
        const bool isLine = at == 0 || postScript[at - 1] == '\n' || postScript[at - 1] == '\r';
        at += comment.size();
        if (isLine)
            if (const auto box = boxIn(postScript.substr(at)))
                return box;
    }
    return std::nullopt;
}

} // namespace

std::string postScriptWithBox(std::string_view eps)
{
    const std::string_view postScript = plainPostScript(eps);
    if (!postScript.starts_with("%!"))
        throw Refusal("The file is not PostScript.");
    const auto fine = findBox(postScript, "%%HiResBoundingBox:");
    const auto whole = findBox(postScript, "%%BoundingBox:");
    if (!fine && !whole)
        throw Refusal("The file states no bounding box with an area.");
    const Box box = fine ? *fine : *whole;
    // The first statement counts: behind the first line, in front of the file's own.
    const std::size_t lineEnd = postScript.find_first_of("\r\n");
    const std::string_view firstLine = postScript.substr(0, lineEnd);
    std::string result(firstLine);
    result
        += fmt::format("\n%%BoundingBox: {} {} {} {}\n%%HiResBoundingBox: {} {} {} {}\n", std::floor(box[0]),
            std::floor(box[1]), std::ceil(box[2]), std::ceil(box[3]), box[0], box[1], box[2], box[3]);
    if (lineEnd != std::string_view::npos)
        result += postScript.substr(lineEnd);
    return result;
}

} // namespace vxr::importing
