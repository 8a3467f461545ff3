#include "link/link_family.h"

#include "calculator/charset.h"
#include "platform/letter_case.h"
#include "settings/settings_store.h"

namespace numalink {

Family linkFamily() {
    return equalWithoutCase(settingsValue(setting::linkType), "algebra") ? Family::algebra : Family::cfx;
}

}  // namespace numalink
