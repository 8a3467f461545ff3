// The running program in a test: the real window over a library of its own, boxes answered by what a test has put in.
#pragma once

#include <gtest/gtest.h>

#include <QTest>
#include <QtWidgets>
#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "calculator/program_info.h"
#include "settings/settings_store.h"
#include "shell/app/start_up.h"
#include "shell/commands/command_handler.h"
#include "shell/commands/menus.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/on_view.h"
#include "shell/parts/selected_item.h"
#include "shell/parts/shell_texts.h"
#include "shell/parts/tree_refresh.h"
#include "shell/tree/item_tree.h"
#include "shell/tree/selection.h"
#include "shell/views/item_views.h"
#include "store/item_store.h"
#include "support/scratch_folder.h"
#include "text/token_table.h"

namespace numalink {

struct ShellTest : testing::Test {
    void SetUp() override;
    void TearDown() override;

    // Boxes and dialogs are answered in the order they open: a button by its text, or a key ("Esc", "Return"). One that
    // finds no answer is closed with Escape. What they said is kept.
    void answer(const std::string &buttonOrKey) { answers.push_back(buttonOrKey); }
    bool startProgram();
    void endProgram();  // as the Exit command
    void select(ItemId id);
    void show(ItemId id);                // selects it in a tree that is refreshed
    void typeKeys(const QString &text);  // into whatever has the focus
    QPoint centreOf(ItemId id);          // in the tree's viewport
    void drag(ItemId item, const QPoint &to);

    static bool commandEnabled(CommandId id) { return commandAction(id)->isEnabled(); }
    static ItemId add(ItemKind itemKind, const std::string &name, ItemId parent = rootId);
    static ItemId addProgram(const std::string &name, const std::string &tokens, ItemId parent = rootId);
    static std::string tokensOf(std::string_view words);  // exchange words, all of them known
    static ItemId addWords(const std::string &name, std::string_view words, ItemId parent = rootId) {
        return addProgram(name, tokensOf(words), parent);
    }

    ScratchFolder folder;
    std::deque<std::string> answers;
    std::function<void()> whileOpen;  // runs once, a tick ahead of the first answer
    std::vector<std::string> shown;   // the wording of each box, the title of each dialog
    bool running = false;
    bool answerBoxes = true;
};

// With the program started.
struct StartedShell : ShellTest {
    void SetUp() override;
};

}  // namespace numalink
