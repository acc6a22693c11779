#pragma once

#include <tests/imaging/PictureMaker.h>
#include <tests/support/FakeImporter.h>
#include <vxr/platform/imaging/ImportProgram.h>
#include <vxr/platform/imaging/ImportProtocol.h>

#include <gmock/gmock.h>

#include <cstring>

#ifndef VXR_IMPORT
#define VXR_IMPORT ""
#define VXR_IMPORT_DECODERS ""
#endif

namespace vxr::test {

/// One import program for all tests of a suite. Without one they are skipped, and say so.
class Importing : public ::testing::Test {
protected:
    static constexpr unsigned patience = 600000; ///< milliseconds: machines may be busy

    static ImportProgram& importer()
    {
        static ImportProgram program(VXR_IMPORT);
        program.setLimits(std::size_t { 1 } << 30, std::size_t { 1 } << 31, 60, patience);
        return program;
    }

    void SetUp() override
    {
        if (*VXR_IMPORT)
            ASSERT_TRUE(importer().isAvailable());
        else if (!importer().isAvailable())
            GTEST_SKIP() << "there is no import program";
    }

    std::shared_ptr<const ImportedBitmap> decode(const std::string& bytes, bool drawable = false)
    {
        return importer().decodeBitmap(*memoryFile(bytes), { .drawable = drawable }, &failure);
    }

    ImportFailure failure;
};

/// The drawable pixel at a place.
inline std::uint32_t pixelAt(const ImportedBitmap& bitmap, std::uint32_t x, std::uint32_t y)
{
    std::uint32_t pixel = 0;
    std::memcpy(&pixel, bitmap.pixels().data() + bitmap.format().bytesPerRow * y + 4 * std::size_t { x },
        sizeof pixel);
    return pixel;
}

} // namespace vxr::test
