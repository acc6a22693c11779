#include <apps/import/Libraries.h>

#include <apps/import/BitmapFile.h>
#include <apps/import/PageArea.h>
#include <apps/import/PixelConversion.h>
#include <apps/import/SamplePictures.h>
#include <apps/import/Signatures.h>

#include <gmodule.h>
#include <vips/vips.h>

#include <cstdlib>
#include <set>
#include <stdexcept>
#include <string>

namespace vxr::importing {

namespace {

/// Loaders for other trades, for what other jobs do better, or that have known little care for bad files.
constexpr const char* blockedLoaders[]
    = { "VipsForeignLoadPdf", "VipsForeignLoadSvg", "VipsForeignLoadMat", "VipsForeignLoadOpenslide",
          "VipsForeignLoadFits", "VipsForeignLoadCsv", "VipsForeignLoadMatrix", "VipsForeignLoadVips",
          "VipsForeignLoadAnalyze", "VipsForeignLoadRad", "VipsForeignLoadNifti", "VipsForeignLoadPpm" };

constexpr char samplePage[]
    = "%PDF-1.4\n1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj "
      "2 0 obj<</Type/Pages/Kids[3 0 R]/Count 1>>endobj "
      "3 0 obj<</Type/Page/Parent 2 0 R/MediaBox[0 0 9 9]/Contents 4 0 R"
      "/Resources<</Font<</F<</Type/Font/Subtype/Type1/BaseFont/Helvetica>>>>>>>>endobj "
      "4 0 obj<</Length 24>>stream\nBT/F 9 Tf 1 1 Td(a)Tj ET\nendstream endobj "
      "trailer<</Root 1 0 R>>";

/// Decoding only: saving runs a pool of threads.
void decodeSample(const std::string& bytes)
{
    try {
        BitmapFile file(std::as_bytes(std::span(bytes)));
        file.readRows([](std::uint32_t, const std::byte*) {});
    } catch (const std::exception&) { // the jobs will say so again
    }
}

std::set<std::string>& loadedModules()
{
    static std::set<std::string> modules;
    return modules;
}

void blockLoaders()
{
    for (const char* loader : blockedLoaders)
        vips_operation_block_set(loader, TRUE);
}

} // namespace

void loadLibraries()
{
    ::setenv("VIPS_CONCURRENCY", "1", 1);
    ::setenv("OMP_NUM_THREADS", "1", 1);
    ::setenv("MAGICK_THREAD_LIMIT", "1", 1);
    ::setenv("VIPS_DISC_THRESHOLD", "64g", 1); // never a temporary file
    ::setenv("VIPS_WARNING", "0", 1);
    ::setenv("VIPSHOME", "/nonexistent", 1); // no modules yet
    if (VIPS_INIT("vxr-import"))
        throw std::runtime_error(vips_error_buffer());
    vips_concurrency_set(1);
    vips_cache_set_max(0);
    blockLoaders();
    for (const std::string& picture : { samplePNG(), sampleJPEG() })
        decodeSample(picture);
    loadDefaultConversions();
    try {
        drawSamplePage(samplePage);
    } catch (const std::exception&) {
    }
}

std::string moduleFolder()
{
    return VXR_VIPS_LIBDIR "/vips-modules-" + std::to_string(vips_version(0)) + "."
        + std::to_string(vips_version(1)) + "/";
}

bool isLoadedFor(std::string_view bitmapKind)
{
    const char* const module = moduleFor(bitmapKind);
    return !module || loadedModules().contains(module);
}

void loadFor(std::string_view bitmapKind)
{
    const char* const module = moduleFor(bitmapKind);
    if (!module || !loadedModules().insert(module).second)
        return;
    g_module_open(
        (moduleFolder() + module).c_str(), GModuleFlags(0)); // or the loader is missing, as jobs will say
    blockLoaders();
    if (bitmapKind != "heic" && bitmapKind != "avif" && bitmapKind != "jxl")
        decodeSample(sampleBMP());
}

} // namespace vxr::importing
