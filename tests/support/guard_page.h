// A buffer that ends right before a page that cannot be read, or starts right after one: a read too far is a fault.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <new>

namespace pixmorph_test {

class GuardPageBuffer {
public:
    enum class Side { End, Start };

    explicit GuardPageBuffer(std::size_t size, Side side = Side::End) : size_(size) {
        const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
        const std::size_t body = (size + page - 1) / page * page;
        mapped_ = body + 2 * page;
        map_ = mmap(nullptr, mapped_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (map_ == MAP_FAILED) throw std::bad_alloc();
        auto* const bytes = static_cast<std::uint8_t*>(map_);
        mprotect(bytes, page, PROT_NONE);
        mprotect(bytes + page + body, page, PROT_NONE);
        data_ = side == Side::End ? bytes + page + body - size : bytes + page;
    }
    ~GuardPageBuffer() { munmap(map_, mapped_); }
    GuardPageBuffer(const GuardPageBuffer&) = delete;
    GuardPageBuffer& operator=(const GuardPageBuffer&) = delete;

    std::uint8_t* Data() { return data_; }
    std::size_t Size() const { return size_; }

private:
    std::size_t size_;
    std::size_t mapped_ = 0;
    void* map_ = nullptr;
    std::uint8_t* data_ = nullptr;
};

}  // namespace pixmorph_test
