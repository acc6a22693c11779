// The program that reads foreign files for the library: see `platform/imaging/Importer.h`. It is started with
// a socket as descriptor 3 and answers each request by a process of its own. It does the quick jobs itself
// and leaves the others to its neighbour, which has all decoders loaded.

#include <apps/import/Program.h>
#include <apps/import/QuickJobs.h>
#include <apps/import/Successor.h>

using namespace vxr::importing;

int main(int argc, char**)
{
    Successor decoders(pathOfNeighbour("vxr-import-decoders"));
    return runImportProgram(
        argc,
        []() -> JobRunner& {
            static QuickJobs jobs;
            return jobs;
        },
        &decoders);
}
