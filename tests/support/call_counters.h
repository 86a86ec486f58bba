// Counters of allocations and threads, for tests of what costs neither. Included by the one source file of a program
// that is linked with --wrap=malloc and --wrap=pthread_create, so that the library's calls of malloc, operator new and
// pthread_create pass through here.
#pragma once

#include <pthread.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace pixmorph_test {

inline std::atomic<unsigned> g_allocations{0};
inline std::atomic<unsigned> g_threads{0};

inline void* CountedNew(std::size_t size) {
    ++g_allocations;
    return std::malloc(size);
}

}  // namespace pixmorph_test

extern "C" {
void* __real_malloc(std::size_t size);
int __real_pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*function)(void*), void* context);

void* __wrap_malloc(std::size_t size) {
    ++pixmorph_test::g_allocations;
    return __real_malloc(size);
}
int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*function)(void*),
                          void* context) {
    ++pixmorph_test::g_threads;
    return __real_pthread_create(thread, attributes, function, context);
}
}

void* operator new(std::size_t size) {
    if (void* const memory = pixmorph_test::CountedNew(size)) return memory;
    throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return pixmorph_test::CountedNew(size); }
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
