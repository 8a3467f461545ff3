// Long work says here that it is still at it: where there is one thread, others get their turn. With threads of their
// own that is nothing. Whoever calls it may be asleep for a while: it holds no lock.
#pragma once

namespace numalink {

inline void timeSlicePassed() {}

}  // namespace numalink
