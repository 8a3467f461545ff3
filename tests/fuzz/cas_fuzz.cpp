// Any bytes as a cas file.
#include "import_checks.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    return numalink::readAndCheck(numalink::readCas, {data, size});
}
