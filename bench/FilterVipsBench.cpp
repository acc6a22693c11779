#include <bench/Compare.h>
#include <bench/FilterScene.h>

#include <vips/vips.h>

#include <iterator>
#include <utility>

// The chain of all filters beside the same operations of libvips on one thread, which keep 16 bits between
// them.

namespace {

using namespace vxr;
using vxr::bench::atMost;
using vxr::bench::FilterScene;
using vxr::bench::Pair;

/// A chain of images, each made of the one before.
class VipsChain {
public:
    explicit VipsChain(VipsImage* first)
        : mImage(first)
    {
    }
    ~VipsChain() { g_object_unref(mImage); }
    VipsChain(const VipsChain&) = delete;
    VipsChain& operator=(const VipsChain&) = delete;

    VipsImage* image() const { return mImage; }
    template <class Operation, class... Arguments>
    VipsChain& apply(Operation operation, Arguments... arguments)
    {
        VipsImage* next = nullptr;
        if (operation(mImage, &next, arguments..., static_cast<void*>(nullptr)) != 0)
            vips_error_exit(nullptr);
        g_object_unref(std::exchange(mImage, next));
        return *this;
    }
    VipsChain& linear(double scale, double offset) { return apply(vips_linear1, scale, offset); }
    VipsChain& space(VipsInterpretation space) { return apply(vips_colourspace, space); }
    VipsChain& recombine(double diagonal, double rest)
    {
        VipsImage* matrix
            = vips_image_new_matrixv(3, 3, diagonal, rest, rest, rest, diagonal, rest, rest, rest, diagonal);
        apply(vips_recomb, matrix);
        g_object_unref(matrix);
        return *this;
    }
    VipsChain& sharpen(double amount, double radius)
    {
        VipsImage* weights = vips_image_new_matrixv(3, 1, 0.2126, 0.7152, 0.0722);
        VipsImage *luma = nullptr, *mean = nullptr, *change = nullptr, *part = nullptr, *sum = nullptr;
        if (vips_recomb(mImage, &luma, weights, nullptr) != 0
            || vips_gaussblur(luma, &mean, radius, "precision", VIPS_PRECISION_INTEGER, nullptr) != 0
            || vips_subtract(luma, mean, &change, nullptr) != 0
            || vips_linear1(change, &part, amount, 0.0, nullptr) != 0
            || vips_add(mImage, part, &sum, nullptr) != 0)
            vips_error_exit(nullptr);
        for (VipsImage* used : { weights, luma, mean, change, part, mImage })
            g_object_unref(used);
        mImage = sum;
        return *this;
    }

private:
    VipsImage* mImage;
};

void runVips(const FilterScene& scene)
{
    VipsImage* whole = vips_image_new_from_memory(scene.pixels.data(), 4 * scene.pixels.size(),
        FilterScene::width, FilterScene::height, 4, VIPS_FORMAT_UCHAR);
    VipsChain alpha(whole);
    g_object_ref(whole);
    VipsChain colors(whole);
    alpha.apply(vips_extract_band, 3);
    colors.apply(vips_extract_band, 0, "n", 3);
    VipsImage* tagged = nullptr;
    vips_copy(colors.image(), &tagged, "interpretation", VIPS_INTERPRETATION_sRGB, nullptr);
    VipsChain chain(tagged);
    const auto encoded = [&] { chain.space(VIPS_INTERPRETATION_RGB16); };
    const auto light = [&] { chain.space(VIPS_INTERPRETATION_scRGB); };
    const auto as16 = [&] {
        chain.apply(vips_cast, VIPS_FORMAT_USHORT)
            .apply(vips_copy, "interpretation", VIPS_INTERPRETATION_RGB16);
    };
    light();
    chain.linear(1.41421, 0); // exposure
    encoded();
    chain.linear(1.3195, -10469); // contrast
    as16();
    light();
    chain.recombine(1.2, -0.1); // saturation
    encoded();
    chain.sharpen(0.5, 2.5);
    as16();
    light();
    chain.recombine(0.96, 0.02).recombine(1.02, -0.01); // hue and temperature
    encoded();
    chain.linear(1.0526 / 257, -13.4).apply(vips_cast, VIPS_FORMAT_UCHAR); // black point
    VipsImage* joined = nullptr;
    if (vips_bandjoin2(chain.image(), alpha.image(), &joined, nullptr) != 0)
        vips_error_exit(nullptr);
    std::size_t size = 0;
    g_free(vips_image_write_to_memory(joined, &size));
    g_object_unref(joined);
}

const int vips = bench::compare("FILTER/chain-of-seven-vs-libvips-on-one-thread", atMost(0.5), [] {
    if (VIPS_INIT("vxr_bench") != 0)
        vips_error_exit(nullptr);
    vips_concurrency_set(1);
    vips_cache_set_max(0);
    const auto scene = std::make_shared<FilterScene>();
    const auto all
        = bench::chainOf({ std::begin(bench::allFilterSettings), std::end(bench::allFilterSettings) });
    return Pair { [=] { scene->filter(all); }, [=] { runVips(*scene); } };
});

} // namespace
