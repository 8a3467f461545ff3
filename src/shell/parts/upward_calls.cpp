#include "shell/parts/upward_calls.h"

namespace numalink {

UpwardCalls upwardCalls;

}  // namespace numalink
