#include <apps/import/DecoderJobs.h>
#include <apps/import/PostScriptHeader.h>

#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cstdlib>

namespace vxr::importing {

namespace {

constexpr const char* ghostscript = "/usr/bin/gs";

/// Pictures keep their pixels, colours their spaces.
constexpr const char* arguments[] = { "gs", "-q", "-dSAFER", "-dBATCH", "-dNOPAUSE", "-dNOPROMPT",
    "-sDEVICE=pdfwrite", "-dCompatibilityLevel=1.5", "-dEPSCrop", "-dAutoRotatePages=/None",
    "-sColorConversionStrategy=LeaveColorUnchanged", "-dAutoFilterColorImages=false",
    "-dColorImageFilter=/FlateEncode", "-dAutoFilterGrayImages=false", "-dGrayImageFilter=/FlateEncode",
    "-dDownsampleColorImages=false", "-dDownsampleGrayImages=false", "-dDownsampleMonoImages=false",
    "-sstdout=%stderr", "-sOutputFile=%stdout", "-" };

int fileOf(std::string_view bytes)
{
    const int file = ::memfd_create("postscript", MFD_CLOEXEC);
    if (file < 0 || ::write(file, bytes.data(), bytes.size()) != ssize_t(bytes.size())
        || ::lseek(file, 0, SEEK_SET) != 0)
        throw OversizeError();
    return file;
}

} // namespace

void convertEPS(const JobInput& input, JobOutput& output)
{
    const int source = fileOf(postScriptWithBox(input.text()));
    ::dup2(source, STDIN_FILENO);
    ::dup2(output.payloadDescriptor(), STDOUT_FILENO);
    // Said in advance; the exit status has the last word, since a document comes out of damaged files too.
    output.finish(ImportOutcome::Done);
    std::array<char*, std::size(arguments) + 1> argv {};
    for (std::size_t i = 0; i < std::size(arguments); ++i)
        argv[i] = const_cast<char*>(arguments[i]);
    ::execve(ghostscript, argv.data(), environ);
    ::_exit(127);
}

} // namespace vxr::importing
