// Threads that all exist before any of them goes on, so that their first calls meet: how a test
// makes several first requests race.
#ifndef KELVO_TESTS_SUPPORT_RUNTOGETHER_H
#define KELVO_TESTS_SUPPORT_RUNTOGETHER_H

#include <atomic>
#include <thread>
#include <vector>

// Runs body(t) for t in [0, count) on threads of their own, and waits for all of them.
template <typename Body>
void KelvoRunTogether(int count, Body body)
{
    std::atomic<int> starting{count};
    std::vector<std::thread> threads;
    threads.reserve(static_cast<size_t>(count));
    for (int t = 0; t < count; ++t) {
        threads.emplace_back([&starting, &body, t] {
            starting.fetch_sub(1);
            while (starting.load() > 0)
                std::this_thread::yield();
            body(t);
        });
    }
    for (std::thread &thread : threads)
        thread.join();
}

#endif
