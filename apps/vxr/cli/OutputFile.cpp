#include "OutputFile.h"

#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <system_error>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

namespace app {

namespace fs = std::filesystem;

namespace {

/// The one file being written, where a signal handler can find it.
char fileInTheMaking[4096];

void removeAndDie(int signal)
{
    if (fileInTheMaking[0])
        unlink(fileInTheMaking);
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

void guardAgainstSignals()
{
    static const bool installed = [] {
        for (int signal : { SIGINT, SIGTERM, SIGHUP })
            std::signal(signal, removeAndDie);
        return true;
    }();
    static_cast<void>(installed);
}

[[noreturn]] void throwErrno() { throw std::runtime_error(std::strerror(errno)); }

} // namespace

OutputFile::OutputFile(std::string path)
    : mPath(std::move(path))
{
    std::error_code ignored;
    if (fs::exists(mPath, ignored) && !fs::is_regular_file(mPath, ignored))
        throw std::runtime_error("is there already and is no file");
    const fs::path place(mPath);
    const std::string pattern
        = (place.parent_path() / ("." + place.filename().string() + ".XXXXXX")).string();
    std::vector<char> name(pattern.begin(), pattern.end());
    name.push_back('\0');
    const int descriptor = mkstemp(name.data());
    if (descriptor < 0)
        throwErrno();
    close(descriptor);
    mTemporary = name.data();
    if (mTemporary.size() < sizeof fileInTheMaking)
        std::strcpy(fileInTheMaking, mTemporary.c_str());
    guardAgainstSignals();
}

OutputFile::~OutputFile()
{
    if (!mTemporary.empty()) {
        unlink(mTemporary.c_str());
        forget();
    }
}

void OutputFile::commit()
{
    // A temporary file is for its owner alone; the finished one is what any program would make.
    const mode_t mask = umask(0);
    umask(mask);
    if (chmod(mTemporary.c_str(), 0666 & ~mask) != 0 || std::rename(mTemporary.c_str(), mPath.c_str()) != 0)
        throwErrno();
    forget();
}

void OutputFile::forget()
{
    fileInTheMaking[0] = '\0';
    mTemporary.clear();
}

std::string readWholeFile(const std::string& path, std::size_t limit)
{
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (!fs::exists(status))
        throw std::runtime_error(error ? error.message() : std::strerror(ENOENT));
    if (fs::is_directory(status))
        throw std::runtime_error(std::strerror(EISDIR));
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throwErrno();
    // One byte more than allowed is enough to know, also of pipes, which have no size.
    std::string bytes;
    std::vector<char> block(1 << 16);
    while (bytes.size() <= limit && file) {
        file.read(block.data(), static_cast<std::streamsize>(block.size()));
        bytes.append(block.data(), static_cast<std::size_t>(file.gcount()));
    }
    if (file.bad())
        throw std::runtime_error("cannot be read");
    return bytes;
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

} // namespace app
