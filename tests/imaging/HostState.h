#pragma once

#include <sys/wait.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace vxr::test {

/// What an import must leave as it was.
struct HostState {
    std::size_t descriptors = 0;
    std::size_t importFolders = 0; ///< in the temporary folder
    std::size_t residentBytes = 0;
    bool hasChildren = false;

    static HostState now()
    {
        namespace files = std::filesystem;
        HostState state;
        for ([[maybe_unused]] const auto& entry : files::directory_iterator("/proc/self/fd"))
            ++state.descriptors;
        for (const auto& entry : files::directory_iterator(files::temp_directory_path()))
            state.importFolders += entry.is_directory();
        std::ifstream status("/proc/self/status");
        for (std::string line; std::getline(status, line);)
            if (line.starts_with("VmRSS:"))
                state.residentBytes = std::strtoull(line.c_str() + 6, nullptr, 10) << 10;
        state.hasChildren = ::waitpid(-1, nullptr, WNOHANG | __WALL) >= 0 || errno != ECHILD;
        return state;
    }
};

} // namespace vxr::test
