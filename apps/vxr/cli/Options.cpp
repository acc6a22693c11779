#include "Options.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <filesystem>

namespace app {

namespace fs = std::filesystem;

double Sizing::scaleFor(double drawingWidth, double drawingHeight) const
{
    const double across = width ? *width / drawingWidth : 0;
    const double down = height ? *height / drawingHeight : 0;
    return width && height ? std::min(across, down) : width ? across : height ? down : scale;
}

namespace {

/// Option texts that are validated together after parsing.
struct RenderWords {
    std::string background;
    std::string road = "direct";
    std::string format = "png";
    int width = 0, height = 0;
};

std::optional<Format> formatOf(const std::string& path)
{
    const std::string extension = fs::path(path).extension().string();
    if (extension == ".png" || extension == ".PNG")
        return Format::PNG;
    if (extension == ".pdf" || extension == ".PDF")
        return Format::PDF;
    return std::nullopt;
}

void addRender(CLI::App& command, RenderOptions& options, RenderWords& words)
{
    command
        .add_option("IN", options.inputs,
            "SVG drawings, documents (.vxr), folders of them, pictures, or - for a drawing on standard input")
        ->type_name("")
        ->required();
    command
        .add_option("-o,--output", options.output, "Picture (.png or .pdf), or a folder for several drawings")
        ->type_name("OUT")
        ->required();
    command.add_option("--scale", options.sizing.scale, "Pixels per unit of the drawing")
        ->type_name("F")
        ->check(CLI::Range(1e-6, 1e6).description(""));
    command
        .add_option(
            "--width", words.width, "Width of the picture; the height follows, or fits inside --height")
        ->type_name("PX")
        ->check(CLI::Range(1, 32767).description(""));
    command
        .add_option(
            "--height", words.height, "Height of the picture; the width follows, or fits inside --width")
        ->type_name("PX")
        ->check(CLI::Range(1, 32767).description(""));
    command
        .add_option(
            "--background", words.background, "A CSS colour, or none (default: white for PNG, none for PDF)")
        ->type_name("COLOR")
        ->check([](const std::string& text) {
            return text == "none" || svg::parseColor(text) ? std::string() : "'" + text + "' is no colour";
        });
    command
        .add_option("--page", options.page, "Page of a document (default: all in a PDF, the first as PNG)")
        ->type_name("N")
        ->check(CLI::Range(1, 1'000'000).description(""));
    command
        .add_option("--road", words.road, "How a PNG is drawn: direct (the default), compositor or nonscreen")
        ->type_name("ROAD")
        ->check(CLI::IsMember({ "direct", "compositor", "nonscreen" }).description(""));
    command.add_flag("--black-and-white", options.blackAndWhite, "Black lines and white areas");
    command.add_option("--tile-size", options.tileSize, "Side of the compositor's tiles (default: 1024)")
        ->type_name("PX")
        ->check(CLI::Range(16, 2048).description(""));
    command.add_option("--format", words.format, "What is written into a folder: png (the default) or pdf")
        ->type_name("FORMAT")
        ->check(CLI::IsMember({ "png", "pdf" }).description(""));
    command.footer("Warnings and errors go to standard error with the file and the line they are about.\n"
                   "Exit status: 0 when every drawing was written, 1 when one was not (the others are),\n"
                   "2 when the command line is wrong.");
}

[[noreturn]] void complain(const std::string& message) { throw CLI::ValidationError(message, 1); }

/// Validates options that depend on each other.
void finishRender(const CLI::App& command, const RenderWords& words, RenderOptions& options)
{
    if (command.count("--scale") && (command.count("--width") || command.count("--height")))
        complain("--scale: --width and --height set the size without it");
    const bool isFolder = fs::is_directory(options.output) || options.output.ends_with('/');
    const std::optional<Format> named = formatOf(options.output);
    options.toFolder = isFolder || options.inputs.size() > 1
        || std::any_of(options.inputs.begin(), options.inputs.end(),
            [](const std::string& input) { return fs::is_directory(input); });
    if (options.toFolder && !isFolder && named)
        complain("--output: several drawings need a folder, and '" + options.output + "' is none");
    if (!options.toFolder && !named)
        complain("--output: '" + options.output + "' must end in .png or .pdf, or be a folder");
    if (!options.toFolder && command.count("--format"))
        complain("--format: is for folders; '" + options.output + "' says what it is");
    options.format = options.toFolder ? (words.format == "pdf" ? Format::PDF : Format::PNG) : *named;

    options.road = words.road == "compositor" ? Road::Compositor
        : words.road == "nonscreen"           ? Road::NonScreen
                                              : Road::Direct;
    if (options.format == Format::PDF && command.count("--road"))
        complain("--road: is for PNG; a PDF has its own");
    if (options.road != Road::Compositor && options.tileSize != 0)
        complain("--tile-size: is for --road compositor");
    options.isBackgroundGiven = !words.background.empty();
    if (words.background.empty() ? options.format == Format::PNG : words.background != "none")
        options.background
            = words.background.empty() ? svg::Rgba { 1, 1, 1, 1 } : *svg::parseColor(words.background);
    if (options.road == Road::Compositor && (!options.background || options.background->a < 1))
        complain("--background: the compositor's window is opaque");
    if (words.width)
        options.sizing.width = words.width;
    if (words.height)
        options.sizing.height = words.height;
}

/// The parser itself would only say that a command is missing.
void refuseUnknownCommand(const CLI::App& program, const std::string& word)
{
    if (word.empty() || word.front() == '-')
        return;
    std::string names;
    for (const CLI::App* command : program.get_subcommands([](const CLI::App*) { return true; })) {
        if (command->get_name() == word)
            return;
        names += (names.empty() ? "" : ", ") + command->get_name();
    }
    complain("there is no command '" + word + "'; there are " + names);
}

} // namespace

Command parseCommandLine(int argc, const char* const* argv)
{
    CLI::App program("Draws SVG files, documents and pictures with the VXR drawing engine.", "vxr");
    program.set_version_flag("--version", "vxr " VXR_VERSION, "Print the version and exit");
    program.require_subcommand(1);
    program.get_formatter()->column_width(30);
    program.get_formatter()->label("REQUIRED", "");
    program.failure_message([](const CLI::App* app, const CLI::Error& error) {
        std::string name = app->get_name();
        for (const CLI::App* sub : app->get_subcommands())
            name += " " + sub->get_name();
        return "vxr: " + std::string(error.what()) + "\nRun '" + name + " --help' for the options.\n";
    });

    RenderOptions render;
    RenderWords words;
    CLI::App* renderCommand
        = program.add_subcommand("render", "Draw SVG files, documents and pictures as PNG or PDF");
    addRender(*renderCommand, render, words);

    FilterOptions filter;
    CLI::App* filterCommand = program.add_subcommand("filter", "Adjust the colours of a picture");
    addFilterOptions(*filterCommand, filter);

    ConvertOptions convert;
    CLI::App* convertCommand
        = program.add_subcommand("convert", "Make a document of SVG files, a page of each");
    convertCommand->add_option("IN", convert.inputs, "SVG drawings")->type_name("")->required();
    convertCommand->add_option("-o,--output", convert.output, "The document (.vxr)")
        ->type_name("OUT")
        ->required()
        ->check([](const std::string& path) {
            return path.ends_with(".vxr") ? std::string() : "'" + path + "' must end in .vxr";
        });

    convertCommand->add_flag(
        "--replace-damaged", convert.replacesDamaged, "Replace a document even if it is damaged");

    InspectOptions inspect;
    CLI::App* inspectCommand = program.add_subcommand(
        "inspect", "Show the renderables of a drawing as a tree, or what a picture says of itself");
    inspectCommand->add_option("IN", inspect.input, "An SVG drawing, a document or a picture")
        ->type_name("")
        ->required();

    GalleryOptions gallery { "gallery" };
    CLI::App* galleryCommand = program.add_subcommand(
        "gallery", "Draw the demonstration scenes as PNG and PDF, with a page that shows them");
    galleryCommand->add_option("-o,--output", gallery.folder, "Where to put them (default: gallery)")
        ->type_name("FOLDER");

    ReportOptions report;
    CLI::App* reportCommand
        = program.add_subcommand("report", "Time drawings on each road and compare the roads");
    reportCommand->add_option("IN", report.inputs, "SVG drawings")->type_name("")->required();

    try {
        refuseUnknownCommand(program, argc > 1 ? argv[1] : "");
        program.parse(argc, argv);
        if (renderCommand->parsed())
            finishRender(*renderCommand, words, render);
    } catch (const CLI::ParseError& error) {
        return program.exit(error) == 0 ? 0 : exitUsage;
    }
    if (renderCommand->parsed())
        return render;
    if (filterCommand->parsed())
        return filter;
    if (convertCommand->parsed())
        return convert;
    if (inspectCommand->parsed())
        return inspect;
    if (galleryCommand->parsed())
        return gallery;
    return report;
}

} // namespace app
