// An allocator that refuses when it is told to. The test program replaces operator new with it, and
// the library's malloc and calloc, which are wrapped by the linker.
#pragma once

namespace nequar::test {

// From now on the k-th request (counted from 1) is refused, or it and all that follow.
void refuse_request(long k, bool and_all_later);
// Ends that; whether a request was refused.
bool end_refusals();
// Blocks that are held now.
long blocks_held();

}  // namespace nequar::test
