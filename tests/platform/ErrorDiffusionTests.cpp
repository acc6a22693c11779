#include <vxr/platform/graphics/pixels/ErrorDiffusion.h>

#include <gtest/gtest.h>

#include <random>
#include <vector>

using namespace vxr;

TEST(ErrorDiffusion, EveryWidthAndHeightEqualsThePlainLoop)
{
    std::mt19937 random(41);
    for (int trial = 0; trial < 150; ++trial) {
        const int width = 1 + int(random() % 200),
                  height = trial % 3 ? 8 * int(1 + random() % 4) : int(random() % 20);
        std::vector<std::uint16_t> row(std::size_t(width) * 4);
        for (auto& value : row) {
            const unsigned any = random() & 0xffff;
            value = std::uint16_t(trial % 4 == 0 ? any : trial % 4 == 1 ? 65535 - any % 300 : any % 900);
        }
        std::vector<std::uint8_t> fast(std::size_t(width * height) * 4), plain(fast.size());
        diffuseErrors(row.data(), width, height, fast.data());
        diffuseErrorsPlainly(row.data(), width, height, plain.data());
        ASSERT_EQ(fast, plain) << width << " x " << height;
    }
}
