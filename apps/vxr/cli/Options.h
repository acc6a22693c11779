#pragma once

#include "FilterOptions.h"

#include <apps/vxr/svg/CssColor.h>

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace app {

/// The road by which the library draws a picture.
enum class Road {
    Direct, ///< each renderable draws into a window, whose backing store is the picture
    Compositor, ///< layers are blended into it
    NonScreen, ///< into a bitmap, as printing and exporting draw
};

enum class Format { PNG, PDF };

/// How large a picture becomes: scaled, or fitted to one side with the other in proportion.
struct Sizing {
    double scale = 1;
    std::optional<int> width, height;

    /// Pixels per unit of a drawing of that size.
    double scaleFor(double drawingWidth, double drawingHeight) const;
};

struct RenderOptions {
    std::vector<std::string> inputs;
    std::string output;
    bool toFolder = false; ///< `output` is a folder; else a file
    Format format = Format::PNG;
    Sizing sizing;
    std::optional<svg::Rgba> background; ///< none for no background
    bool isBackgroundGiven = false; ///< and overrides a page's own
    int page = 0; ///< of a document, from 1; 0 for all in a PDF and the first one as PNG
    Road road = Road::Direct;
    bool blackAndWhite = false;
    int tileSize = 0; ///< 0 for the library's own
};

struct ConvertOptions {
    std::vector<std::string> inputs;
    std::string output;
    bool replacesDamaged = false; ///< a document that is at `output` and can't be read as a whole
};

struct InspectOptions {
    std::string input;
};

struct GalleryOptions {
    std::string folder;
};

struct ReportOptions {
    std::vector<std::string> inputs;
};

/// The command to run, or the exit status when there is nothing to do.
using Command = std::variant<int, RenderOptions, FilterOptions, ConvertOptions, InspectOptions,
    GalleryOptions, ReportOptions>;

inline constexpr int exitFailed = 1; ///< an input could not be used
inline constexpr int exitUsage = 2; ///< the command line is wrong

/// Prints help and usage errors itself.
Command parseCommandLine(int argc, const char* const* argv);

} // namespace app
