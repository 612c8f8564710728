// libkelvo-clock-recorder.so: interposes settimeofday and clock_settime(CLOCK_REALTIME).
//
// Each call appends one line to the file named by KELVO_CLOCK_LOG:
//     settimeofday <sec> <usec> result=<r> errno=<name> real=<yes|no>
//     clock_settime <sec> <nsec> result=<r> errno=<name> real=<yes|no>
// The real call is made only inside a user namespace other than the machine's initial one,
// where the kernel refuses it (EPERM) even to root: a process that runs outside the sandbox
// by mistake gets EPERM from here instead, and the machine's clock is never touched.

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/time.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

// True when /proc/self/uid_map maps every uid onto itself: the initial user namespace.
bool InInitialUserNamespace()
{
    int fd = open("/proc/self/uid_map", O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return true;  // cannot tell: assume the worst
    char buffer[256];
    ssize_t n = read(fd, buffer, sizeof buffer - 1);
    close(fd);
    if (n <= 0)
        return true;
    buffer[n] = '\0';
    unsigned long inside = 1;
    unsigned long outside = 1;
    unsigned long count = 0;
    int fields = std::sscanf(buffer, "%lu %lu %lu", &inside, &outside, &count);
    if (fields != 3)
        return true;
    bool singleLine = std::strchr(buffer, '\n') == nullptr || std::strchr(buffer, '\n')[1] == '\0';
    return singleLine && inside == 0 && outside == 0 && count == 4294967295UL;
}

const char *ErrnoName(int e)
{
    const char *name = e == 0 ? nullptr : strerrorname_np(e);
    return name ? name : (e == 0 ? "0" : "unknown");
}

void Record(const char *what, long long sec, long long sub, int result, int error, bool real)
{
    const char *path = std::getenv("KELVO_CLOCK_LOG");
    if (path == nullptr || *path == '\0')
        return;
    int fd = open(path, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644);
    if (fd < 0)
        return;
    char line[256];
    int n = std::snprintf(line, sizeof line, "%s %lld %lld result=%d errno=%s real=%s\n", what, sec, sub, result,
                          ErrnoName(error), real ? "yes" : "no");
    if (n > 0) {
        ssize_t ignored = write(fd, line, static_cast<size_t>(n));
        (void)ignored;
    }
    close(fd);
}

template <typename Fn>
Fn Next(const char *name)
{
    return reinterpret_cast<Fn>(dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" int settimeofday(const struct timeval *tv, const struct timezone *tz)
{
    using Real = int (*)(const struct timeval *, const struct timezone *);
    bool real = !InInitialUserNamespace();
    int result = -1;
    int error = EPERM;
    if (real) {
        static Real next = Next<Real>("settimeofday");
        errno = 0;
        result = next ? next(tv, tz) : -1;
        error = next ? errno : ENOSYS;
    }
    Record("settimeofday", tv ? static_cast<long long>(tv->tv_sec) : -1, tv ? static_cast<long long>(tv->tv_usec) : -1,
           result, result == 0 ? 0 : error, real);
    errno = error;
    return result;
}

// glibc names its parameters with reserved identifiers; ours keep readable names.
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name)
extern "C" int clock_settime(clockid_t clock, const struct timespec *ts)
{
    using Real = int (*)(clockid_t, const struct timespec *);
    static Real next = Next<Real>("clock_settime");
    if (clock != CLOCK_REALTIME)
        return next ? next(clock, ts) : (errno = ENOSYS, -1);
    bool real = !InInitialUserNamespace();
    int result = -1;
    int error = EPERM;
    if (real) {
        errno = 0;
        result = next ? next(clock, ts) : -1;
        error = next ? errno : ENOSYS;
    }
    Record("clock_settime", static_cast<long long>(ts->tv_sec), static_cast<long long>(ts->tv_nsec), result,
           result == 0 ? 0 : error, real);
    errno = error;
    return result;
}
