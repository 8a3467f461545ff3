#include "shell/parts/on_view.h"

namespace numalink {

ItemKind viewKind = kind::none;
ItemId viewItemId = noItem;

}  // namespace numalink
