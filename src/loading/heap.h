#pragma once

namespace trendax {

// A load reads one day after another, each into fresh arrays of tens of megabytes. Left to its
// defaults the C library hands every such array back to the system and maps a new one for the
// next day, and the page faults of that cost more than parsing the day. Keeping large blocks in
// the heap for reuse makes a month's load several times cheaper. Call once at start-up.
void keepLargeBlocksForReuse();

} // namespace trendax
