// The real line over a pseudo terminal: time-outs, wakes, exclusive use, unplugging, and what COM1 means.
#include "platform/serial_line.h"

#include <grp.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <filesystem>
#include <thread>

#include "platform/port_watch.h"
#include "support/scratch_folder.h"
#include "virtual_calculator/pseudo_terminal.h"

namespace numalink {

namespace {

constexpr unsigned baud = 9600;

std::uint64_t milliseconds() { return systemSerialLine.microseconds() / 1000; }

struct SerialLines : testing::Test {
    void SetUp() override { ASSERT_EQ(systemSerialLine.open(terminal.path, baud).fault, LineFault::none); }
    void TearDown() override { systemSerialLine.close(); }

    LineRead read(std::size_t count, ReadLimits limits) {
        bytes.assign(count, 0);
        return systemSerialLine.read(bytes, limits);
    }

    PseudoTerminal terminal;
    Bytes bytes;
};

template <typename Work>
std::thread soon(Work work) {
    return std::thread([work] {
        systemSerialLine.sleepUntil(systemSerialLine.microseconds() + 50000);
        work();
    });
}

TEST_F(SerialLines, carryEveryByteBothWays) {
    Bytes all(256);
    for (std::size_t i = 0; i < all.size(); i++) all[i] = static_cast<std::uint8_t>(i);
    terminal.put(all);
    EXPECT_EQ(read(256, {.total = 5000}).count, 256u);
    EXPECT_EQ(bytes, all);
    EXPECT_TRUE(systemSerialLine.write(all));
    EXPECT_EQ(terminal.take(256, 5000), all);
}

TEST_F(SerialLines, giveUpAtTheirTotalAndAfterQuiet) {
    const std::uint64_t start = milliseconds();
    EXPECT_EQ(read(1, {.total = 120}).end, ReadEnd::timeOut);
    EXPECT_GE(milliseconds() - start, 120u);
    terminal.put({1, 2});
    const std::uint64_t second = milliseconds();
    const LineRead some = read(10, {.total = 60000, .quiet = 80});
    EXPECT_EQ(some.count, 2u);
    EXPECT_EQ(some.end, ReadEnd::timeOut);
    EXPECT_LT(milliseconds() - second, 30000u);
    EXPECT_TRUE(systemSerialLine.write(Bytes(96)));
    const std::uint64_t third = milliseconds();
    EXPECT_EQ(read(1, {.total = 20}).end, ReadEnd::timeOut);
    EXPECT_GE(milliseconds() - third, 120u) << "96 bytes take 110 ms to leave";
}

// A line that is faster than its speed: once the other side has answered, nothing is waited for that has long gone.
TEST_F(SerialLines, areFreeOnceTheOtherSideAnswers) {
    for (int i = 0; i < 40; i++) {
        EXPECT_TRUE(systemSerialLine.write(Bytes(250)));
        terminal.take(250, 5000);
    }
    terminal.put({0x2B});
    EXPECT_EQ(read(1, {.total = 5000}).count, 1u);
    const std::uint64_t start = milliseconds();
    EXPECT_EQ(read(256, {.quiet = 50}).end, ReadEnd::timeOut);
    EXPECT_LT(milliseconds() - start, 5000u);  // of 11 seconds that the line would have taken
}

TEST_F(SerialLines, wakeEndsOneReadAndInterruptAll) {
    std::thread waker = soon([] { systemSerialLine.wake(); });
    EXPECT_EQ(read(1, {.total = 60000}).end, ReadEnd::woken);
    waker.join();
    EXPECT_EQ(read(1, {.total = 20}).end, ReadEnd::timeOut);
    systemSerialLine.interrupt();
    EXPECT_EQ(read(1, {.total = 60000}).end, ReadEnd::woken);
    EXPECT_EQ(read(1, {.total = 60000}).end, ReadEnd::woken);
    EXPECT_FALSE(systemSerialLine.write(Bytes{1}));
}

TEST_F(SerialLines, aStuckWriteEndsAtAnInterrupt) {
    std::thread waker = soon([] { systemSerialLine.interrupt(); });
    EXPECT_FALSE(systemSerialLine.write(Bytes(1 << 20)));
    waker.join();
}

TEST_F(SerialLines, anUnpluggedDeviceIsGone) {
    std::thread hand = soon([this] { terminal.unplug(); });
    EXPECT_EQ(read(1, {.total = 60000}).end, ReadEnd::gone);
    hand.join();
}

TEST_F(SerialLines, areHeldAgainstOthersUntilClosed) {
    const int other = ::open(terminal.path.c_str(), O_RDWR | O_NOCTTY);
    EXPECT_TRUE(other < 0 || flock(other, LOCK_EX | LOCK_NB) != 0);
    if (other >= 0) ::close(other);
    systemSerialLine.close();
    const int after = ::open(terminal.path.c_str(), O_RDWR | O_NOCTTY);
    ASSERT_GE(after, 0);
    ASSERT_EQ(flock(after, LOCK_EX | LOCK_NB), 0);
    EXPECT_EQ(systemSerialLine.open(terminal.path, baud).fault, LineFault::busy);
    ::close(after);
    EXPECT_EQ(systemSerialLine.open(terminal.path, baud).fault, LineFault::none);
}

TEST(SerialDevices, tellWhyTheyDoNotOpen) {
    const ScratchFolder folder;
    folder.write("plain", "text");
    EXPECT_EQ(systemSerialLine.open(folder.path + "absent", baud).fault, LineFault::missing);
    EXPECT_EQ(systemSerialLine.open(folder.path + "plain", baud).fault, LineFault::notSerial);
    EXPECT_EQ(folder.read("plain"), "text");
}

// Files of somebody who may not use them, although a group may: only such a group is worth naming.
TEST(SerialDevices, nameTheGroupThatGivesPermission) {
    const ScratchFolder folder;
    const bool isRoot = geteuid() == 0;
    const uid_t nobody = isRoot ? 65534 : geteuid();
    const gid_t given = isRoot ? 20 : getegid();
    const auto openOf = [&](const char *name, gid_t group, mode_t mode) {
        const std::string path = folder.path + name;
        folder.write(name, "");
        EXPECT_EQ(chown(path.c_str(), nobody, group), 0);
        EXPECT_EQ(chmod(path.c_str(), mode), 0);
        EXPECT_EQ(seteuid(nobody), 0);
        const LineOpening opening = systemSerialLine.open(path, baud);
        EXPECT_EQ(seteuid(isRoot ? 0 : nobody), 0);
        EXPECT_EQ(opening.fault, LineFault::denied);
        return opening;
    };
    ASSERT_EQ(chmod(folder.path.c_str(), 0755), 0);
    EXPECT_EQ(openOf("whole", given, 0060).group, getgrgid(given)->gr_name);
    EXPECT_EQ(openOf("half", given, 0020).group, "");
    EXPECT_EQ(openOf("root", isRoot ? 0 : given, isRoot ? 0060 : 0).group, "");
}

TEST(SerialDevices, areListedByLastingNamesAndCountedForComNumbers) {
    const ScratchFolder folder;
    const std::string devices = folder.path + "dev";
    const std::string classes = folder.path + "class";
    std::filesystem::create_directories(devices + "/serial/by-id");
    for (const char *name : {"ttyUSB0", "ttyUSB10", "ttyUSB2", "ttyACM0", "ttyS0", "ttyS1", "ttyprintk"})
        folder.write("dev/" + std::string(name), "");
    std::filesystem::create_symlink("../../ttyUSB2", devices + "/serial/by-id/usb-cable");
    for (const char *name : {"ttyS0", "ttyS1"}) {
        std::filesystem::create_directories(classes + "/" + name);
        folder.write("class/" + std::string(name) + "/type", name[4] == '0' ? "0\n" : "4\n");
    }
    const auto path = [&](const char *name) { return devices + "/" + name; };
    EXPECT_EQ(serialDevices(devices, classes),
              (std::vector<std::string>{path("serial/by-id/usb-cable"), path("ttyUSB0"), path("ttyUSB10"),
                                        path("ttyACM0"), path("ttyS1")}));
    EXPECT_EQ(serialDevicePath("COM1", devices, classes), path("ttyS1"));
    EXPECT_EQ(serialDevicePath("com3", devices, classes), path("ttyUSB2"));
    EXPECT_EQ(serialDevicePath("/dev/x", devices, classes), "/dev/x");
    EXPECT_EQ(serialDevicePath("COM2", classes, classes), "COM2");
}

// The folder of a port's class leads into that of its adapter, some folders up.
TEST(SerialDevices, tellTheNamesOfTheirAdapters) {
    const ScratchFolder folder;
    const std::string classes = folder.path + "class", port = folder.path + "usb/1-1/1-1:1.0/ttyUSB0/tty/ttyUSB0";
    std::filesystem::create_directories(port);
    std::filesystem::create_directories(classes + "/ttyS0");
    std::filesystem::create_directory_symlink(port, classes + "/ttyUSB0");
    EXPECT_EQ(serialAdapterName("/dev/ttyUSB0", classes), "");
    folder.write("usb/1-1/product", "USB\x01 UART\n");
    folder.write("usb/1-1/manufacturer", "Maker\n");
    EXPECT_EQ(serialAdapterName("/dev/ttyUSB0", classes), "Maker USB UART");
    folder.write("usb/1-1/product", "Maker " + std::string(1000, 'x'));
    EXPECT_EQ(serialAdapterName("/dev/ttyUSB0", classes), "Maker " + std::string(58, 'x'));
    EXPECT_EQ(serialAdapterName("/dev/ttyS0", classes), "");
}

TEST(PortWatch, hearsWhichOfSeveralPortsSpeaksAndLetsGoOfThem) {
    PseudoTerminal quiet, speaking;
    const std::string absent = "/none/ttyUSB9";
    const std::vector<std::string> all = {absent, quiet.path, speaking.path};
    PortWatch watch = watchPorts(all, baud);
    EXPECT_EQ(watch.open, 2u);
    EXPECT_TRUE(watch.refused.path == absent && watch.refused.fault == LineFault::missing);
    EXPECT_EQ(systemSerialLine.open(quiet.path, baud).fault, LineFault::busy);
    EXPECT_FALSE(hearWatchedPorts(1));
    sayToWatchedPorts(0x16);
    for (const PseudoTerminal *terminal : {&quiet, &speaking}) EXPECT_EQ(terminal->take(2, 200), Bytes{0x16});
    speaking.put({0x13});
    const auto heard = hearWatchedPorts(5000);
    ASSERT_TRUE(heard);
    EXPECT_TRUE(heard->path == speaking.path && heard->byte == 0x13);
    quiet.unplug();
    EXPECT_FALSE(hearWatchedPorts(1));
    EXPECT_EQ(watchPorts({speaking.path}, baud).open, 1u);
    releaseWatchedPorts();
    EXPECT_EQ(systemSerialLine.open(speaking.path, baud).fault, LineFault::none);
    stopWatchingPorts();
    EXPECT_TRUE(systemSerialLine.write(Bytes{7}));
    EXPECT_EQ(speaking.take(1, 5000), Bytes{7});
    systemSerialLine.close();
}

}  // namespace

}  // namespace numalink
