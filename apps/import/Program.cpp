#include <apps/import/Program.h>

#include <apps/import/JobProcess.h>
#include <apps/import/Service.h>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <csignal>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <system_error>

namespace vxr::importing {

int runImportProgram(int argc, const std::function<JobRunner&()>& load, Successor* successor)
{
    struct stat status { };
    if (argc > 1 || ::fstat(programSocket, &status) != 0 || !S_ISSOCK(status.st_mode)) {
        std::fputs("vxr-import reads foreign pictures for programs that use the vxr library.\n"
                   "They start it by themselves.\n",
            stderr);
        return 2;
    }
    ::signal(SIGCHLD, SIG_DFL); // ignored, it would keep the jobs' ends from us
    ::signal(SIGPIPE, SIG_IGN);
    ::fcntl(programSocket, F_SETFD, FD_CLOEXEC);
    ::prctl(PR_SET_DUMPABLE, 0); // jobs can't look into the program
    try {
        JobRunner& runner = load();
        const Sandbox sandbox;
        JobProcess jobs(runner, sandbox, programSocket);
        Service(jobs, programSocket, successor).serve();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "vxr-import: %s\n", error.what());
        return 1;
    }
    return 0;
}

std::string pathOfNeighbour(const std::string& name)
{
    std::error_code error;
    const auto own = std::filesystem::read_symlink("/proc/self/exe", error);
    return (own.parent_path() / name).string();
}

} // namespace vxr::importing
