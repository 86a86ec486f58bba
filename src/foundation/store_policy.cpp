#include "foundation/store_policy.h"

#include "foundation/sync.h"

namespace KorvaneSoftware {

std::size_t CachedBytes(CacheShare share) { return GetCacheSize() / static_cast<std::size_t>(share); }

bool StoresPastCache(std::uint64_t bytes, CacheShare share) { return bytes > CachedBytes(share); }

std::size_t CachedFillTail() { return GetCacheSize() / 8 * 5; }

}  // namespace KorvaneSoftware
