#include "Commands.h"
#include "Console.h"
#include "Files.h"

#include <apps/vxr/render/Roads.h>

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <filesystem>

namespace app {

namespace {

constexpr int pictureSide = 1024; ///< of the longer side

/// Median time of a few calls, in milliseconds.
template <typename Work> double milliseconds(Work work)
{
    std::vector<double> times;
    for (int i = 0; i < 5; ++i) {
        const auto start = std::chrono::steady_clock::now();
        work();
        times.push_back(
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
    }
    std::nth_element(times.begin(), times.begin() + 2, times.end());
    return times[2];
}

void reportOne(const std::string& input)
{
    const svg::Drawing drawing = svg::readDrawing(readWholeFile(input, svg::XmlLimits {}.bytes));
    const ImportedDrawing imported = importDrawing(drawing, folderOf(input));
    const double scale = pictureSide / std::max(drawing.width, drawing.height);
    const Page page { imported, std::max(1, static_cast<int>(std::lround(drawing.width * scale))),
        std::max(1, static_cast<int>(std::lround(drawing.height * scale))), static_cast<float>(scale),
        svg::Rgba { 1, 1, 1, 1 }, false };

    Picture direct;
    const double directTime = milliseconds([&] { direct = drawDirect(page); });
    Picture composited;
    const double firstTime = milliseconds([&] {
        ShownPage fresh(page, true);
        fresh.display();
        composited = fresh.picture();
    });
    ShownPage kept(page, true);
    kept.display();
    const double againTime = milliseconds([&] { kept.display(); });
    const double pdfTime = milliseconds([&] {
        const auto discard = [](const unsigned char*, std::size_t) { return true; };
        drawPDF(page, *vxr::DocumentContext::createWithWriter(discard));
    });
    const Difference difference = compare(direct, composited, 0);
    fmt::print("{:<16}{:>8}{:>10.1f}{:>12.1f}{:>10.1f}{:>10.1f}{:>13}\n",
        std::filesystem::path(input).stem().string(), imported.shapeCount, directTime, firstTime, againTime,
        pdfTime, difference.largest);
}

} // namespace

int runReport(const ReportOptions& options)
{
    Console console(options.inputs.size());
    fmt::print(
        "At {} pixels a side; times in milliseconds; difference: the largest between the direct and the\n"
        "compositor road, in levels of 255.\n\n",
        pictureSide);
    fmt::print("{:<16}{:>8}{:>10}{:>12}{:>10}{:>10}{:>13}\n", "drawing", "shapes", "direct", "compositor",
        "again", "PDF", "difference");
    int status = 0;
    for (const std::string& input : options.inputs) {
        console.startStep(input);
        try {
            reportOne(input);
        } catch (const svg::DocumentError& error) {
            console.error(input, error.line, error.what());
            status = exitFailed;
        } catch (const std::exception& error) {
            console.error(input, 0, error.what());
            status = exitFailed;
        }
        std::fflush(stdout);
    }
    return status;
}

} // namespace app
