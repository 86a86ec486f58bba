// What a block's mode needs of its neighbours. Included inside the unnamed namespace of a set.

// What a mode needs; DC takes less too, but not here.
constexpr bool NeedsTop(H264IntraBlockMode mode) {
    return mode != INTRA_BLOCK_HORIZONTAL && mode != INTRA_BLOCK_HORIZONTAL_UP;
}
constexpr bool NeedsLeft(H264IntraBlockMode mode) {
    return mode != INTRA_BLOCK_VERTICAL && mode != INTRA_BLOCK_DIAGONAL_DOWN_LEFT && mode != INTRA_BLOCK_VERTICAL_LEFT;
}
constexpr std::uint32_t NeededBy(H264IntraBlockMode mode) {
    return (NeedsTop(mode) ? std::uint32_t{NEIGHBOUR_TOP} : 0u) |
           (NeedsLeft(mode) ? std::uint32_t{NEIGHBOUR_LEFT} : 0u) |
           (NeedsTop(mode) && NeedsLeft(mode) ? std::uint32_t{NEIGHBOUR_TOP_LEFT} : 0u);
}

std::uint64_t LoadBytes(const std::uint8_t* p, int count) {
    std::uint64_t bytes = 0;
    __builtin_memcpy(&bytes, p, static_cast<std::size_t>(count));
    return bytes;
}

// The left column of bytes, its last sample lowest.
template <int kSize>
std::uint64_t LeftUpwards(const std::uint8_t* samples, std::ptrdiff_t stride) {
    std::uint64_t bytes = 0;
    for (int y = 0; y < kSize; ++y) bytes = bytes << 8 | samples[y * stride - 1];
    return bytes;
}

Vec Shuffle(Vec a, Vec places) { return {_mm_shuffle_epi8(a.v, places.v)}; }
