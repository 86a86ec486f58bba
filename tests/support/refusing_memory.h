// Memory that is refused when a test says so. A program includes this once: it replaces operator new.
#pragma once

#include <atomic>
#include <cstdlib>
#include <new>

namespace pixmorph_test {

constexpr int kNever = -1;

/// Refuses a call after `left` more, and all that follow; kNever refuses none.
struct Refusal {
    std::atomic<int> left{kNever};
    bool Now() {
        int seen = left.load();
        while (seen > 0 && !left.compare_exchange_weak(seen, seen - 1)) {
        }
        return seen == 0;
    }
};

/// The allocations of the program.
inline Refusal& Memory() {
    static constinit Refusal refusal;
    return refusal;
}

/// What `call` returns when every allocation after the first `left` fails.
template <class Call>
auto WithoutMemory(Call&& call, int left = 0) {
    Memory().left = left;
    const auto result = call();
    Memory().left = kNever;
    return result;
}

inline void* RefusableNew(std::size_t size) { return Memory().Now() ? nullptr : std::malloc(size); }

}  // namespace pixmorph_test

// Not inlined: the compiler would see memory of `new` reach `free`, or of `malloc` reach `delete`.
[[gnu::noinline]] void* operator new(std::size_t size) {
    if (void* const memory = pixmorph_test::RefusableNew(size)) return memory;
    throw std::bad_alloc();
}
[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return pixmorph_test::RefusableNew(size);
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
