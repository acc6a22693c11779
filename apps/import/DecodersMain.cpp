// The import program with every decoder: see `main.cpp`.

#include <apps/import/DecoderJobs.h>
#include <apps/import/Libraries.h>
#include <apps/import/Program.h>

using namespace vxr::importing;

int main(int argc, char**)
{
    return runImportProgram(
        argc,
        []() -> JobRunner& {
            static DecoderJobs jobs;
            loadLibraries();
            return jobs;
        },
        nullptr);
}
