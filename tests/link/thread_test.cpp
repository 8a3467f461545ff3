// The link's thread on a pseudo terminal in real time, beside a user who alters the library: transfers, stops at any
// moment, a box that is open meanwhile, a cable that is pulled out.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <memory>
#include <thread>

#include "exchange/import/import.h"
#include "link/attention.h"
#include "link/link_scene.h"
#include "link/link_thread.h"
#include "platform/serial_line.h"
#include "telling/graphical_calls.h"
#include "telling/language_table.h"
#include "virtual_calculator/calculator_mover.h"
#include "virtual_calculator/pseudo_terminal.h"

namespace numalink {

namespace {

constexpr std::uint64_t patience = 60000;  // milliseconds that a loaded machine may take

std::array<std::atomic<int>, 20000> timesShown;  // of status lines and boxes, by their texts
std::atomic<int> timesWaitingTold;               // in status lines of any text

void noteShown(Text text) { timesShown.at(static_cast<std::size_t>(text))++; }
int timesOf(Text text) { return timesShown.at(static_cast<std::size_t>(text)); }
bool wasShown(Text text) { return timesOf(text) > 0; }

template <typename Condition>
bool waitFor(Condition condition) {
    const std::uint64_t end = tickCount() + patience;
    bool holds = condition();
    while (!holds && tickCount() < end) {
        graphicalCallsServe();
        sleepMilliseconds(2);
        holds = condition();
    }
    return holds;
}

struct LinkThreads : testing::Test {
    void SetUp() override {
        threadRole = ThreadRole::graphical;
        languageLoad("English", "English");
        for (auto &times : timesShown) times = 0;
        timesWaitingTold = 0;
        userInterface = userInterfaceSilent;
        userInterface.statusText = [](StatusPart, Text text, const std::string &worded) {
            if (worded.find("Waiting to be sent: 1 (A)") != std::string::npos) timesWaitingTold++;
            noteShown(text);  // last: it is what a test waits for
        };
        userInterface.messageBox = [](const Box &box) {
            noteShown(box.bodyText);
            return Answer::ok;
        };
        userInterface.askItemExists = [](const std::string &) { return Answer::yes; };
        ASSERT_TRUE(storeOpen());
        transmitQueueClear();
        usePort(terminal.path);
        chooseFamily(false);
    }
    void TearDown() override {
        stopLinkThread();
        storeClose();
        userInterface = userInterfaceSilent;
        threadRole = ThreadRole::unknown;
    }

    static void usePort(const std::string &path) { settingsSetValue(setting::comPort, path); }
    void chooseFamily(bool algebra) {
        other.algebra = algebra;
        settingsSetValue(setting::linkType, algebra ? "algebra" : "cfx");
    }
    void startAndWait() {
        startLinkThread();
        ASSERT_TRUE(waitFor([this] { return wasShown(other.algebra ? Text::algebraLinkIdle : Text::cfxLinkIdle); }));
    }

    ScratchFolder folder;
    PseudoTerminal terminal;
    calculator::Calculator other;
    calculator::Moving moving{.patience = patience};
};

calculator::Item numberedItem(bool algebra, int number) {
    const std::string name = "P" + std::to_string(number);
    const calculator::Bytes tokens(static_cast<std::size_t>(20 + number), 'A');
    return algebra ? calculator::algebraProgram(name, tokens) : calculator::program(name, tokens);
}

struct BesideTheUser : LinkThreads, testing::WithParamInterface<bool> {};

ItemId addProgram(const std::string &name) {
    return storeAddItem({.name = name,
                         .parent = storeStandardFolder(1001),
                         .kind = kind::program,
                         .head = encodeProgramInfo({}),
                         .data = {':', 0xFF, 0},
                         .whenTaken = NameTaken::nextFreeName});
}

// What a user does meanwhile.
void alterLibrary(int step, const std::string &file) {
    const ItemId id = addProgram("OWN" + std::to_string(step % 5));
    storeRename(id, "RENAMED" + std::to_string(step));
    if (step % 2 == 0) storeDelete(id);
    if (step % 8 == 0) importFile(file, "own");
    storeListItems();
}

TEST_P(BesideTheUser, itemsComeAndGo) {
    const calculator::Item own = calculator::program("IMPORTED", {'A', 'B'});
    folder.write("own.cas", std::string(own.head.begin(), own.head.end()).append(own.data.begin(), own.data.end()));
    userInterface.askImport = [](ImportQuestion &) {};  // as it stands: into the standard folders
    userInterface.leaveCurrentView = [] { return true; };
    chooseFamily(GetParam());
    startAndWait();
    for (int i = 0; i < 6; i++) other.toSend.push_back(numberedItem(GetParam(), i));
    std::thread sending([this] {
        startSending(other);
        moveCalculator(other, terminal.master, moving);
    });
    for (int step = 0; step < 40; step++) alterLibrary(step, folder.path + "own.cas");
    sending.join();
    ASSERT_TRUE(waitFor([] { return !linkConversationRuns(); }));
    EXPECT_EQ(other.failures, 0);
    const ItemId programs = storeStandardFolder(1001);
    for (int i = 0; i < 6; i++) EXPECT_TRUE(storeItemExists("P" + std::to_string(i), programs));
    EXPECT_TRUE(storeItemExists("IMPORTED", programs));

    other.state = calculator::State::rest;
    other.closed = false;
    int taken = 0;
    moving.taken = [&](const calculator::Item &) { taken++; };
    std::thread receiving([this] { moveCalculator(other, terminal.master, moving); });
    for (int i = 0; i < 6; i++) EXPECT_TRUE(queueItem(storeFindItem("P" + std::to_string(i), programs)));
    EXPECT_TRUE(beginTransmit());
    for (int step = 40; step < 80; step++) alterLibrary(step, folder.path + "own.cas");
    EXPECT_TRUE(waitFor([] { return transmitQueueCount() == 0 && !linkConversationRuns(); }));
    receiving.join();
    EXPECT_EQ(taken, 6);
    EXPECT_TRUE(other.closed);
}

INSTANTIATE_TEST_SUITE_P(OfBothFamilies, BesideTheUser, testing::Bool());

TEST_F(LinkThreads, restartAtAnyMomentWithoutWaiting) {
    std::vector<std::uint64_t> times;
    moving.byteMicroseconds = 1000;
    for (int round = 0; round < 12; round++) {
        calculator::Calculator sender;
        sender.toSend.push_back(calculator::program("LONG", calculator::Bytes(200, 'B')));
        std::atomic<bool> stop = false;
        calculator::Moving move{.byteMicroseconds = 1000, .patience = patience, .stop = &stop};
        startLinkThread();
        startSending(sender);
        std::thread sending([&] { moveCalculator(sender, terminal.master, move); });
        sleepMilliseconds(std::uint64_t{7} * static_cast<std::uint64_t>(round));
        const std::uint64_t start = tickCount();
        startLinkThread();
        times.push_back(tickCount() - start);
        stop = true;
        sending.join();
        stopLinkThread();
        terminal.take(10000, 20);
    }
    std::ranges::sort(times);
    EXPECT_LE(times[times.size() / 2], 100u);
    EXPECT_EQ(transmitQueueCount(), 0u);
    EXPECT_FALSE(storeIsDamaged());
}

// The window's way to show a box: it is left open, and the link's thread waits for its answer.
std::atomic<int> openedBoxes = 0;
std::atomic<int> closedBoxes = 0;

TEST_F(LinkThreads, stopWhileTheUserIsBeingAsked) {
    openedBoxes = closedBoxes = 0;
    userInterface.messageBox = [](const Box &) {
        const auto answer =
            graphicalAsk([](GraphicalQuestion) { openedBoxes++; }, [](GraphicalQuestion) { closedBoxes++; });
        return answer ? Answer::ok : Answer::cancel;
    };
    startAndWait();
    terminal.put({0x16});
    EXPECT_EQ(terminal.take(1, 5000), (Bytes{0x13}));
    terminal.put(Bytes(40, 'X'));
    ASSERT_TRUE(waitFor([] { return openedBoxes == 1; }));
    const std::uint64_t start = tickCount();
    stopLinkThread();
    EXPECT_LT(tickCount() - start, 2000u);
    EXPECT_EQ(terminal.take(1, 50), Bytes{});  // without a word to the calculator
    EXPECT_TRUE(waitFor([] { return closedBoxes == 1; }));
}

void goAsFarAsModels(const PseudoTerminal &terminal) {
    EXPECT_EQ(terminal.take(1, 5000), (Bytes{0x16}));
    terminal.put({0x13});
    EXPECT_EQ(terminal.take(40, 5000).size(), 40u);
}

TEST_F(LinkThreads, sendAgainWhatACutHasLeftOnceThePortIsBack) {
    const std::string name = folder.path + "port";
    ASSERT_EQ(symlink(terminal.path.c_str(), name.c_str()), 0);
    usePort(name);
    chooseFamily(true);
    startAndWait();
    const ItemId program = addProgram("A");
    EXPECT_TRUE(queueAndBegin(program));
    goAsFarAsModels(terminal);
    terminal.unplug();
    ASSERT_TRUE(waitFor([] { return wasShown(Text::portLost); }));
    EXPECT_TRUE(wasShown(Text::portLostInTransfer));
    EXPECT_EQ(timesWaitingTold, 1);
    PseudoTerminal again;
    unlink(name.c_str());
    ASSERT_EQ(symlink(again.path.c_str(), name.c_str()), 0);
    ASSERT_TRUE(waitFor([] { return timesWaitingTold == 2; }));
    EXPECT_TRUE(queueAndBegin(program));
    goAsFarAsModels(again);
    EXPECT_FALSE(wasShown(Text::portNotOpened));
    startLinkThread();
    EXPECT_TRUE(wasShown(Text::transferStopped));
    EXPECT_EQ(transmitQueueIds(), std::vector<ItemId>{program});
}

TEST_F(LinkThreads, tellOnceThatAPortIsMissingAndWaitForNoAnswerThere) {
    usePort(folder.path + "absent");
    startLinkThread();
    EXPECT_TRUE(queueItem(addProgram("A")));
    EXPECT_FALSE(wasShown(Text::portNotOpened)) << "nobody has asked for the port yet";
    EXPECT_TRUE(beginTransmit());
    EXPECT_FALSE(transmitCanBegin());
    EXPECT_TRUE(waitFor([] { return wasShown(Text::portNotOpened); }));
    EXPECT_FALSE(attentionIsOut());
    EXPECT_EQ(transmitQueueCount(), 0u);
    EXPECT_EQ(transmitDroppedCount(), 1u);
    EXPECT_EQ(transmitQueueAgain(), 1u);
    EXPECT_TRUE(transmitCanBegin());
    EXPECT_EQ(timesOf(Text::portNotOpened), 1);
    EXPECT_EQ(timesOf(Text::portMissing), 2) << "a line at the start, and one for the attempt";
}

bool isHeld(const std::string &path) {
    const int probe = ::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK);
    const bool held = probe < 0 || flock(probe, LOCK_EX | LOCK_NB) != 0;
    if (probe >= 0) ::close(probe);
    return held;
}

std::vector<std::string> presentPorts[3];  // at three times
std::atomic<std::size_t> presentTime;

// Items come and go at the one of two ports that a calculator is at, and at the other once it has moved there.
TEST_F(LinkThreads, findTheCalculatorWhereverItIs) {
    auto second = std::make_unique<PseudoTerminal>();
    presentPorts[1] = {terminal.path, second->path};
    presentPorts[2] = {terminal.path};
    presentTime = 0;
    linkPortsPresent = [] { return presentPorts[presentTime]; };
    usePort(setting::portAutomatic);
    startLinkThread();
    ASSERT_TRUE(waitFor([] { return wasShown(Text::portAwaited); }));
    const ItemId program = addProgram("A");
    EXPECT_TRUE(queueAndBegin(program));
    ASSERT_TRUE(waitFor([] { return wasShown(Text::portNotOpened); }));
    presentTime = 1;
    ASSERT_TRUE(waitFor([] { return wasShown(Text::cfxLinkIdle); }));
    int taken = 0;
    moving.taken = [&](const calculator::Item &) { taken++; };
    std::thread receiving([&] { moveCalculator(other, second->master, moving); });
    EXPECT_TRUE(queueAndBegin(program));
    EXPECT_TRUE(waitFor([] { return transmitQueueCount() == 0 && !linkConversationRuns(); }));
    receiving.join();
    EXPECT_EQ(taken, 1);
    presentTime = 2;
    second.reset();
    ASSERT_TRUE(waitFor([] { return wasShown(Text::portLost); }));
    ASSERT_TRUE(waitFor([this] { return isHeld(terminal.path); }));
    calculator::Calculator sender;
    sender.toSend.push_back(numberedItem(false, 7));
    startSending(sender);
    std::thread sending([&] { moveCalculator(sender, terminal.master, moving); });
    EXPECT_TRUE(waitFor([] { return storeItemExists("P7", storeStandardFolder(1001)); }));
    sending.join();
    const std::uint64_t start = tickCount();
    stopLinkThread();
    EXPECT_LT(tickCount() - start, 2000u);
    linkPortsPresent = [] { return serialDevices(); };
}

TEST_F(LinkThreads, withoutAPortSayNothingUntilSomethingShallGo) {
    for (const char *port : {setting::portOff, setting::comPortDefault}) {
        for (auto &times : timesShown) times = 0;
        usePort(port);
        stopLinkThread();
        startLinkThread();
        ASSERT_TRUE(waitFor([] { return linkPort() == LinkPort::refused; }));
        EXPECT_TRUE(queueAndBegin(addProgram("A")));
        EXPECT_TRUE(waitFor([] { return wasShown(Text::portNotOpened); }));
        EXPECT_EQ(timesOf(Text::portNone), 1) << port << ": only with the attempt";
    }
}

}  // namespace

}  // namespace numalink
