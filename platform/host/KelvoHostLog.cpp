// The host's log stream: standard error, written in batches of whole lines.
//
// A dump logs half a million lines, and a write per line cost the process more than its own
// rows did. Lines are therefore gathered and written in batches, under rules that keep what a
// reader of the stream relies on:
// - a batch holds whole lines and at most PIPE_BUF bytes, so that one write stays atomic on a
//   pipe shared with other writers (the children a process starts write to the same stream);
// - an error or a fatal line goes out at once, with everything before it;
// - a thread of its own writes a batch once a whole kQuietNs has passed without a line, or once
//   the batch is kMaxAgeNs old: a process that stops logging (it waits for a reply, starts a
//   child, or spins) has its lines out within a few milliseconds. The writers only count their
//   lines; the thread alone reads the clock. A shorter quiet period costs more than it gives:
//   the thread then wakes thousands of times a second while a dump logs, for lines that go out
//   in full batches anyway;
// - what waits is written at exit, before a fork, in a forked child (which then writes each line
//   at once: it usually executes another program or ends with _exit), on a fatal signal
//   (SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT, SIGTERM, SIGINT, SIGHUP, SIGQUIT, whose previous
//   dispositions then take over), and before a sanitizer ends the process.
// Only SIGKILL can still take lines: those of its last few milliseconds, a batch at most.
#include "KelvoHostLog.h"

#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <pthread.h>
#include <unistd.h>

// Present when a sanitizer runtime is linked: it ends the process with _exit after a report.
extern "C" void __sanitizer_set_death_callback(void (*callback)(void)) __attribute__((weak));

namespace {
const size_t kBatchBytes = PIPE_BUF;
const long long kQuietNs = 2 * 1000 * 1000LL;
const long long kMaxAgeNs = 10 * 1000 * 1000LL;

long long MonotonicNs()
{
    struct timespec now {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1000000000LL + now.tv_nsec;
}

void WriteAll(const char *text, size_t length)
{
    while (length > 0) {
        ssize_t w = write(STDERR_FILENO, text, length);
        if (w < 0 && errno == EINTR)
            continue;
        if (w <= 0)
            return;
        text += w;
        length -= static_cast<size_t>(w);
    }
}

// Plain data only: it is used from the exit handler, the fork handlers and signal handlers, and
// must outlive every static object that may still log while it is destroyed.
struct Batch {
    pthread_mutex_t lock;
    pthread_cond_t filled;
    char text[kBatchBytes];
    std::atomic<size_t> used;
    unsigned long long lines;  // lines written so far, for the thread to see whether more came
    // The process whose flushing thread runs; 0 before the first line.
    pid_t owner;
    // Every line is written at once: in a forked child, at exit, or when no thread could start.
    bool direct;
};
Batch g_batch = {PTHREAD_MUTEX_INITIALIZER, PTHREAD_COND_INITIALIZER, {}, {0}, 0, 0, false};

void FlushLocked()
{
    const size_t used = g_batch.used.load(std::memory_order_acquire);
    if (used == 0)
        return;
    WriteAll(g_batch.text, used);
    g_batch.used.store(0, std::memory_order_release);
}

// Writes a batch once no line has come for a whole kQuietNs, or it is kMaxAgeNs old.
void *FlushWhenQuiet(void *)
{
    const struct timespec quiet = {0, static_cast<long>(kQuietNs)};
    pthread_mutex_lock(&g_batch.lock);
    for (;;) {
        while (g_batch.used.load(std::memory_order_relaxed) == 0)
            pthread_cond_wait(&g_batch.filled, &g_batch.lock);
        const long long since = MonotonicNs();
        for (;;) {
            const unsigned long long seen = g_batch.lines;
            pthread_mutex_unlock(&g_batch.lock);
            nanosleep(&quiet, nullptr);
            pthread_mutex_lock(&g_batch.lock);
            if (g_batch.used.load(std::memory_order_relaxed) == 0)
                break;  // written meanwhile, full
            if (g_batch.lines == seen || MonotonicNs() - since >= kMaxAgeNs) {
                FlushLocked();
                break;
            }
        }
    }
    return nullptr;
}

void FlushAtExit()
{
    pthread_mutex_lock(&g_batch.lock);
    FlushLocked();
    // Objects destroyed after this handler may still log.
    g_batch.direct = true;
    pthread_mutex_unlock(&g_batch.lock);
}

void BeforeFork()
{
    pthread_mutex_lock(&g_batch.lock);
    FlushLocked();
}
void AfterForkInParent()
{
    pthread_mutex_unlock(&g_batch.lock);
}
void AfterForkInChild()
{
    pthread_mutex_init(&g_batch.lock, nullptr);
    pthread_cond_init(&g_batch.filled, nullptr);
    g_batch.used.store(0, std::memory_order_relaxed);
    g_batch.direct = true;
}

const int kFatalSignals[] = {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT, SIGTERM, SIGINT, SIGHUP, SIGQUIT};
struct sigaction g_previous[NSIG];

// Writes what waits, then lets the disposition the signal had before take over: a fault happens
// again when the handler returns, any other signal is raised again.
void FlushOnSignal(int signal)
{
    const int savedErrno = errno;
    // The interrupted code may hold the lock; what is published in the batch is written anyway.
    const bool locked = pthread_mutex_trylock(&g_batch.lock) == 0;
    WriteAll(g_batch.text, g_batch.used.load(std::memory_order_acquire));
    g_batch.used.store(0, std::memory_order_release);
    g_batch.direct = true;
    if (locked)
        pthread_mutex_unlock(&g_batch.lock);
    sigaction(signal, &g_previous[signal], nullptr);
    if (signal != SIGSEGV && signal != SIGBUS && signal != SIGILL && signal != SIGFPE)
        raise(signal);
    errno = savedErrno;
}

void FlushOnSanitizerDeath()
{
    const bool locked = pthread_mutex_trylock(&g_batch.lock) == 0;
    WriteAll(g_batch.text, g_batch.used.load(std::memory_order_acquire));
    g_batch.used.store(0, std::memory_order_release);
    if (locked)
        pthread_mutex_unlock(&g_batch.lock);
}

void CatchFatalSignals()
{
    for (int signal : kFatalSignals) {
        struct sigaction previous {};
        if (sigaction(signal, nullptr, &previous) != 0 || previous.sa_handler == SIG_IGN)
            continue;
        struct sigaction action {};
        action.sa_handler = FlushOnSignal;
        sigemptyset(&action.sa_mask);
        action.sa_flags = SA_RESTART;
        g_previous[signal] = previous;
        sigaction(signal, &action, nullptr);
    }
}

// The first line of a process sets up its flushing; called with the lock held.
void StartLocked()
{
    static const int registered = [] {
        atexit(FlushAtExit);
        pthread_atfork(BeforeFork, AfterForkInParent, AfterForkInChild);
        if (__sanitizer_set_death_callback != nullptr)
            __sanitizer_set_death_callback(FlushOnSanitizerDeath);
        CatchFatalSignals();
        return 0;
    }();
    (void)registered;
    g_batch.owner = getpid();
    // The thread takes no signal: they are for the process's own threads.
    sigset_t all, previous;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &previous);
    pthread_t thread;
    if (pthread_create(&thread, nullptr, FlushWhenQuiet, nullptr) == 0)
        pthread_detach(thread);
    else
        g_batch.direct = true;
    pthread_sigmask(SIG_SETMASK, &previous, nullptr);
}

}  // namespace

void KelvoHostLog::Write(const char *text, size_t length, bool urgent)
{
    pthread_mutex_lock(&g_batch.lock);
    if (g_batch.owner == 0 && !g_batch.direct)
        StartLocked();
    if (g_batch.direct || length > kBatchBytes) {
        FlushLocked();
        WriteAll(text, length);
    } else {
        if (g_batch.used.load(std::memory_order_relaxed) + length > kBatchBytes)
            FlushLocked();
        const size_t at = g_batch.used.load(std::memory_order_relaxed);
        memcpy(g_batch.text + at, text, length);
        g_batch.used.store(at + length, std::memory_order_release);
        ++g_batch.lines;
        if (at == 0)
            pthread_cond_signal(&g_batch.filled);
        if (urgent)
            FlushLocked();
    }
    pthread_mutex_unlock(&g_batch.lock);
}

bool KelvoHostLog::Format(std::string &out, const char *format, va_list args)
{
    va_list copy;
    va_copy(copy, args);
    // va_copy initialised copy; the analyser loses track of it through the va_list parameter.
    const int n = vsnprintf(nullptr, 0, format, copy);  // NOLINT(clang-analyzer-valist.Uninitialized)
    va_end(copy);
    if (n < 0)
        return false;
    out.resize(static_cast<size_t>(n));
    vsnprintf(&out[0], out.size() + 1, format, args);
    return true;
}

void KelvoHostLog::Flush()
{
    pthread_mutex_lock(&g_batch.lock);
    FlushLocked();
    pthread_mutex_unlock(&g_batch.lock);
}
