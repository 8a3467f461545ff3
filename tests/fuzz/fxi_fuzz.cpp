// Any bytes as a fxi file.
#include "import_checks.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    return numalink::readAndCheck(numalink::readFxi, {data, size});
}
