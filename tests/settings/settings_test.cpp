// The settings table, its limits, and the file's dialect there and back.
#include "settings/settings_store.h"

#include <gtest/gtest.h>

#include <sstream>

#include "support/scratch_folder.h"

namespace numalink {
namespace {

bool load(const ScratchFolder &folder, const std::string &file) {
    folder.write("settings.xml", file);
    return settingsLoad();
}

std::string underSettings(const std::string &inner) {
    return "<Numalink><Settings>" + inner + "</Settings></Numalink>";
}

TEST(Settings, DefaultsStandWithoutAFileAndAreWrittenInTableOrder) {
    const ScratchFolder folder;
    EXPECT_TRUE(settingsLoad());
    EXPECT_EQ(settingsValue(setting::comPort), "COM2");
    EXPECT_EQ(settingsInt(setting::fillListsMatrices), 1);
    EXPECT_EQ(settingsValue(setting::language), "");
    ASSERT_TRUE(settingsSetValue(setting::language, "  Plain  English "));
    ASSERT_TRUE(settingsSave());
    const std::string file = folder.read("settings.xml");
    EXPECT_TRUE(
        file.starts_with("<?xml version=\"1.0\"?>\r\n\r\n<Numalink>\r\n <Settings>\r\n  <Communication>\r\n"
                         "   <ComPort>COM2</ComPort>\r\n   <Type>CFX</Type>\r\n"))
        << file;
    EXPECT_NE(file.find("</AutoCorrect>\r\n   <Colors>\r\n    <Ascii>0,0,0</Ascii>"), std::string::npos) << file;
    EXPECT_NE(file.find("</RemoveColorInformation>\r\n  </Communication>\r\n  <Emulator>"), std::string::npos) << file;
    EXPECT_TRUE(file.ends_with("   <Language>Plain  English</Language>\r\n  </Main>\r\n </Settings>\r\n</Numalink>"))
        << file;
    EXPECT_TRUE(settingsLoad());
    EXPECT_EQ(settingsValue(setting::language), "Plain  English");
}

TEST(Settings, WhatTheFileSaysOverlaysTheDefaults) {
    const ScratchFolder folder;
    EXPECT_TRUE(
        load(folder,
             "<?xml version=\"1.0\"?>\n<!-- a > b <Main> --><!DOCTYPE x>\n<Numalink><Settings>lost<Communication>lost"
             "\n\t<Type></Type><Type/><ComPort>\r\n  cat (alg\r\nebra) \t</ComPort>\n\t</Communication>"
             "<Main><Language>English"));
    EXPECT_EQ(settingsValue(setting::linkType), "CFX") << "an empty element";
    EXPECT_EQ(settingsValue(setting::comPort), "cat (algebra)");
    EXPECT_EQ(settingsValue(setting::language), "") << "no closing tag, no value";
    EXPECT_TRUE(load(folder, underSettings("<Main><Language>English</x></y>")));
    EXPECT_EQ(settingsValue(setting::language), "English") << "closing tags aren't compared";
    EXPECT_EQ(settingsValue(setting::comPort), "COM2") << "each load begins with the defaults";
}

TEST(Settings, RefusesWhatNeitherSlotNorFileCanHold) {
    const ScratchFolder folder;
    settingsLoad();
    EXPECT_TRUE(settingsSetValue("Long", std::string(99, 'v')));
    for (const std::string &value : {std::string(100, 'v'), std::string("a<b"), std::string("a\nb")})
        EXPECT_FALSE(settingsSetValue("Long", value));
    EXPECT_EQ(settingsValue("Long"), std::string(99, 'v'));
    for (const std::string &key : {std::string(100, 'k'), std::string(), std::string("a..b"), std::string("a./b"),
                                   std::string("a/.b"), std::string("?a"), std::string("a>b"), std::string("a\tb")}) {
        EXPECT_FALSE(settingsSetValue(key, "v")) << key;
        EXPECT_EQ(settingsValue(key), "");
    }
    EXPECT_FALSE(load(folder, underSettings("<A>" + std::string(100, 'v') + "</A><B>taken</B>")));
    EXPECT_EQ(settingsValue("Numalink.Settings.B"), "taken");
}

TEST(Settings, AFullTableRefusesAndKeepsWhatItHas) {
    const ScratchFolder folder;
    settingsLoad();
    ASSERT_TRUE(settingsSave());
    std::istringstream lines(folder.read("settings.xml"));
    int kept = 0, added = 0;
    for (std::string line; std::getline(lines, line);)
        if (line.find("</", line.find('>')) != std::string::npos) kept++;
    while (added < 1000 && settingsSetValue(std::string("Own.Key").append(std::to_string(added)), "v")) added++;
    EXPECT_EQ(kept + added, 100) << kept << " of them defaults";
    EXPECT_EQ(settingsValue("Another"), "");
    EXPECT_FALSE(settingsSetValue("Another", "v"));
    EXPECT_TRUE(settingsSetValue("Own.Key" + std::to_string(added - 1), "new"));
}

TEST(Settings, NumbersAndColors) {
    const ScratchFolder folder;
    settingsLoad();
    const std::pair<const char *, int> numbers[] = {
        {"-12x", -12}, {"+7", 7}, {"x7", 0}, {"", 0}, {"99999999999999999999", INT32_MAX}, {"-99999999999", INT32_MIN}};
    for (const auto &[text, number] : numbers) {
        ASSERT_TRUE(settingsSetValue("Number", text));
        EXPECT_EQ(settingsInt("Number"), number) << text;
    }
    const std::pair<const char *, std::uint32_t> colors[] = {
        {"255, 128, 1", 0x0180FF}, {"1,2,3", 0x030201},   {"0,0", 0}, {"12", 0},
        {"256,255,-1", 0xFFFF00},  {"1,2,3,4", 0x040201}, {",,", 0}};
    for (const auto &[text, color] : colors) {
        ASSERT_TRUE(settingsSetValue("Colour", text));
        EXPECT_EQ(settingsColour("Colour"), color) << text;
    }
    EXPECT_TRUE(settingsSetColour("Colour", 0x0A141E));
    EXPECT_EQ(settingsValue("Colour"), "30,20,10");
    EXPECT_EQ(settingsInt("Unknown"), 0);
    EXPECT_EQ(settingsColour("Unknown"), 0U);
    ASSERT_TRUE(settingsSave());
    EXPECT_EQ(folder.read("settings.xml").find("Unknown"), std::string::npos) << "the getters of numbers add nothing";
}

TEST(Settings, AFileThatCantBeReadIsTold) {
    const ScratchFolder folder;
    std::filesystem::create_directory(folder.path + "settings.xml");
    EXPECT_FALSE(settingsLoad());
    EXPECT_EQ(settingsValue(setting::comPort), "COM2");
    EXPECT_FALSE(settingsSave());
}

}  // namespace
}  // namespace numalink
