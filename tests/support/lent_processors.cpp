// Lends the program eight processors whatever the machine has, so that engines make as many threads as their own limits
// allow. The program is linked with -Wl,--wrap=sched_getaffinity.
#include <sched.h>
#include <sys/types.h>

#include <cstddef>

extern "C" int __wrap_sched_getaffinity(pid_t, std::size_t size, cpu_set_t* set) {
    CPU_ZERO_S(size, set);
    for (int i = 0; i < 8; ++i) CPU_SET_S(i, size, set);
    return 0;
}
