// To be preloaded: a system whose file systems have no files without names.
#include <cerrno>
#include <cstdarg>
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

// NOLINTBEGIN(*-vararg,cert-dcl50-cpp,readability-inconsistent-declaration-parameter-name): as the system declares it
extern "C" __attribute__((visibility("default"))) int open(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    if ((flags & O_TMPFILE) == O_TMPFILE) {
        errno = EOPNOTSUPP;
        return -1;
    }
    return static_cast<int>(::syscall(SYS_openat, AT_FDCWD, path, flags, mode));
}
// NOLINTEND(*-vararg,cert-dcl50-cpp,readability-inconsistent-declaration-parameter-name)
