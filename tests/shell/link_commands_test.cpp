// The commands of the link, with a calculator's end of the line that hears and says nothing.
#include <atomic>

#include "link/link_thread.h"
#include "link/transmit_queue.h"
#include "platform/clock.h"
#include "shell/shell_fixture.h"
#include "virtual_calculator/pseudo_terminal.h"

namespace numalink {

// Where the clock stands still, or 0: however long a loaded machine takes, an answer isn't overdue meanwhile.
std::atomic<std::uint64_t> heldAt = 0;

struct LinkCommands : StartedShell {
    void SetUp() override {
        clockPort.tickCount = [] { return heldAt != 0 ? heldAt.load() : systemClock.tickCount(); };
        StartedShell::SetUp();
        settingsSetValue(setting::comPort, terminal.path);
        startLinkThread();
        ASSERT_TRUE(tells("Ready"));
        first = addProgram("ONE", "A");
        second = addProgram("TWO", "B");
    }
    void TearDown() override {
        StartedShell::TearDown();
        clockPort = systemClock;
    }
    void press(ItemId id, Qt::Key key) {
        show(id);
        QTest::keyClick(treeView, key);
    }
    static bool tells(const char *text) {
        return QTest::qWaitFor([&] { return linkField->toolTip().contains(QLatin1String(text)); }, 10000);
    }
    static bool transmitQueueIs(bool enabled) {
        return QTest::qWaitFor([&] { return commandEnabled(CommandId::transmitQueue) == enabled; }, 10000);
    }
    // What the calculator hears until the program has given up waiting for its answer.
    std::vector<std::uint8_t> heard() {
        const bool ended = QTest::qWaitFor([] { return transmitQueueCount() == 0; }, 10000);
        EXPECT_TRUE(ended);
        return terminal.take(10, 100);
    }

    PseudoTerminal terminal;
    ItemId first = noItem;
    ItemId second = noItem;
};

TEST_F(LinkCommands, QueueOnlyWaitsAndTransmitTakesAllThatWaits) {
    press(first, Qt::Key_F8);
    EXPECT_TRUE(tells("Waiting to be sent: 1 (ONE)"));
    EXPECT_TRUE(terminal.take(1, 100).empty());
    EXPECT_TRUE(transmitQueueIs(true));
    heldAt = systemClock.tickCount();
    press(second, Qt::Key_F6);
    press(first, Qt::Key_F6);
    EXPECT_EQ(transmitQueueIds(), (std::vector<ItemId>{first, second}));
    EXPECT_TRUE(transmitQueueIs(false)) << "it is on its way";
    heldAt = 0;
    EXPECT_EQ(heard(), std::vector<std::uint8_t>{0x16});
    EXPECT_TRUE(tells("No calculator answered. Items dropped from the queue: 2"));
    EXPECT_TRUE(transmitQueueIs(false));

    press(first, Qt::Key_F8);
    EXPECT_TRUE(transmitQueueIs(true));
    commandAction(CommandId::transmitQueue)->trigger();
    EXPECT_EQ(heard(), std::vector<std::uint8_t>{0x16});

    for (const ItemId id : {first, second, addProgram("LAST", "C")}) press(id, Qt::Key_F8);
    handleCommand(CommandId::showQueue);
    auto *list = mainWindow->findChild<QWidget *>(QStringLiteral("queueWindow"))->findChild<QListWidget *>();
    list->setCurrentRow(1);
    QTest::keyClick(list, Qt::Key_Delete);
    EXPECT_TRUE(QTest::qWaitFor([list] { return list->count() == 2; }));
    EXPECT_EQ(list->currentItem()->text(), QStringLiteral("LAST")) << "what comes into its place is chosen";
    transmitQueueClear();
}

}  // namespace numalink
