#pragma once

#include <emmintrin.h>

namespace ombrel::test {

// Waits until all that was begun is done. Between two calls it keeps the second from overlapping with the first: a pose
// comes alone, so that what counts is the time from its bytes to its record. Its own cost is measured beside.
inline void Settle() { _mm_lfence(); }

}  // namespace ombrel::test
