// Language files, the fallback from one language to another, and the boxes that are made of their texts.
#include "telling/language_table.h"

#include <gmock/gmock.h>

#include "support/scratch_folder.h"
#include "support/ui_recorder.h"
#include "telling/language_file.h"
#include "telling/tell_user.h"

namespace numalink {
namespace {

using ::testing::ElementsAre;
using ::testing::Pair;

// Language files of the test's own, beside "the program".
struct LanguageFolder : EmptyProgramFolder {
    LanguageFolder() { std::filesystem::create_directory(path + "Language"); }
};

TEST(LanguageFile, ReadsTheSectionAndTheNumberedLines) {
    const LanguageFile file = languageParse(
        "\xEF\xBB\xBF; note\r\n[language info]\r\n name = \"Two words\" "
        "\r\nNAME=later\r\nDate=\r\n[Other]\r\nAuthor=no\r\n"
        "5=not yet\r\n[TRANSLATION] and more\r\n"
        "1=plain = \r\n2 = \" quoted \" "
        "rest\r\n3=\"open\nx4=none\n4\n12a=\"letters\"\n200=beyond\n99999999999=far\n2=again\n"
        "199=last");
    EXPECT_EQ(file.record.name, "Two words");
    EXPECT_EQ(file.record.author, "<unknown>");
    EXPECT_EQ(file.record.date, "");
    EXPECT_THAT(file.texts, ElementsAre(Pair(1, "plain = "), Pair(2, " \" quoted \" rest"), Pair(3, "open"),
                                        Pair(12, "letters"), Pair(2, "again"), Pair(199, "last")));
    EXPECT_TRUE(languageParse("[Language Info]\nName=x\n1=no section\n").texts.empty());
    const std::string longName = std::string(98, 'n') + "\xC3\xA4";
    EXPECT_EQ(languageParse("[Language Info]\nName=" + longName).record.name, std::string(98, 'n'));
}

TEST(LanguageFile, PassesOverTextsWhosePlaceholdersDontFit) {
    const LanguageFile file = languageParse(
        "[Translation]\n22=%d of %s\n22=%s of %d\n18=no number\n39=%s %s\n66=100%% %s, %d\n1=50 % off %d\n");
    EXPECT_THAT(file.texts, ElementsAre(Pair(22, "%d of %s"), Pair(66, "100%% %s, %d"), Pair(1, "50 % off %d")));
}

TEST(Language, CurrentThenFallbackThenUnknown) {
    const LanguageFolder folder;
    folder.write("Language/b.CLF", "[Language Info]\nName=English\n[Translation]\n1=one\n2=two\n164=a|b|c\n");
    folder.write("Language/a.clf", "[Language Info]\nName=Dutch\n[Translation]\n1=een\n164=x|y\n");
    folder.write("Language/c.txt", "[Language Info]\nName=None\n");
    EXPECT_EQ(languageLoad("dUTCH", "English"), 1);
    EXPECT_EQ(languageCount(), 2);
    EXPECT_EQ(languageRecord(0).name, "Dutch");
    EXPECT_EQ(languageCurrent(), 0);
    EXPECT_EQ(languageText(1), "een");
    EXPECT_EQ(languageText(2), "two");
    for (const int number : {3, -1, 200, 1000000}) EXPECT_EQ(languageText(number), "<unknown string>");
    EXPECT_EQ(languageItem(164, 1), "y");
    EXPECT_EQ(languageItem(164, 2), "c") << "an older translation has fewer";
    EXPECT_EQ(languageItem(164, 3), "<unknown string>");

    EXPECT_EQ(languageLoad("Klingon", "English"), 1);
    EXPECT_EQ(languageText(1), "one");
    EXPECT_EQ(languageLoad("Dutch", "Klingon"), 1);
    EXPECT_EQ(languageText(2), "<unknown string>");
    EXPECT_EQ(languageLoad("x", "y"), -1);
    EXPECT_EQ(languageText(1), "<unknown string>");
    std::filesystem::remove_all(folder.path + "Language");
    EXPECT_EQ(languageLoad("Dutch", "English"), -1);
    EXPECT_EQ(languageCount(), 0);
}

TEST(Language, UntilOneIsChosenTheSystemsIsSpoken) {
    const LanguageFolder folder;
    const std::string number = std::to_string(textNumber(Text::qtTranslation));
    const std::string lists = std::string(static_cast<std::size_t>(textPlace(Text::qtTranslation)), '|');
    for (const std::string name : {"English", "Deutsch", "Nederlands"}) {
        const std::string code = name == "English" ? "en" : name == "Deutsch" ? "de" : "nl";
        folder.write("Language/" + code + ".clf",
                     "[Language Info]\nName=" + name + "\n[Translation]\n" + number + "=" + lists + code + "\n");
    }
    struct Case {
        const char *all, *messages, *lang, *list, *chosen, *spoken;
    };
    constexpr Case cases[] = {
        {"", "", "", "", "", "English"},
        {"", "", "de_AT.UTF-8", "", "", "Deutsch"},
        {"", "nl_BE@euro", "de_DE.UTF-8", "", "", "Nederlands"},
        {"C.UTF-8", "nl_NL", "de_DE", "de", "", "English"},
        {"", "", "en_US.UTF-8", "pt_BR:de_CH:nl", "", "Deutsch"},
        {"", "", "de_DE.UTF-8", "pt:", "", "Deutsch"},
        {"", "", "deutsch", "nl", "", "English"},
        {"", "", "pt_PT.UTF-8", "", "", "English"},
        {"", "", "de_DE.UTF-8", "", "Nederlands", "Nederlands"},
        {"", "", "de_DE.UTF-8", "", "Klingon", "English"},
    };
    for (const Case &one : cases) {
        ::setenv("LC_ALL", one.all, 1);
        ::setenv("LC_MESSAGES", one.messages, 1);
        ::setenv("LANG", one.lang, 1);
        ::setenv("LANGUAGE", one.list, 1);
        EXPECT_EQ(languageLoadChosen(one.chosen), 1);
        EXPECT_EQ(languageRecord(languageCurrent()).name, one.spoken) << one.lang << " " << one.list;
    }
    for (const char *name : {"LC_MESSAGES", "LANG", "LANGUAGE"}) ::unsetenv(name);
    ::setenv("LC_ALL", "C.UTF-8", 1);
}

TEST(Language, LimitsOfFilesAndOfAllTextsArePassedOver) {
    const LanguageFolder folder;
    for (int i = 10; i < 40; i++)
        folder.write("Language/" + std::to_string(i) + ".clf", "[Language Info]\nName=" + std::to_string(i) + "\n");
    folder.write("Language/10.clf",
                 "[Language Info]\nName=10\n[Translation]\n1=" + std::string(languagePoolSize - 1, 'x') + "\n2=y\n");
    folder.write("Language/11.clf", "[Language Info]\nName=11\n[Translation]\n1=z\n");
    EXPECT_EQ(languageLoad("11", "10"), 1);
    EXPECT_EQ(languageCount(), languageLimit);
    EXPECT_EQ(languageText(1), "z");
    EXPECT_EQ(languageText(2), "y") << "beside z there is no room for a text that fills the pool";
    EXPECT_EQ(languageLoad("12", "10"), 1);
    EXPECT_EQ(languageText(1).size(), languagePoolSize - 1) << "the pool is full with it";
    EXPECT_EQ(languageText(2), "<unknown string>");
    EXPECT_EQ(languageLoad("12", "11"), 1);
    EXPECT_EQ(languageText(1), "z") << "a language that isn't shown takes no room from one that is";
    EXPECT_EQ(languageRecord(0).name, "10") << "the order stays that of the files";
}

TEST(Language, TheProgramsOwnFilesHaveEveryTextInEveryLanguage) {
    ASSERT_EQ(languageLoad("English", ""), 1);
    ASSERT_GE(languageCount(), 4);
    std::vector<std::string> names;
    for (int i = 0; i < languageCount(); i++) names.push_back(languageRecord(i).name);
    for (const std::string &name : names) {
        ASSERT_EQ(languageLoad(name, ""), 1);
        EXPECT_EQ(languageRecord(languageCurrent()).name, name);
        for (int number = 1; number < 164; number++) {
            const bool unused = number == 5 || number == 29 || number == 80 || number == 94 || number == 95;
            EXPECT_EQ(languageText(number) == "<unknown string>", unused) << name << " " << number;
        }
        EXPECT_NE(wording(Text::storeNotCopied), "<unknown string>") << name;
    }
}

TEST(Language, OnlyOurOwnPlaceholdersAreReplaced) {
    EXPECT_EQ(formatArguments("%d of %s, 50% at 100%%, %x %", {"3", "%s"}), "3 of %s, 50% at 100%, %x %");
    EXPECT_EQ(formatArguments("%s%s", {"a"}), "a");
    EXPECT_EQ(formatArguments("a", {"b"}), "a");
}

TEST(TellUser, BoxesCarryNumbersWordingAndArguments) {
    const LanguageFolder folder;
    folder.write("Language/E.clf", "[Language Info]\nName=E\n[Translation]\n2=Title\n36=Damage\n39=Sending %s\n");
    languageLoad("E", "E");
    const RecordedUi ui;
    uiRecord.answers = {Answer::ok};
    EXPECT_EQ(tellUser(Text::sendingItem, {"SNAKE"}), Answer::ok);
    EXPECT_FALSE(failWith(Text::libraryRecordDamaged));
    tellFixed(Text::none, "Checksum error", "Receiving file");
    tellFixed(Text::libraryRecordDamaged, "unused", programTitle, BoxIcon::none, BoxButtons::okCancel);
    tellMore(Text::libraryRecordDamaged, Text::storeDamageCount, {"3"});
    statusLine(StatusPart::link, Text::sendingItem, {"A"});
    EXPECT_THAT(uiRecord.lines, ElementsAre("box 39 / 2 SNAKE", "box 36 / 2", "box 0 / 0", "box 36 / 0", "box 36 / 2 3",
                                            "status 1: Sending A"));
    EXPECT_EQ(uiRecord.boxes[0].body, "Sending SNAKE");
    EXPECT_EQ(uiRecord.boxes[0].title, "Title");
    EXPECT_EQ(uiRecord.boxes[2].body, "Checksum error");
    EXPECT_EQ(uiRecord.boxes[3].body, "Damage");
    EXPECT_EQ(uiRecord.boxes[3].title, "Numalink");
    EXPECT_EQ(uiRecord.boxes[4].body, "Damage\n<unknown string>");
}

}  // namespace
}  // namespace numalink
