#pragma once

#include <tests/support/FakeImporter.h>
#include <tests/support/RecordingContext.h>
#include <vxr/host/data/VXEData.h>
#include <vxr/host/data/VXEDataManager.h>
#include <vxr/images/VXRImageBinary.h>
#include <vxr/platform/base/Data.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/graphics/Image.h>

#include <gmock/gmock.h>

#include <functional>

namespace vxr::test {

inline std::shared_ptr<const Data> dataOf(const std::string& bytes)
{
    return Data::dataWithBytes(bytes.data(), bytes.size());
}

/// What `draw` draws into the current context.
inline std::string drawn(const std::function<void()>& draw)
{
    RecordingContext context;
    const CurrentContextScope current(context, true, true);
    draw();
    return context.recorded();
}

/// An image of one colour.
inline std::shared_ptr<const Image> plainImage(int width, int height, std::uint32_t pixel = 0xff336699)
{
    const std::vector<std::uint32_t> pixels(static_cast<std::size_t>(width * height), pixel);
    return Image::createWithCopy(ImageLayout::nativeARGB(width, height, 4 * static_cast<std::size_t>(width)),
        pixels.data(), 4 * pixels.size());
}

/// An importer that knows a picture, a page and a drawing by the bytes "bitmap", "page" and "pict".
struct KnownFiles : FakeImporter::Scope {
    KnownFiles()
    {
        fake->bitmaps["bitmap"] = FakeImporter::drawable(640, 480, 0xff102030);
        addPage("page", { 0, 0, 200, 100 });
        fake->conversions["pict"] = "page";
    }
    void addPage(const std::string& bytes, PageBox media)
    {
        DocumentInfo info;
        info.pages = 1;
        info.media = info.crop = info.bleed = info.trim = info.art = media;
        fake->documents[bytes] = info;
    }
};

inline std::shared_ptr<VXRImageBinary> binaryOf(
    const std::string& bytes, const std::string& name, VXEDataManager* manager = nullptr)
{
    return VXRImageBinary::imageBinaryWithDataNameTypeUsingDataManager(dataOf(bytes), name, 0, manager);
}

} // namespace vxr::test
