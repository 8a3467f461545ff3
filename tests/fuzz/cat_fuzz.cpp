// Any bytes as a cat file.
#include "import_checks.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    return numalink::readAndCheck(numalink::readCat, {data, size});
}
