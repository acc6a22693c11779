#include <bench/Compare.h>

#include <vxr/platform/graphics/pixels/LayerCompositor.h>

#include <pixman.h>

#include <array>
#include <cstring>
#include <memory>
#include <vector>

// The layer compositor against what moves the same pixels otherwise.

namespace vxr::bench {

namespace {

constexpr int width = 1600, height = 1200;

LayerInfo record(std::vector<std::uint32_t>& pixels)
{
    LayerInfo info;
    info.layerInfoVersion = 1;
    info.bitmapType = LayerBitmap32;
    info.colorData = pixels.data();
    info.colorBytesPerRow = width * 4;
    info.clipMaxX = width - 1;
    info.clipMaxY = height - 1;
    info.frameMaxX = width;
    info.frameMaxY = height;
    info.fade = 1;
    return info;
}

/// A page and the layers over it, all as large as the window.
struct Pages {
    std::vector<std::uint32_t> page = std::vector<std::uint32_t>(width * height, 0xffffffff);
    std::array<std::vector<std::uint32_t>, 3> layers;
    std::array<LayerInfo, 3> infos;
    LayerInfo destination = record(page);

    explicit Pages(std::uint32_t pixel)
    {
        for (std::size_t i = 0; i < layers.size(); ++i) {
            layers[i].assign(width * height, pixel);
            infos[i] = record(layers[i]);
            infos[i].next = i ? &infos[i - 1] : nullptr;
        }
    }
};

[[maybe_unused]] const int opaquePage = compare("COMPOSITE/opaque-page-against-memcpy", atLeast(0.8), [] {
    auto pages = std::make_shared<Pages>(0xff336699);
    LayerInfo& layer = pages->infos[0];
    layer.opaqueMaxX = width;
    layer.opaqueMaxY = height;
    return Pair { [pages] { LayerCompositor::composite(pages->destination, &pages->infos[0]); },
        [pages] {
            std::memcpy(pages->page.data(), pages->layers[0].data(), std::size_t(width) * height * 4);
        } };
});

[[maybe_unused]] const int translucentPages
    = compare("COMPOSITE/three-translucent-pages-against-pixman", atLeast(1.5), [] {
          auto pages = std::make_shared<Pages>(0x80402010);
          const auto image = [](std::vector<std::uint32_t>& pixels) {
              return std::shared_ptr<pixman_image_t>(
                  pixman_image_create_bits_no_clear(PIXMAN_a8r8g8b8, width, height, pixels.data(), width * 4),
                  pixman_image_unref);
          };
          const std::array<std::shared_ptr<pixman_image_t>, 3> layers { image(pages->layers[0]),
              image(pages->layers[1]), image(pages->layers[2]) };
          const auto page = image(pages->page);
          return Pair { [pages] { LayerCompositor::composite(pages->destination, &pages->infos[2]); },
              [pages, layers, page] {
                  for (const auto& layer : layers)
                      pixman_image_composite32(
                          PIXMAN_OP_OVER, layer.get(), nullptr, page.get(), 0, 0, 0, 0, 0, 0, width, height);
              } };
      });

} // namespace

} // namespace vxr::bench
