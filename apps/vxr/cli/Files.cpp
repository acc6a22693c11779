#include "Files.h"

#include <vxr/platform/base/FileReplacement.h>

#include <fmt/format.h>

#include <algorithm>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <system_error>

namespace app {

namespace fs = std::filesystem;

namespace {

sigset_t endingSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    for (int signal : { SIGINT, SIGTERM, SIGHUP })
        sigaddset(&signals, signal);
    return signals;
}

/// Reads at most one block beyond the limit; a pipe's size isn't known in advance.
std::string readAll(std::istream& in, std::size_t limit)
{
    std::string bytes;
    std::vector<char> block(1 << 16);
    while (bytes.size() <= limit && in) {
        in.read(block.data(), static_cast<std::streamsize>(block.size()));
        bytes.append(block.data(), static_cast<std::size_t>(in.gcount()));
    }
    if (in.bad())
        throw std::runtime_error("cannot be read");
    if (bytes.size() > limit)
        throw std::runtime_error(fmt::format("has more than {} bytes", limit));
    return bytes;
}

} // namespace

SignalsHeld::SignalsHeld()
{
    const sigset_t signals = endingSignals();
    sigprocmask(SIG_BLOCK, &signals, nullptr);
}

SignalsHeld::~SignalsHeld()
{
    const sigset_t signals = endingSignals();
    sigprocmask(SIG_UNBLOCK, &signals, nullptr);
}

void writeFile(const std::string& path, std::string_view bytes)
{
    const SignalsHeld held;
    vxr::FileReplacement file(path);
    file.write(bytes.data(), bytes.size());
    file.commit();
}

std::string readWholeFile(const std::string& path, std::size_t limit)
{
    if (path == "-")
        return readAll(std::cin, limit);
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (!fs::exists(status))
        throw std::runtime_error(error ? error.message() : std::strerror(ENOENT));
    if (fs::is_directory(status))
        throw std::runtime_error(std::strerror(EISDIR));
    if (!fs::is_regular_file(status)) // reading a pipe that nobody writes to would never end
        throw std::runtime_error("is no regular file; use - to read standard input");
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw std::runtime_error(std::strerror(errno));
    return readAll(file, limit);
}

std::string folderOf(const std::string& path)
{
    if (path == "-")
        return {};
    const std::string folder = std::filesystem::path(path).parent_path().string();
    return folder.empty() ? "." : folder;
}

bool isDocumentFile(const std::string& path)
{
    if (path == "-" || !fs::is_regular_file(path))
        return false;
    char start[2] {};
    std::ifstream(path, std::ios::binary).read(start, sizeof start);
    return path.ends_with(".vxr") || std::string_view(start, sizeof start) == "PK";
}

void makeFolder(const std::string& path)
{
    std::error_code error;
    fs::create_directories(path, error);
    if (error)
        throw std::runtime_error(error.message());
    if (!fs::is_directory(path, error))
        throw std::runtime_error("is there already and is no folder");
}

std::vector<std::string> filesOf(const std::string& input, const std::vector<std::string>& extensions)
{
    std::error_code error;
    if (!fs::is_directory(input, error))
        return { input };
    std::vector<std::string> files;
    for (const auto& entry : fs::directory_iterator(input)) {
        const std::string extension = entry.path().extension().string();
        if (entry.is_regular_file(error)
            && std::find(extensions.begin(), extensions.end(), extension) != extensions.end())
            files.push_back(entry.path().string());
    }
    if (files.empty())
        throw std::runtime_error(
            fmt::format("there is no {} file in this folder", fmt::join(extensions, ", ")));
    std::sort(files.begin(), files.end());
    return files;
}

} // namespace app
