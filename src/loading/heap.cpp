#include "loading/heap.h"

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace trendax {

void keepLargeBlocksForReuse() {
#if defined(__GLIBC__)
    mallopt(M_MMAP_THRESHOLD, 4 * 1024 * 1024);
    mallopt(M_TRIM_THRESHOLD, 32 * 1024 * 1024);
#endif
}

} // namespace trendax
