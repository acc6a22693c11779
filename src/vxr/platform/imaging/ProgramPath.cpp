#include <vxr/platform/imaging/ImportProgram.h>

#include <dlfcn.h>
#include <unistd.h>

#include <cstdlib>
#include <utility>

namespace vxr {

namespace {

std::string& chosenPath()
{
    static std::string path;
    return path;
}

/// The folder of the file that this code was loaded from.
std::string ownFolder()
{
    Dl_info info {};
    if (!::dladdr(reinterpret_cast<const void*>(&ownFolder), &info) || !info.dli_fname)
        return ".";
    const std::string file = info.dli_fname;
    const auto slash = file.rfind('/');
    return slash == std::string::npos ? "." : file.substr(0, slash);
}

} // namespace

std::string ImportProgram::programPath()
{
    if (!chosenPath().empty())
        return chosenPath();
    if (const char* path = ::secure_getenv("VXR_IMPORT_PROGRAM"); path && *path)
        return path;
    const std::string folder = ownFolder();
    std::string installed = folder + "/" VXR_LIBEXEC_FROM_LIB "/vxr-import";
    if (::access(installed.c_str(), X_OK) == 0)
        return installed;
    // As it is built: beside the library.
    std::string built = folder + "/vxr-import";
    return ::access(built.c_str(), X_OK) == 0 ? built : installed;
}

void ImportProgram::setProgramPath(std::string path) { chosenPath() = std::move(path); }

} // namespace vxr
