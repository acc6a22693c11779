#include <apps/import/TemporaryFolder.h>

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace vxr::importing {

TemporaryFolder::TemporaryFolder(bool isWanted)
{
    if (!isWanted)
        return;
    std::error_code error;
    mPath = (std::filesystem::temp_directory_path(error) / "vxr-import-XXXXXX").string();
    if (error || !::mkdtemp(mPath.data()))
        mPath.clear();
}

TemporaryFolder::~TemporaryFolder()
{
    std::error_code ignored;
    if (!mPath.empty())
        std::filesystem::remove_all(mPath, ignored); // follows no links
}

} // namespace vxr::importing
