// Reads the decisions of a fuzz run from its input; when the input ends, everything is 0.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <span>
#include <vector>

#include "support/random.h"

namespace pixmorph_fuzz {

class FuzzInput {
public:
    FuzzInput(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

    template <class T>
    T Take() {
        T value{};
        const std::size_t count = size_ < sizeof(T) ? size_ : sizeof(T);
        std::memcpy(&value, data_, count);
        data_ += count;
        size_ -= count;
        return value;
    }
    /// A number from 0 to `limit` - 1.
    std::uint32_t Below(std::uint32_t limit) { return Take<std::uint16_t>() % limit; }
    bool Flag() { return (Take<std::uint8_t>() & 1) != 0; }
    /// All that is left.
    std::span<const std::uint8_t> Rest() const { return {data_, size_}; }

private:
    const std::uint8_t* data_;
    std::size_t size_;
};

/// Memory of exactly the size asked for, so that the sanitizer sees the first byte outside.
class ExactBuffer {
public:
    explicit ExactBuffer(std::size_t size, std::uint32_t seed) : size_(size), bytes_(new std::uint8_t[size]) {
        pixmorph_test::ByteGenerator(seed).Fill({bytes_.get(), size});
    }
    /// A copy of `bytes`.
    explicit ExactBuffer(std::span<const std::uint8_t> bytes)
        : size_(bytes.size()), bytes_(new std::uint8_t[bytes.size()]) {
        if (size_ > 0) std::memcpy(bytes_.get(), bytes.data(), size_);
    }
    std::uint8_t* Data() { return bytes_.get(); }
    std::size_t Size() const { return size_; }
    bool operator==(const ExactBuffer& other) const {
        return size_ == other.size_ && std::memcmp(bytes_.get(), other.bytes_.get(), size_) == 0;
    }

private:
    std::size_t size_;
    std::unique_ptr<std::uint8_t[]> bytes_;
};

/// Ends the run as a finding.
inline void Require(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "violated: %s\n", what);
    std::abort();
}

}  // namespace pixmorph_fuzz
