#include "tests/app/FileFaults.h"

#include <QByteArray>

#include <cerrno>
#include <csignal>
#include <cstdarg>

#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

namespace {

using FileFaults::Fault;

Fault currentFault = Fault::None;
int faultyCall = 0;
int faultError = 0;
int calls = 0;
ssize_t room = 0;
QByteArray watchedFolder; // clazy:exclude=non-pod-global-static

template <typename Function>
Function *original(Function * /*type*/, const char *name)
{
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

bool isWatched(const char *path)
{
    return !watchedFolder.isEmpty() && qstrncmp(path, watchedFolder, static_cast<uint>(watchedFolder.size())) == 0;
}

bool isWatched(int file)
{
    char path[4096] = {};
    const QByteArray link = "/proc/self/fd/" + QByteArray::number(file);
    return !watchedFolder.isEmpty() && readlink(link, path, sizeof path - 1) > 0 && isWatched(path);
}

/// Counts a call on `file`, a path or descriptor. Returns whether it must fail, with errno set.
template <typename File>
bool fails(File file)
{
    if (!isWatched(file))
        return false;
    const bool isFaulty = currentFault != Fault::FullDisk && calls++ == faultyCall;
    if (isFaulty && (currentFault == Fault::Kill || currentFault == Fault::KillHalfway))
        static_cast<void>(raise(SIGKILL));
    errno = faultError;
    return isFaulty && currentFault == Fault::Fail;
}

} // namespace

int FileFaults::inject(Fault fault, int call, int error, const QByteArray &folder)
{
    currentFault = fault;
    faultyCall = call;
    faultError = error;
    room = call;
    watchedFolder = folder;
    return std::exchange(calls, 0);
}

// libc reserves the names of its parameters.
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name)
extern "C" int open64(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = va_arg(arguments, mode_t); // read by open only if there is one
    va_end(arguments);
    return fails(path) ? -1 : original(&open64, "open64")(path, flags, mode);
}

extern "C" ssize_t read(int file, void *data, size_t size)
{
    return fails(file) ? -1 : original(&read, "read")(file, data, size);
}

extern "C" ssize_t write(int file, const void *data, size_t size)
{
    const bool isHere = isWatched(file);
    if (isHere && currentFault == Fault::FullDisk && (room -= static_cast<ssize_t>(size)) < 0) {
        errno = faultError;
        return -1;
    }
    if (isHere && currentFault == Fault::KillHalfway && calls == faultyCall)
        original(&write, "write")(file, data, size / 2);
    return fails(file) ? -1 : original(&write, "write")(file, data, size);
}

extern "C" int fsync(int file)
{
    return fails(file) ? -1 : original(&fsync, "fsync")(file);
}

extern "C" int fdatasync(int file)
{
    return fails(file) ? -1 : original(&fdatasync, "fdatasync")(file);
}

extern "C" int close(int file)
{
    const bool isFaulty = fails(file);
    const int error = errno;
    const int result = original(&close, "close")(file);
    errno = isFaulty ? error : errno;
    return isFaulty ? -1 : result;
}

extern "C" int linkat(int oldFolder, const char *oldPath, int newFolder, const char *newPath, int flags) noexcept
{
    return fails(newPath) ? -1 : original(&linkat, "linkat")(oldFolder, oldPath, newFolder, newPath, flags);
}

extern "C" int rename(const char *from, const char *to) noexcept
{
    return fails(to) ? -1 : original(&rename, "rename")(from, to);
}
// NOLINTEND(readability-inconsistent-declaration-parameter-name)
