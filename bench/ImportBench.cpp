#include <bench/Compare.h>

#include <vxr/platform/imaging/ImportProgram.h>

#include <vips/vips.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <string>
#include <vector>

// Foreign pictures through the import program, beside libvips in this process: decoded into memory, with
// nothing between a hostile file and the host.

namespace {

using namespace vxr;
using vxr::bench::atMost;
using vxr::bench::Pair;

using File = std::shared_ptr<const MemoryFile>;

/// Soft shapes with grain, as photographs have.
File photograph(int width, int height, unsigned seed, const char* suffix)
{
    std::mt19937 random(seed);
    std::vector<std::uint8_t> pixels;
    pixels.reserve(std::size_t(width) * std::size_t(height) * 3);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            for (int band = 0; band < 3; ++band)
                pixels.push_back(std::uint8_t(128
                    + 80 * std::sin(x * 0.011 + band) * std::cos(y * 0.007 + seed) + double(random() % 24)));
    VipsImage* image
        = vips_image_new_from_memory(pixels.data(), pixels.size(), width, height, 3, VIPS_FORMAT_UCHAR);
    void* bytes = nullptr;
    std::size_t size = 0;
    const bool written = vips_image_write_to_buffer(image, suffix, &bytes, &size, nullptr) == 0;
    g_object_unref(image);
    auto file = written ? MemoryFile::createWithCopy(bytes, size) : nullptr;
    g_free(bytes);
    return file;
}

void decodeInProcess(const MemoryFile& file)
{
    VipsImage* image = vips_image_new_from_buffer(
        file.bytes().data(), file.size(), "", "access", VIPS_ACCESS_SEQUENTIAL, nullptr);
    std::size_t size = 0;
    g_free(vips_image_write_to_memory(image, &size));
    g_object_unref(image);
}

ImportProgram& importer()
{
    static ImportProgram program(VXR_IMPORT);
    return program;
}

void import(const MemoryFile& file)
{
    ImportFailure failure;
    if (importer().decodeBitmap(file, { .drawable = true }, &failure))
        return;
    std::fprintf(stderr, "import: %s\n", failure.message.c_str());
    std::exit(1);
}

bool isReady()
{
    static const bool ready = VIPS_INIT("bench") == 0 && importer().isAvailable();
    return ready;
}

/// The same files on both sides.
Pair importBesideLibvips(std::vector<File> files)
{
    return { [files] {
                for (const File& file : files)
                    import(*file);
            },
        [files] {
            for (const File& file : files)
                decodeInProcess(*file);
        } };
}

const int large = bench::compare("IMAGE/import-12-megapixel-jpeg-vs-libvips", atMost(1.25), [] {
    isReady();
    return importBesideLibvips({ photograph(4000, 3000, 1, ".jpg[Q=90]") });
});

const int small = bench::compare("IMAGE/import-200-small-pictures-vs-libvips", atMost(4), [] {
    isReady();
    std::vector<File> files;
    for (unsigned i = 0; i < 200; ++i)
        files.push_back(photograph(200, 200, i, i % 2 ? ".png" : ".jpg[Q=90]"));
    return importBesideLibvips(files);
});

double residentBytes()
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("VmRSS:"))
            return std::strtod(line.c_str() + 6, nullptr) * 1024;
    return 0;
}

/// What the process holds for a decoded picture whose every pixel has been looked at.
const int memory = bench::measure("IMAGE/memory-of-a-decoded-picture-per-pixel-byte", atMost(1.1), [] {
    isReady();
    const File file = photograph(4000, 3000, 2, ".jpg[Q=90]");
    import(*file);
    const double before = residentBytes();
    const auto bitmap = importer().decodeBitmap(*file, { .drawable = true });
    unsigned sum = 0;
    for (const std::byte byte : bitmap->pixels())
        sum += unsigned(byte);
    volatile unsigned seen = sum;
    static_cast<void>(seen);
    return (residentBytes() - before) / double(bitmap->pixels().size());
});

} // namespace
