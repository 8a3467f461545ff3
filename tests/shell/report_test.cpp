// The report of a fault: what it holds and what it doesn't, and its offer after a run that didn't end by itself.
#include <filesystem>

#include "shell/commands/command_handler.h"
#include "shell/dialogs/report_text.h"
#include "shell/shell_fixture.h"

namespace numalink {

struct Report : StartedShell {
    static QString textShown() {
        return QApplication::activeModalWidget()->findChild<QPlainTextEdit *>()->toPlainText();
    }
    // As a run leaves the library that is killed now.
    std::string killed() {
        std::string log = folder.read("running.log");
        endProgram();
        EXPECT_FALSE(std::filesystem::exists(folder.path + "running.log"));
        folder.write("running.log", log);
        return log;
    }
};

TEST_F(Report, HoldsSystemSettingsAndEventsAndNothingPrivate) {
    const ItemId secret = addProgram("SECRETS", "A");
    show(secret);
    settingsSetValue(setting::farEndPort, QDir::homePath().toStdString() + "/private port");
    answer("Return");
    handleCommand(CommandId::remove);
    EXPECT_TRUE(shown.back().find("SECRETS") != std::string::npos);
    QString text;
    answer(textOf(Text::reportCopy).remove(QLatin1Char('&')).toStdString());
    whileOpen = [&] { text = textShown(); };
    QGuiApplication::clipboard()->clear();
    handleCommand(CommandId::report);
    for (const char *part :
         {"Qt: ", "version: ", "library: 0 items", "HaltOnError: 0", "Port: ~/...", " command 40010 "})
        EXPECT_TRUE(text.contains(QLatin1String(part))) << part;
    EXPECT_TRUE(text.contains(textOf(Text::confirmDelete)));
    for (const QString &part :
         {QStringLiteral("SECRETS"), QDir::homePath() + QLatin1Char('/'), QStringLiteral("private"), toQt(folder.path)})
        EXPECT_FALSE(text.contains(part)) << part.toStdString();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), text);
}

TEST(ReportText, KnowsPathsBelowHomeFromOthers) {
    const QString home = QStringLiteral("/home/ann");
    EXPECT_EQ(withoutHome(QStringLiteral("a \"/home/ann/x y.cas\", /home/anna/z\n/home/ann"), home),
              QStringLiteral("a \"~/...\", /home/anna/z\n~/..."));
    EXPECT_EQ(withoutHome(QStringLiteral("/etc/x"), QStringLiteral("/")), QStringLiteral("/etc/x"));
    EXPECT_EQ(withoutSerialNumbers(QStringLiteral("/dev/serial/by-id/usb-FTDI_FT232R_A9KQ2-if00-port0 opened")),
              QStringLiteral("/dev/serial/by-id/usb-FTDI_FT232R_...-if00-port0 opened"));
}

TEST_F(Report, IsOfferedOnceAfterARunThatDidNotEnd) {
    handleCommand(CommandId::hideTree);
    killed();
    const std::string report = toQt(wording(Text::crashReport)).remove(QLatin1Char('&')).toStdString();
    answer(report);
    answer("Esc");
    ASSERT_TRUE(startProgram());
    ASSERT_TRUE(QTest::qWaitFor([this] { return shown.size() == 2; }, 3000));
    EXPECT_EQ(shown[0], wording(Text::crashFound));
    EXPECT_EQ(shown[1], wording(Text::reportTitle));
    endProgram();
    shown.clear();
    ASSERT_TRUE(startProgram());
    QTest::qWait(20);
    EXPECT_TRUE(shown.empty()) << shown.front();
}

}  // namespace numalink
