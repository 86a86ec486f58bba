// When a store goes past the cache: one rule for all kernels, in bytes.
//
// A store past the cache saves reading the destination first and leaves the caller's working set where it is, but the
// next stage finds nothing in the cache. So a result stays there as long as the next stage can find it: while its bytes
// take no more than a share of the level-2 cache.
#pragma once

#include <cstddef>
#include <cstdint>

namespace KorvaneSoftware {

/// The share of the level-2 cache that a result may take, as the divisor of its size.
enum class CacheShare : std::size_t {
    /// Where the result has the cache to itself and its source: moves of samples, and titles, which count what they
    /// read as well. Measured at 352x288 to 1920x1080: from there on it pays to bypass the cache even when the same
    /// frames come again and again.
    Half = 2,
    /// Block copies and fills, which know nothing of their caller's working set, and results in RGB, which are up to
    /// twice as large as their sources.
    Quarter = 4,
};

/// The largest result in bytes that is stored through the cache.
std::size_t CachedBytes(CacheShare share);

/// Whether `bytes` bytes that are written together go past the cache.
bool StoresPastCache(std::uint64_t bytes, CacheShare share);

/// Bytes at the end of a fill that are stored through the cache although the fill bypasses it. Bypassing it for all of
/// a frame is twice as fast as the standard library's fill when the frame is cold, but slower when the same frame is
/// filled again and again; with this part stored ordinarily it is at least as fast in both (see bench,
/// FillBytesStreaming).
std::size_t CachedFillTail();

}  // namespace KorvaneSoftware
