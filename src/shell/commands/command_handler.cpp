#include "shell/commands/command_handler.h"

#include "platform/event_log.h"
#include "platform/thread_role.h"
#include "shell/editor/program_store.h"
#include "shell/parts/command_states.h"
#include "shell/parts/selected_item.h"
#include "shell/tree/label_edit.h"
#include "shell/tree/selection.h"
#include "shell/views/item_views.h"

namespace numalink {

int handleCommand(CommandId id) {
    assertRole(ThreadRole::graphical);
    if (id == CommandId::openView) return openSelectedItem();
    const Command *row = findCommand(id == CommandId::deleteKey ? CommandId::remove : id);
    if (row == nullptr) return 0;
    if (row->endsLabelEdit && !finishLabelEdit()) return 0;
    if (row->enabledFor != nullptr && selectedItemId() == noItem) return 0;
    if (row->enabledFor != nullptr && severalSelected() && row->enabledForSeveral == nullptr) return 0;
    if (row->storesFirst && !storeProgramFirst()) return 0;
    noteEvent("command " + std::to_string(static_cast<int>(row->id)) + " " +
              (row->text == Text::none ? row->label : wording(row->text)));
    row->run();
    commandStatesChanged();
    return 1;
}

}  // namespace numalink
