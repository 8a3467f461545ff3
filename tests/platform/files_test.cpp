// Whole files and the library's file port, on the real file system.
#include "platform/files.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include "platform/file_port.h"
#include "support/scratch_folder.h"

namespace numalink {
namespace {

Bytes bytesOf(const std::string &text) { return {text.begin(), text.end()}; }

TEST(Files, ReadsWhatWasWrittenAndKeepsTheRightsOfTheReplacedFile) {
    const ScratchFolder folder;
    const std::string path = folder.path + "a name with blanks and \xC3\xBCmlauts";
    ASSERT_EQ(writeWholeFile(path, bytesOf("first")), FileResult::done);
    ASSERT_EQ(chmod(path.c_str(), 0640), 0);
    ASSERT_EQ(writeWholeFile(path, bytesOf("second")), FileResult::done);
    Bytes read;
    EXPECT_EQ(readWholeFile(path, read, 6), FileResult::done);
    EXPECT_EQ(read, bytesOf("second"));
    struct stat facts {};
    ASSERT_EQ(stat(path.c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 0777U, 0640U);
    const std::filesystem::directory_iterator entries(folder.path);
    EXPECT_EQ(std::distance(begin(entries), end(entries)), 1) << "nothing is left beside the file";
}

TEST(Files, TellsTheCausesOfAFailureApart) {
    const ScratchFolder folder;
    folder.write("five", "12345");
    folder.write("nothing", "");
    ASSERT_EQ(mkfifo((folder.path + "pipe").c_str(), 0600), 0);
    Bytes read = bytesOf("old");
    EXPECT_EQ(readWholeFile(folder.path + "five", read, 4), FileResult::tooLarge);
    EXPECT_TRUE(read.empty());
    EXPECT_EQ(readWholeFile(folder.path + "none", read, 4), FileResult::missing);
    EXPECT_EQ(readWholeFile(folder.path, read, 4), FileResult::isFolder);
    EXPECT_EQ(readWholeFile(folder.path + "pipe", read, 4), FileResult::noFile);
    EXPECT_EQ(readWholeFile(folder.path + "nothing", read, 0), FileResult::done);
    EXPECT_EQ(writeWholeFile(folder.path + "none/file", read), FileResult::missing);
    EXPECT_EQ(writeWholeFile(folder.path, read), FileResult::isFolder);
    EXPECT_EQ(writeWholeFile(folder.path + "pipe", read), FileResult::noFile);
}

// As root writes anything, in a child without root's rights.
TEST(Files, AWriteProtectedFileStays) {
    const ScratchFolder folder;
    folder.write("protected", "old");
    ASSERT_EQ(chmod((folder.path + "protected").c_str(), 0444), 0);
    ASSERT_EQ(chmod(folder.path.c_str(), 0777), 0);
    const pid_t child = fork();
    if (child == 0) {
        const bool dropped = geteuid() != 0 || setuid(65534) == 0;
        const FileResult result = writeWholeFile(folder.path + "protected", bytesOf("new"));
        _exit(dropped && result == FileResult::denied ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(folder.read("protected"), "old");
}

TEST(Files, WritesThroughALink) {
    const ScratchFolder folder;
    folder.write("target", "old");
    std::filesystem::create_symlink("target", folder.path + "link");
    ASSERT_EQ(writeWholeFile(folder.path + "link", bytesOf("new")), FileResult::done);
    EXPECT_TRUE(std::filesystem::is_symlink(folder.path + "link"));
    EXPECT_EQ(folder.read("target"), "new");
}

TEST(MakeFolders, AreOnTheDiskOneWithinTheOther) {
    const ScratchFolder folder;
    static int synced = 0;
    filePort.syncFolder = [](const char *path) { return ++synced > 0 && systemFilePort.syncFolder(path); };
    EXPECT_TRUE(makeFolders(folder.path + "a/b//c/"));
    EXPECT_TRUE(std::filesystem::is_directory(folder.path + "a/b/c") && makeFolders(folder.path + "a/b"));
    EXPECT_EQ(synced, 3);
    folder.write("file", "");
    EXPECT_FALSE(makeFolders(folder.path + "file/d"));
    filePort = systemFilePort;
}

TEST(FilePort, LockGoesWithTheOpenFileAndOffsetsAreBounded) {
    const ScratchFolder folder;
    const std::string path = folder.path + "file";
    int first = -1, second = -1;
    EXPECT_EQ(systemFilePort.openLocked(path.c_str(), false, first), OpenResult::absent);
    ASSERT_EQ(systemFilePort.openLocked(path.c_str(), true, first), OpenResult::opened);
    EXPECT_EQ(systemFilePort.openLocked(path.c_str(), true, second), OpenResult::heldByAnother);
    EXPECT_EQ(systemFilePort.openLocked(folder.path.c_str(), true, second), OpenResult::failed);
    EXPECT_EQ(folder.read("file"), "") << "another descriptor of it opens and closes";
    EXPECT_EQ(systemFilePort.openLocked(path.c_str(), true, second), OpenResult::heldByAnother);

    EXPECT_EQ(systemFilePort.writeAt(first, 4, "abc", 3), 3U);
    EXPECT_EQ(folder.read("file").substr(4), "abc") << "nothing waits in the program, should it be killed";
    EXPECT_EQ(systemFilePort.size(first), 7);
    char read[4] = {};
    EXPECT_EQ(systemFilePort.readAt(first, 5, read, 4), 2U);
    EXPECT_EQ(systemFilePort.readAt(first, UINT64_MAX - 1, read, 4), 0U);
    EXPECT_TRUE(systemFilePort.cut(first, 5));
    EXPECT_TRUE(systemFilePort.sync(first));
    EXPECT_EQ(systemFilePort.size(first), 5);
    systemFilePort.close(first);
    const std::string other = folder.path + "other";
    EXPECT_TRUE(systemFilePort.rename(path.c_str(), other.c_str()) && systemFilePort.syncFolder(other.c_str()));
    EXPECT_FALSE(systemFilePort.remove(path.c_str()));
    ASSERT_EQ(systemFilePort.openLocked(other.c_str(), false, second), OpenResult::opened);
    systemFilePort.close(second);
    EXPECT_TRUE(systemFilePort.remove(other.c_str()));
}

TEST(OwnFolders, AreWhereTheVariablesSayOrBesideAProgramThatIsCarriedAbout) {
    const EmptyProgramFolder unpacked;
    const std::string installed = unpacked.path + "usr/bin/", shared = unpacked.path + "usr/share/numalink/";
    std::filesystem::create_directories(unpacked.path + "Language");
    std::filesystem::create_directories(installed);
    std::filesystem::create_directories(shared + "Language");
    unpacked.write("usr/share/numalink/large.cft", "");
    struct Row {
        const char *home, *data;
        std::string program, library, settings;
    };
    const std::string here = std::filesystem::current_path().string() + "/";
    const Row rows[] = {
        {"/home/other", "/d", unpacked.path, "/home/other/", "/home/other/"},
        {"./own", "/d", unpacked.path, here + "own/", here + "own/"},
        {"", "/d", unpacked.path, unpacked.path, unpacked.path},
        {"", "/d", installed, "/d/numalink/", "/h/.config/numalink/"},
        {"", "relative", installed, "/h/.local/share/numalink/", "/h/.config/numalink/"},
    };
    setenv("HOME", "/h", 1);
    unsetenv("XDG_CONFIG_HOME");
    for (const auto &[home, data, program, library, settings] : rows) {
        setenv("NUMALINK_HOME", home, 1);
        setenv("XDG_DATA_HOME", data, 1);
        setProgramFolder(program);
        EXPECT_EQ(ownFolders().library, library);
        EXPECT_EQ(ownFolders().settings, settings);
    }
    EXPECT_TRUE(isSameFile(dataPath("large.cft"), shared + "large.cft"));
    EXPECT_EQ(dataPath("small.cft"), installed + "small.cft");
    unsetenv("NUMALINK_HOME");
    unsetenv("XDG_DATA_HOME");
}

}  // namespace
}  // namespace numalink
