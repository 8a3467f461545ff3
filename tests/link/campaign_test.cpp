// Seeded conversations with a calculator whose cable and manners are bad: lost, doubled, flipped and late bytes,
// unknown heads, lengths beyond all bounds, closing frames at odd places. No time is really waited for. Some hundred at
// each run; NUMALINK_CONVERSATIONS=20000 are the whole.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <set>

#include "link/link_scene.h"
#include "link/scripted_line.h"
#include "support/random_items.h"
#include "support/rounds.h"
#include "telling/language_table.h"
#include "virtual_calculator/calculator_mover.h"

namespace numalink {

namespace {

using calculator::Calculator;
using calculator::Item;

struct Case {
    std::uint64_t seed = 0;
    std::mt19937_64 chance;
    bool algebra = false;
    bool receives = false;  // the program does
    bool faulty = false;
    calculator::Faults faults;
    double late = 0;
    Calculator other;
    std::deque<std::uint8_t> stray;  // said at once, whatever the calculator's state
    std::vector<Item> items;
    std::string fault;
};

// Over all conversations.
struct Result {
    std::uint64_t faultless = 0;  // without any fault: these have to carry every item over unchanged
    std::uint64_t stored = 0;
    std::uint64_t transmitted = 0;
};

Case *current = nullptr;
Result result;
int lastStatus = 0;

std::uint64_t roll(std::uint64_t below) { return current->chance() % below; }
bool oneIn(std::uint64_t count) { return roll(count) == 0; }

void fail(const std::string &what) {
    if (current->fault.empty()) current->fault = "seed " + std::to_string(current->seed) + ": " + what;
}

// A head that promises something else than what follows, or nothing that is known.
void spoilItem(Item &item) {
    const auto spoil = [&](std::initializer_list<std::size_t> places) {
        for (const std::size_t at : places)
            if (at < item.head.size()) item.head[at] = static_cast<std::uint8_t>(roll(256));
    };
    const std::function<void()> ways[] = {[&] { spoil({1}); },
                                          [&] {
                                              spoil({7, 8, 9, 10});
                                          },
                                          [&] { item.head[9] = item.head[10] = item.head[8] = 0xFF; },
                                          [&] { item.head = calculator::closingFrame(current->algebra); },
                                          [&] { item.data.resize(roll(item.data.size() + 1)); },
                                          [&] {
                                              spoil({32, 33, 34, 35});
                                          }};
    ways[roll(6)]();
    if (oneIn(2)) calculator::setSum(item.head);
}

void chooseFaults(Case &one) {
    one.faulty = !oneIn(4);
    if (!one.faulty) return;
    constexpr double rates[] = {0, 0.0005, 0.005, 0.05};
    one.faults.lost = rates[roll(4)];
    one.faults.doubled = rates[roll(4)];
    one.faults.flipped = rates[roll(4)];
    one.faults.chance.seed(one.seed * 7 + 1);
    one.late = rates[roll(4)];
    if (oneIn(8)) one.other.manners.headAnswer = static_cast<std::uint8_t>(roll(256));
    if (oneIn(8)) one.other.manners.dataAnswer = static_cast<std::uint8_t>(roll(256));
    one.other.manners.silent = oneIn(20);
    one.other.manners.silentAfterHead = oneIn(20);
    if (oneIn(10))
        for (const std::uint8_t byte : calculator::randomBytes(current->chance, roll(300), 256))
            one.stray.push_back(byte);
}

void chooseItems(Case &one) {
    const std::size_t count = 1 + roll(3);
    for (std::size_t i = 0; i < count; i++) {
        Item item = calculator::randomItem(one.chance, one.algebra, one.receives);
        if (one.faulty && one.receives && oneIn(3)) spoilItem(item);
        one.items.push_back(item);
        if (one.receives) one.other.toSend.push_back(item);
        if (calculator::isLastByNature(item.head)) break;
    }
    constexpr std::uint8_t answers[] = {0x06, 0x15, 0x18};
    one.other.manners.existsAnswer = answers[one.faulty ? roll(3) : 0];
    if (!one.algebra && !one.receives && oneIn(4)) one.other.manners.headAnswer = 0x21;
}

struct CalculatorLine : ScriptedLine {
    explicit CalculatorLine(Case &of) : one(of) {}
    void hear(std::uint8_t byte) override {
        for (const std::uint8_t spoilt : calculator::spoil(one.faults, byte)) calculator::hear(one.other, spoilt);
    }
    void speak(std::deque<std::uint8_t> &said) override {
        for (const std::uint8_t byte : std::exchange(one.other.said, {}))
            for (const std::uint8_t spoilt : calculator::spoil(one.faults, byte)) said.push_back(spoilt);
        if (one.stray.empty() || !oneIn(4)) return;
        said.push_back(one.stray.front());
        one.stray.pop_front();
    }
    void silence() override {
        hearSilence(one.other);
        transmitDeadlineTest();
    }
    std::uint64_t delay() override {
        const bool late = one.late != 0 && std::uniform_real_distribution<double>(0, 1)(one.chance) < one.late;
        return late ? roll(15000) : 0;
    }
    bool isOver() override {
        const bool rests = one.other.state == calculator::State::over || one.other.state == calculator::State::rest;
        return rests && one.other.said.empty() && one.stray.empty() && !attentionIsOut();
    }

    Case &one;
};

Answer answerBox(const Box &box) {
    static const std::set<int> known{0, 24, 41, 42, 43, 45, 51, 106, 108, 172};
    if (!known.contains(textNumber(box.bodyText))) fail("box " + std::to_string(textNumber(box.bodyText)));
    if (!current->faulty) fail("a box without a fault: " + box.body);
    return Answer::ok;
}

void installUi() {
    userInterface = userInterfaceSilent;
    userInterface.messageBox = [](const Box &box) {
        return box.buttons == BoxButtons::okCancel ? Answer::ok : answerBox(box);
    };
    userInterface.statusText = [](StatusPart, Text text, const std::string &) { lastStatus = textNumber(text); };
    userInterface.askItemExists = [](const std::string &) {
        constexpr Answer answers[] = {Answer::yes, Answer::no, Answer::cancel};
        return answers[current->faulty ? roll(3) : 0];
    };
    userInterface.askPictureSlot = [](const std::string &, int) { return static_cast<int>(1 + roll(6)); };
}

// Everything in the library is whole: lengths as the heads tell them, and all sums good.
void checkItem(const StoredItem &item) {
    const std::string name = "kind " + std::to_string(item.kind);
    if (isTextKind(item.kind)) {
        const auto info = decodeProgramInfo(item.head);
        if (!info || info->imageLength != item.data.size()) fail("a cut program");
        return;
    }
    if (calculator::headLength(item.head) != item.head.size() || !calculator::isGood(item.head))
        fail("a bad head, " + name);
    if (item.kind != kind::algebraBlock && item.kind != kind::picture &&
        calculator::dataLength(item.head) != item.data.size() && readBig16(item.head, 7) == 0)
        fail("cut data, " + name);
    // A damaged copy of a colour screen is kept, for what can be seen of it.
    if (item.kind != kind::colorScreen && !calculator::isGood(Item{item.head, item.data})) fail("a bad frame, " + name);
}

// Without faults each item has to be there as it was sent, unless a later one took its place.
void checkAllThere(const Case &one) {
    std::vector<StoredItem> stored;
    for (const ItemEntry &entry : storeListItems()) {
        StoredItem item;
        if (!isFolderKind(entry.kind) && storeReadItem(entry.id, item)) stored.push_back(item);
    }
    const Item &last = one.items.back();
    const bool there = std::ranges::any_of(stored, [&](const StoredItem &item) {
        if (!one.algebra || last.head[10] != 1) return item.data == last.data;
        Bytes image{':'};
        image.insert(image.end(), last.data.begin() + 11, last.data.end() - 2);
        image.push_back(0xFF);
        return item.data == image;
    });
    if (!there) fail("an item is missing");
}

void queueItems(const Case &one) {
    for (const Item &item : one.items) {
        ItemKind itemKind = one.algebra ? kind::algebraBlock : classifyFrame(ByteView(item.head).subspan(1));
        NewItem stored{
            .name = calculator::randomName(current->chance), .kind = itemKind, .head = item.head, .data = item.data};
        if (one.algebra && item.head[10] == 1) {
            stored.kind = kind::program;
            stored.data = calculator::program("X", calculator::randomBytes(current->chance, roll(300), 255)).data;
        }
        if (isTextKind(stored.kind))
            stored.head = encodeProgramInfo(
                {.imageLength = static_cast<std::uint32_t>(stored.data.size()), .name = stored.name, .password = {}});
        stored.whenTaken = NameTaken::nextFreeName;
        const ItemId id = storeAddItem(stored);
        if (id == noItem || !queueItem(id)) fail("an item can't be queued");
    }
}

void checkAfter(const Case &one) {
    std::uint64_t count = 0;
    for (const ItemEntry &entry : storeListItems()) {
        StoredItem item;
        if (isFolderKind(entry.kind)) continue;
        if (!storeReadItem(entry.id, item)) fail("an item can't be read");
        if (one.receives) checkItem(item);
        count++;
    }
    if (one.receives) result.stored += count;
    result.transmitted += one.other.received.size();
    const int idle = one.algebra ? 102 : 1;
    constexpr int restful[] = {172, 24, 101, 104};  // notices and the ends of conversations stay
    if (lastStatus != idle && std::ranges::find(restful, lastStatus) == std::end(restful))
        fail("not idle: status " + std::to_string(lastStatus));
    if (transmitConversationRuns()) fail("not idle");
    if (scriptedLineReads() >= 400000) fail("no end");
    if (one.faulty) return;
    result.faultless++;
    if (one.receives) checkAllThere(one);
    if (!one.receives && one.other.received.size() != one.items.size()) fail("not all items were transmitted");
    if (!one.receives && transmitQueueCount() != 0) fail("the queue is not empty");
}

void runOne(Case &one) {
    current = &one;
    one.chance.seed(one.seed);
    one.algebra = oneIn(2);
    one.receives = oneIn(2);
    const bool removeColor = roll(2) == 1;
    one.other.algebra = one.algebra;
    chooseFaults(one);
    chooseItems(one);
    for (const ItemEntry &entry : storeListChildren(rootId)) storeDelete(entry.id);
    CalculatorLine line(one);
    scriptedLineInstall(line);
    LinkScene::prepare(one.algebra, removeColor);
    if (one.receives) {
        if (!one.algebra && oneIn(2)) one.other.manners.attention = 0x15;
        startSending(one.other);
    } else {
        queueItems(one);
        if (!beginTransmit()) fail("nothing to transmit");
    }
    linkIdleLoop(one.algebra ? Family::algebra : Family::cfx);
    checkAfter(one);
}

TEST(Campaign, alwaysEndsIdleWithNothingHalfStored) {
    languageLoad("English", "English");
    const LinkScene scene;
    ASSERT_TRUE(scene.isOpen);
    installUi();
    const auto count = static_cast<std::uint64_t>(countFromEnvironment("NUMALINK_CONVERSATIONS", 400));
    for (std::uint64_t seed = 1; seed <= count; seed++) {
        Case one;
        one.seed = seed;
        runOne(one);
        ASSERT_EQ(one.fault, "");
        if (seed % 200 != 0) continue;
        storeClose();
        ASSERT_TRUE(storeOpen() && !storeIsDamaged()) << "after seed " << seed;
    }
    EXPECT_GT(result.faultless, 50u);
    EXPECT_GT(result.stored, 60u);
    EXPECT_GT(result.transmitted, 100u);
}

}  // namespace

}  // namespace numalink
