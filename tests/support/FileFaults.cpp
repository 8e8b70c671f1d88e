#include "tests/support/FileFaults.h"

#include <QtCore/QFile>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

struct ArmedFault
{
    std::atomic<bool> isArmed = false;
    std::atomic<int> count = 0;
    FileFault fault;
    QByteArray part;
};

ArmedFault armed;
std::atomic<bool> hasUnnamedFiles = true;

enum class Outcome
{
    Works,
    Fails,
    IsShort
};

/** Allocates nothing, since it is called from everywhere. */
Outcome OutcomeOf(FileCall call, const char* path)
{
    const FileFault& fault = armed.fault;
    if ((fault.calls & call) == 0 || std::strstr(path, armed.part.constData()) == nullptr) {
        return Outcome::Works;
    }
    const int number = ++armed.count;
    const bool isOnce = fault.effect == FileFault::FailsOnce || fault.effect == FileFault::HappensLater;
    if (number < fault.first || (isOnce && number > fault.first)) {
        return Outcome::Works;
    }
    switch (fault.effect) {
    case FileFault::Kills:
        ::kill(::getpid(), SIGKILL);
        ::pause();
        break;
    case FileFault::HappensLater:
        fault.meanwhile();
        return Outcome::Works;
    case FileFault::IsShort:
        return Outcome::IsShort;
    case FileFault::IsInterrupted:
        errno = EINTR;
        return number % 2 == 1 ? Outcome::Fails : Outcome::Works;
    case FileFault::Fails:
    case FileFault::FailsOnce:
        errno = fault.error;
        break;
    }
    return Outcome::Fails;
}

Outcome OutcomeOfPath(FileCall call, const char* path)
{
    return armed.isArmed && path != nullptr ? OutcomeOf(call, path) : Outcome::Works;
}

Outcome OutcomeOfHandle(FileCall call, int handle)
{
    if (!armed.isArmed) {
        return Outcome::Works;
    }
    std::array<char, 64> link{};
    std::snprintf(link.data(), link.size(), "/proc/self/fd/%d", handle);
    std::array<char, 4096> path{};
    const long length = ::syscall(SYS_readlinkat, AT_FDCWD, link.data(), path.data(), path.size() - 1);
    return length > 0 ? OutcomeOf(call, path.data()) : Outcome::Works;
}

std::size_t Shortened(Outcome outcome, std::size_t size)
{
    return outcome == Outcome::IsShort ? (size + 2) / 3 : size;
}

} // namespace

FileFaults::FileFaults(const FileFault& fault)
{
    armed.fault = fault;
    armed.part = QFile::encodeName(fault.part);
    armed.count = 0;
    armed.isArmed = true;
}

FileFaults::~FileFaults()
{
    armed.isArmed = false;
}

NoUnnamedFiles::NoUnnamedFiles()
{
    hasUnnamedFiles = false;
}

NoUnnamedFiles::~NoUnnamedFiles()
{
    hasUnnamedFiles = true;
}

int FileFaults::Count()
{
    return armed.count;
}

bool IsKilledAtCall(int call, const QString& folder, const std::function<void()>& task)
{
    const pid_t child = ::fork();
    if (child == 0) {
        {
            const FileFaults faults(
                {.calls = ChangingCalls, .part = folder, .effect = FileFault::Kills, .error = 0, .first = call});
            task();
        }
        ::_exit(0);
    }
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    if (!WIFSIGNALED(status) && status != 0) {
        qFatal("The child has failed.");
    }
    if (WIFSIGNALED(status) && WTERMSIG(status) != SIGKILL) {
        qFatal("The child has crashed.");
    }
    return WIFSIGNALED(status);
}

// The dynamic linker takes these for those of the C library, in every library of the program.
extern "C" {

#define VANTOR_REPLACED __attribute__((visibility("default")))

VANTOR_REPLACED ssize_t read(int handle, void* bytes, size_t size)
{
    const Outcome outcome = OutcomeOfHandle(ReadCall, handle);
    return outcome == Outcome::Fails ? -1 : ::syscall(SYS_read, handle, bytes, Shortened(outcome, size));
}

VANTOR_REPLACED ssize_t write(int handle, const void* bytes, size_t size)
{
    const Outcome outcome = OutcomeOfHandle(WriteCall, handle);
    return outcome == Outcome::Fails ? -1 : ::syscall(SYS_write, handle, bytes, Shortened(outcome, size));
}

VANTOR_REPLACED int fsync(int handle)
{
    return OutcomeOfHandle(SyncCall, handle) == Outcome::Fails ? -1
                                                               : static_cast<int>(::syscall(SYS_fsync, handle));
}

VANTOR_REPLACED int ftruncate64(int handle, off64_t size) noexcept
{
    const bool isFailing = OutcomeOfHandle(ResizeCall, handle) == Outcome::Fails;
    return isFailing ? -1 : static_cast<int>(::syscall(SYS_ftruncate, handle, size));
}

VANTOR_REPLACED int rename(const char* from, const char* to) noexcept
{
    const bool isFailing = OutcomeOfPath(NameCall, to) == Outcome::Fails;
    return isFailing ? -1 : static_cast<int>(::syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0));
}

VANTOR_REPLACED int renameat2(int fromFolder, const char* from, int toFolder, const char* to,
                              unsigned int flags) noexcept
{
    const bool isFailing = OutcomeOfPath(NameCall, to) == Outcome::Fails;
    return isFailing ? -1 : static_cast<int>(::syscall(SYS_renameat2, fromFolder, from, toFolder, to, flags));
}

VANTOR_REPLACED int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) noexcept
{
    const bool isFailing = OutcomeOfPath(NameCall, to) == Outcome::Fails;
    return isFailing ? -1 : static_cast<int>(::syscall(SYS_linkat, fromFolder, from, toFolder, to, flags));
}

VANTOR_REPLACED int link(const char* from, const char* to) noexcept
{
    return ::linkat(AT_FDCWD, from, AT_FDCWD, to, 0);
}

VANTOR_REPLACED int unlink(const char* path) noexcept
{
    const bool isFailing = OutcomeOfPath(RemoveCall, path) == Outcome::Fails;
    return isFailing ? -1 : static_cast<int>(::syscall(SYS_unlinkat, AT_FDCWD, path, 0));
}

VANTOR_REPLACED int rmdir(const char* path) noexcept
{
    const bool isFailing = OutcomeOfPath(RemoveCall, path) == Outcome::Fails;
    return isFailing ? -1 : static_cast<int>(::syscall(SYS_unlinkat, AT_FDCWD, path, AT_REMOVEDIR));
}

VANTOR_REPLACED int mkdir(const char* path, mode_t mode) noexcept
{
    const bool isFailing = OutcomeOfPath(CreateCall, path) == Outcome::Fails;
    return isFailing ? -1 : static_cast<int>(::syscall(SYS_mkdirat, AT_FDCWD, path, mode));
}

VANTOR_REPLACED int open64(const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const bool isCreating = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
    const mode_t mode = isCreating ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    if (!hasUnnamedFiles && (flags & O_TMPFILE) == O_TMPFILE) {
        errno = EOPNOTSUPP;
        return -1;
    }
    const bool isFailing = isCreating && OutcomeOfPath(CreateCall, path) == Outcome::Fails;
    return isFailing ? -1 : static_cast<int>(::syscall(SYS_openat, AT_FDCWD, path, flags, mode));
}

} // extern "C"
