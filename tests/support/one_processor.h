// Pins the calling thread to one processor, so that objects made meanwhile use one thread.
#pragma once

#include <sched.h>

namespace pixmorph_test {

/// Restricts the thread, and all threads that it starts, to one processor.
class OneProcessor {
public:
    OneProcessor() {
        sched_getaffinity(0, sizeof(before_), &before_);
        cpu_set_t one;
        CPU_ZERO(&one);
        for (int i = 0; i < CPU_SETSIZE && CPU_COUNT(&one) == 0; ++i)
            if (CPU_ISSET(i, &before_)) CPU_SET(i, &one);
        sched_setaffinity(0, sizeof(one), &one);
    }
    OneProcessor(const OneProcessor&) = delete;
    OneProcessor& operator=(const OneProcessor&) = delete;
    ~OneProcessor() { sched_setaffinity(0, sizeof(before_), &before_); }

    static bool IsAllThereIs() {
        cpu_set_t all;
        sched_getaffinity(0, sizeof(all), &all);
        return CPU_COUNT(&all) == 1;
    }

private:
    cpu_set_t before_;
};

}  // namespace pixmorph_test
