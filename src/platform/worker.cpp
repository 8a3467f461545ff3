#include "platform/worker.h"

#include <system_error>

namespace numalink {

bool Worker::start(void (*work)()) {
    try {
        thread = std::thread(work);
    } catch (const std::system_error &) {
        return false;
    }
    return true;
}

}  // namespace numalink
