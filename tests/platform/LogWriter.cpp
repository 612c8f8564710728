// kelvo-test-log-writer MODE COUNT: logs COUNT numbered lines through the host dlog, then ends as
// MODE says, so that a test can read what reached standard error in each way a process ends.
#include <pthread.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "dlog.h"

namespace {
int g_count = 0;

void LogLines(const char *tag, int count)
{
    for (int i = 0; i < count; ++i)
        dlog_print(DLOG_WARN, tag, "line %d of %d", i, count);
}

void *LogFromThread(void *tag)
{
    LogLines(static_cast<const char *>(tag), g_count);
    return nullptr;
}
}  // namespace

int main(int argc, char **argv)
{
    if (argc != 3)
        return 2;
    const std::string mode = argv[1];
    g_count = atoi(argv[2]);
    if (mode == "threads") {
        const char *tags[] = {"t0", "t1", "t2", "t3"};
        pthread_t threads[4];
        for (int i = 0; i < 4; ++i)
            pthread_create(&threads[i], nullptr, LogFromThread, const_cast<char *>(tags[i]));
        for (pthread_t thread : threads)
            pthread_join(thread, nullptr);
        return 0;
    }
    if (mode == "long") {
        LogLines("w", g_count);
        dlog_print(DLOG_WARN, "w", "%s", std::string(3 * 4096, 'x').c_str());
        LogLines("w", g_count);
        return 0;
    }
    if (mode == "fork") {
        dlog_print(DLOG_WARN, "w", "before the child");
        pid_t child = fork();
        if (child == 0) {
            dlog_print(DLOG_WARN, "w", "in the child");
            _exit(0);
        }
        waitpid(child, nullptr, 0);
        dlog_print(DLOG_WARN, "w", "after the child");
        return 0;
    }
    LogLines("w", g_count);
    if (mode == "return")
        return 0;
    if (mode == "exit")
        exit(3);
    if (mode == "abort")
        abort();
    if (mode == "segv") {
        volatile int *nowhere = nullptr;
        *nowhere = 1;
    }
    if (mode == "term")
        raise(SIGTERM);
    if (mode == "wait") {
        // A pause long enough for the stream to have written everything and to wait for more,
        // then one line more: it must come out while the process waits, until the test has read
        // every line and kills it.
        usleep(20000);
        LogLines("last", 1);
        for (;;)
            pause();
    }
    return 1;
}
