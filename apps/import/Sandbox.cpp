#include <apps/import/Sandbox.h>

#include <fcntl.h>
#include <linux/landlock.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <seccomp.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>

namespace vxr::importing {

namespace {

/// Everything that decoders do, in names of system calls. Names that this machine lacks are passed over.
constexpr const char* allowedCalls[] = { "read", "pread64", "readv", "preadv", "write", "pwrite64", "writev",
    "lseek", "close", "fstat", "newfstatat", "statx", "stat", "lstat", "fstatfs", "statfs", "access",
    "faccessat", "faccessat2", "readlink", "readlinkat", "getcwd", "getdents64", "fcntl", "ftruncate",
    "fallocate", "fadvise64", "dup", "mmap", "munmap", "mremap", "mprotect", "madvise", "brk", "futex",
    "sched_yield", "sched_getaffinity", "set_robust_list", "rseq", "set_tid_address", "getrandom",
    "clock_gettime", "clock_getres", "clock_nanosleep", "nanosleep", "gettimeofday", "time", "times",
    "getrusage", "sysinfo", "uname", "getpid", "gettid", "getuid", "geteuid", "getgid", "getegid", "poll",
    "ppoll", "eventfd2", "pipe2", "rt_sigaction", "rt_sigprocmask", "rt_sigreturn", "sigaltstack", "exit",
    "exit_group", "recvmsg", "restart_syscall", "getrlimit" };

/// What Ghostscript does beyond that.
constexpr const char* postScriptCalls[] = { "execve", "memfd_create", "dup2", "setpgid", "arch_prctl",
    "unlink", "unlinkat", "pipe", "select", "pselect6", "rename", "chmod", "fchmod", "umask", "prctl" };

constexpr const char* readableFolders[] = { "/usr/share/fonts", "/usr/local/share/fonts",
    "/usr/share/poppler", "/etc/fonts", "/usr/share/fontconfig", "/var/cache/fontconfig", "/usr/share/color",
    "/etc/ImageMagick-6", "/usr/share/ImageMagick-6", "/usr/lib", "/usr/share/mime" };

constexpr const char* postScriptFolders[] = { "/usr", "/lib", "/lib64", "/etc/fonts", "/etc/ghostscript",
    "/etc/ld.so.cache", "/etc/papersize", "/var/lib/ghostscript", "/var/cache/fontconfig" };

constexpr int firstOwnDescriptor = 500;
constexpr std::uint64_t readFile = LANDLOCK_ACCESS_FS_READ_FILE, readFolder = LANDLOCK_ACCESS_FS_READ_DIR;

class Filter {
public:
    Filter()
        : mContext(seccomp_init(SCMP_ACT_ERRNO(EPERM)))
    {
        if (!mContext)
            throw std::runtime_error("no system call filter");
    }
    ~Filter() { seccomp_release(mContext); }
    Filter(const Filter&) = delete;
    Filter& operator=(const Filter&) = delete;

    void allow(const char* name)
    {
        if (const int call = seccomp_syscall_resolve_name(name); call >= 0)
            seccomp_rule_add(mContext, SCMP_ACT_ALLOW, call, 0);
    }
    template <class... Conditions> void allow(const char* name, Conditions... conditions)
    {
        seccomp_rule_add(mContext, SCMP_ACT_ALLOW, seccomp_syscall_resolve_name(name), sizeof...(conditions),
            conditions...);
    }
    void refuse(const char* name, int error)
    {
        seccomp_rule_add(
            mContext, SCMP_ACT_ERRNO(std::uint32_t(error)), seccomp_syscall_resolve_name(name), 0);
    }

    std::vector<sock_filter> program() const
    {
        const int file = ::memfd_create("filter", MFD_CLOEXEC);
        std::vector<sock_filter> code;
        if (file >= 0 && seccomp_export_bpf(mContext, file) == 0) {
            const auto size = std::size_t(::lseek(file, 0, SEEK_END));
            code.resize(size / sizeof(sock_filter));
            if (::pread(file, code.data(), size, 0) != ssize_t(size))
                code.clear();
        }
        if (file >= 0)
            ::close(file);
        if (code.empty())
            throw std::runtime_error("no system call filter");
        return code;
    }

private:
    scmp_filter_ctx mContext;
};

std::vector<sock_filter> makeFilter(bool forPostScript)
{
    Filter filter;
    for (const char* name : allowedCalls)
        filter.allow(name);
    // Threads, not processes. The flags of clone3 lie in memory: libc falls back to clone.
    filter.allow("clone", SCMP_A0(SCMP_CMP_MASKED_EQ, CLONE_THREAD, CLONE_THREAD));
    filter.refuse("clone3", ENOSYS);
    filter.refuse("ioctl", ENOTTY);
    filter.allow("prlimit64", SCMP_A2(SCMP_CMP_EQ, 0)); // to ask, not to set
    if (forPostScript) {
        for (const char* name : postScriptCalls)
            filter.allow(name);
        filter.allow("openat");
        filter.allow("open");
    } else {
        constexpr int writing = O_ACCMODE | O_CREAT | O_TRUNC;
        filter.allow("openat", SCMP_A2(SCMP_CMP_MASKED_EQ, writing, O_RDONLY));
        filter.allow("open", SCMP_A1(SCMP_CMP_MASKED_EQ, writing, O_RDONLY));
    }
    return filter.program();
}

/// -1 where the kernel has none.
int makeRules()
{
    const long version = ::syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
    if (version < 1)
        return -1;
    landlock_ruleset_attr handled {};
    handled.handled_access_fs = (std::uint64_t { 1 } << 13) - 1; // the first version's
    if (version >= 2)
        handled.handled_access_fs |= std::uint64_t { 1 } << 13; // link and rename across folders
    if (version >= 3)
        handled.handled_access_fs |= std::uint64_t { 1 } << 14; // truncate
    const int made = int(::syscall(SYS_landlock_create_ruleset, &handled, sizeof(std::uint64_t), 0));
    if (made < 0)
        return -1;
    // Out of the way of descriptors that a job gives numbers of its own.
    const int rules = ::fcntl(made, F_DUPFD_CLOEXEC, firstOwnDescriptor);
    ::close(made);
    return rules;
}

void allowBelow(int rules, const char* path, std::uint64_t access)
{
    const int place = ::open(path, O_PATH | O_CLOEXEC);
    if (place < 0)
        return;
    landlock_path_beneath_attr below { access, place };
    if (::syscall(SYS_landlock_add_rule, rules, LANDLOCK_RULE_PATH_BENEATH, &below, 0) != 0) {
        // A plain file takes the rights of files only.
        below.allowed_access &= ~readFolder;
        ::syscall(SYS_landlock_add_rule, rules, LANDLOCK_RULE_PATH_BENEATH, &below, 0);
    }
    ::close(place);
}

bool install(const std::vector<sock_filter>& filter, int rules, int firstToClose)
{
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0)
        return false;
    if (rules >= 0 && ::syscall(SYS_landlock_restrict_self, rules, 0) != 0)
        return false;
    ::syscall(SYS_close_range, unsigned(firstToClose), ~0u, 0u); // the rules' own descriptor among them
    const sock_fprog program { static_cast<unsigned short>(filter.size()),
        const_cast<sock_filter*>(filter.data()) };
    return ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

} // namespace

Sandbox::Sandbox()
    : mFilter(makeFilter(false))
    , mPostScriptFilter(makeFilter(true))
    , mReadRules(makeRules())
{
    if (mReadRules >= 0)
        for (const char* folder : readableFolders)
            allowBelow(mReadRules, folder, readFile | readFolder);
}

Sandbox::~Sandbox()
{
    if (mReadRules >= 0)
        ::close(mReadRules);
}

bool Sandbox::enter(int firstToClose) const { return install(mFilter, mReadRules, firstToClose); }

bool Sandbox::enterForPostScript(int firstToClose, const std::string& folder) const
{
    const int rules = makeRules();
    if (rules >= 0) {
        for (const char* path : postScriptFolders)
            allowBelow(rules, path, readFile | readFolder | LANDLOCK_ACCESS_FS_EXECUTE);
        allowBelow(rules, folder.c_str(),
            ~std::uint64_t { 0 } & ((std::uint64_t { 1 } << 13) - 1)
                & ~std::uint64_t { LANDLOCK_ACCESS_FS_EXECUTE });
    }
    return install(mPostScriptFilter, rules, firstToClose);
}

} // namespace vxr::importing
