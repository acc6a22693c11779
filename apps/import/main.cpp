// The program that reads foreign files for the library: see `platform/imaging/Importer.h`. It is started with
// a socket as descriptor 3, loads its decoders once, and answers each request by a process of its own.

#include <apps/import/JobProcess.h>
#include <apps/import/Libraries.h>
#include <apps/import/Service.h>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <csignal>
#include <cstdio>
#include <exception>

using namespace vxr::importing;

int main(int argc, char**)
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
        loadLibraries();
        const Sandbox sandbox;
        JobProcess jobs(sandbox, programSocket);
        Service(jobs, programSocket).serve();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "vxr-import: %s\n", error.what());
        return 1;
    }
    return 0;
}
