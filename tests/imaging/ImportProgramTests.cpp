#include <tests/imaging/HostState.h>
#include <tests/imaging/ImportSupport.h>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

using namespace vxr;
using namespace vxr::test;
using importing::Misdeed;

namespace {

class ImportProgramTest : public Importing { };

} // namespace

TEST_F(ImportProgramTest, ABadJobCostsItsOwnResultOnly)
{
    struct MisdeedCase {
        const char* name;
        Misdeed misdeed;
        ImportOutcome outcome;
        unsigned processorSeconds = 60, waitMilliseconds = 600000;
    };
    const MisdeedCase cases[] = {
        { "crash", Misdeed::Crash, ImportOutcome::Crashed },
        { "endless loop", Misdeed::Loop, ImportOutcome::TimedOut, 1 },
        { "endless sleep", Misdeed::Sleep, ImportOutcome::TimedOut, 60, 100 },
        { "result of a terabyte", Misdeed::HugeOutput, ImportOutcome::TooLarge },
        { "16 GB of memory", Misdeed::HugeMemory, ImportOutcome::TooLarge },
        { "network", Misdeed::Network, ImportOutcome::Done },
        { "other processes", Misdeed::Spawn, ImportOutcome::Done },
        { "files and signals", Misdeed::Write, ImportOutcome::Done },
    };
    ImportProgram program(VXR_IMPORT);
    const std::string picture = makePicture({}, ".png");
    ASSERT_TRUE(program.decodeBitmap(*memoryFile(picture), {}));
    const HostState before = HostState::now();
    for (const MisdeedCase& bad : cases) {
        SCOPED_TRACE(bad.name);
        program.setLimits(
            std::size_t { 1 } << 28, std::size_t { 1 } << 30, bad.processorSeconds, bad.waitMilliseconds);
        const ImportFailure ended = program.misbehave(int(bad.misdeed));
        EXPECT_EQ(ended.outcome, bad.outcome) << ended.message;
        program.setLimits(std::size_t { 1 } << 28, std::size_t { 1 } << 30, 60, 600000);
        EXPECT_TRUE(program.decodeBitmap(*memoryFile(picture), {})) << "the next job";
    }
    const HostState after = HostState::now();
    EXPECT_EQ(after.descriptors, before.descriptors);
    EXPECT_FALSE(after.hasChildren);
}

TEST_F(ImportProgramTest, EndlessPostScriptLeavesNothingBehind)
{
    ImportProgram program(VXR_IMPORT);
    program.setLimits(std::size_t { 1 } << 29, std::size_t { 4 } << 20, 1, 600000);
    const HostState before = HostState::now();
    const std::string start = "%!PS-Adobe-3.0 EPSF-3.0\n%%BoundingBox: 0 0 100 100\n";
    EXPECT_FALSE(program.convertEPS(*memoryFile(start + "{} loop\n"), &failure));
    EXPECT_EQ(failure.outcome, ImportOutcome::TimedOut) << failure.message;
    EXPECT_FALSE(program.convertEPS(
        *memoryFile(start + "{ rand 100 mod rand 100 mod moveto rand 100 mod 3 lineto stroke } loop\n"),
        &failure));
    EXPECT_NE(failure.outcome, ImportOutcome::Done);
    EXPECT_EQ(HostState::now().importFolders, before.importFolders);
}

TEST_F(ImportProgramTest, FoldersOfKilledProgramsGoAndThoseInUseStay)
{
    namespace files = std::filesystem;
    const files::path left = files::temp_directory_path() / "vxr-import-killed",
                      used = files::temp_directory_path() / "vxr-import-in-use";
    files::create_directories(left / "below");
    files::create_directories(used);
    const int lock = ::open(used.c_str(), O_RDONLY | O_DIRECTORY);
    ASSERT_EQ(::flock(lock, LOCK_EX), 0);
    EXPECT_TRUE(importer().convertEPS(
        *memoryFile("%!PS-Adobe-3.0 EPSF-3.0\n%%BoundingBox: 0 0 9 9\n0 0 5 5 rectfill\nshowpage\n%%EOF\n"),
        &failure))
        << failure.message;
    EXPECT_FALSE(files::exists(left));
    EXPECT_TRUE(files::exists(used));
    ::close(lock);
    files::remove_all(used);
}

TEST_F(ImportProgramTest, AProgramThatIsNotThereIsSaidToBeSo)
{
    for (const char* path : { "/nonexistent/vxr-import", "/bin/false" }) {
        SCOPED_TRACE(path);
        ImportProgram program(path);
        EXPECT_FALSE(program.isAvailable());
        EXPECT_FALSE(program.decodeBitmap(*memoryFile("x"), {}, &failure));
        EXPECT_EQ(failure.outcome, ImportOutcome::Unavailable);
        EXPECT_FALSE(failure.message.empty());
    }
}

TEST(ProgramPath, TheHostsChoiceGoesBeforeTheEnvironmentAndThatBeforeTheLibrarysPlace)
{
    const char* before = std::getenv("VXR_IMPORT_PROGRAM");
    const std::string saved = before ? before : "";
    ::setenv("VXR_IMPORT_PROGRAM", "/from/environment", 1);
    EXPECT_EQ(ImportProgram::programPath(), "/from/environment");
    ImportProgram::setProgramPath("/from/host");
    EXPECT_EQ(ImportProgram::programPath(), "/from/host");
    ImportProgram::setProgramPath({});
    ::unsetenv("VXR_IMPORT_PROGRAM");
    EXPECT_THAT(ImportProgram::programPath(), ::testing::HasSubstr("vxr-import"));
    if (before)
        ::setenv("VXR_IMPORT_PROGRAM", saved.c_str(), 1);
}

TEST(MemoryFile, OnlySealedFilesAreTakenOver)
{
    const auto file = memoryFile("bytes");
    EXPECT_EQ(bytesOf(*file), "bytes");
    EXPECT_EQ(::write(file->descriptor(), "x", 1), -1);
    EXPECT_FALSE(MemoryFile::createWithSealedDescriptor(::fcntl(file->descriptor(), F_DUPFD_CLOEXEC, 3), 4));
    EXPECT_TRUE(MemoryFile::createWithSealedDescriptor(::fcntl(file->descriptor(), F_DUPFD_CLOEXEC, 3), 5));
    EXPECT_FALSE(MemoryFile::createWithSealedDescriptor(::open("/proc/self/exe", O_RDONLY), 1 << 30));
    std::string error;
    EXPECT_FALSE(MemoryFile::createWithContentsOfFile("/nonexistent", &error));
    EXPECT_THAT(error, ::testing::HasSubstr("No such file"));
    EXPECT_FALSE(MemoryFile::createWithContentsOfFile("/tmp", &error));
}
