#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

/// What an import leaves behind is told from what other programs do: they have another temporary folder.
class OwnTemporaryFolder final : public ::testing::Environment {
public:
    void SetUp() override
    {
        mPath = (std::filesystem::temp_directory_path() / "vxr-test-XXXXXX").string();
        ASSERT_TRUE(::mkdtemp(mPath.data()));
        ::setenv("TMPDIR", mPath.c_str(), 1);
    }
    void TearDown() override { std::filesystem::remove_all(mPath); }

private:
    std::string mPath;
};

const auto* const environment = ::testing::AddGlobalTestEnvironment(new OwnTemporaryFolder);

} // namespace
