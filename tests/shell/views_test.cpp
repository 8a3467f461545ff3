// Drawn views and the dialogs, in the real window.
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QTest>
#include <QTimer>

#include "calculator/number_text.h"
#include "calculator/program_info.h"
#include "drawing/item_picture.h"
#include "settings/settings_store.h"
#include "shell/command_handler.h"
#include "shell/command_table.h"
#include "shell/item_tree.h"
#include "shell/item_views.h"
#include "shell/menus.h"
#include "shell/shell_fixture.h"
#include "shell/shell_texts.h"
#include "shell/shell_widgets.h"
#include "shell/surface_view.h"
#include "text/token_table.h"

namespace numalink {

struct Views : ShellTest {
    static ItemId addMatrix(int rows, int columns) {
        NewItem item;
        item.name = "MAT A";
        item.kind = kind::matrix;
        item.head.assign(50, 0xFF);
        writeBig16(item.head, 7, static_cast<std::uint32_t>(rows));
        writeBig16(item.head, 9, static_cast<std::uint32_t>(columns));
        for (int row = 1; row <= rows; row++) {
            Bytes cell(valueFrameSize, ':');
            encodeValue(std::span(cell).first<valueFrameSize>(), static_cast<std::uint32_t>(row), 1, row * 1.5);
            item.data.insert(item.data.end(), cell.begin(), cell.end());
        }
        return storeAddItem(item);
    }
    void start() {
        setLibraryFolder(folder.path);
        ASSERT_TRUE(startProgram());
    }
    QImage picture() const { return mainWindow->findChild<QWidget *>(QStringLiteral("surface"))->grab().toImage(); }
};

TEST_F(Views, MatrixFollowsItsPickedCellAndTheZoom) {
    start();
    const ItemId id = addMatrix(100, 1);
    refreshTree();
    select(id);
    ASSERT_TRUE(containerWindow->isVisible());
    auto *area = mainWindow->findChild<QScrollArea *>(QStringLiteral("surfaceView"));
    const QImage before = picture();
    EXPECT_EQ(before.pixelColor(19, 10), QColor::fromRgb(lcdColor::blue));  // the picked cell, inverse
    for (int i = 0; i < 120; i++) QTest::keyClick(area, Qt::Key_Down);
    EXPECT_EQ(picture().pixelColor(19, 99 * 8 + 10), QColor::fromRgb(lcdColor::blue));
    EXPECT_NE(picture().pixelColor(19, 10), QColor::fromRgb(lcdColor::blue));
    const int bottom = area->viewport()->height() - area->widget()->y();
    EXPECT_GE(bottom, 99 * 8 + 17);
    setSurfaceZoom(3);
    EXPECT_EQ(picture().width(), before.width() * 3);
    setSurfaceZoom(1);
}

TEST_F(Views, HeadsThatLieAreDrawnAsFarAsTheyReachAndTold) {
    start();
    NewItem item;
    item.name = "PIC";
    item.kind = kind::picture;
    item.head.assign(50, 0);
    writeBig16(item.head, 7, 16);
    writeBig16(item.head, 9, 24);
    writeBig16(item.head, 32, 2);
    item.data.assign(20, 0xFF);
    item.data[4] = 2;
    const ItemId id = storeAddItem(item);
    refreshTree();
    select(id);
    EXPECT_EQ(picture().size(), QSize(24, 16));
    EXPECT_EQ(picture().pixelColor(23, 15), QColor::fromRgb(lcdColor::blue));
    EXPECT_TRUE(itemField->text().contains(textOf(OwnText::viewEndsEarly))) << itemField->text().toStdString();
    const ItemId other = add(kind::graphFunction, "Y1");
    refreshTree();
    select(other);
    EXPECT_FALSE(containerWindow->isVisible());
    EXPECT_EQ(itemField->text(), toQt(languageFormat(23, {"0"})));
}

TEST_F(Views, PasswordIsKeptInTheHeadAndCutAtEight) {
    start();
    const ItemId id = addProgram("ABC", "A");
    refreshTree();
    select(id);
    QTimer::singleShot(0, [] {
        auto *typed = QApplication::activeModalWidget()->findChild<QLineEdit *>();
        QTest::keyClicks(typed, QStringLiteral("SECRETS99"));
    });
    answer(languageText(112));
    handleCommand(command::password);
    StoredItem item;
    ASSERT_TRUE(storeReadItem(id, item));
    EXPECT_EQ(decodeProgramInfo(item.head)->password, "SECRETS9");
    EXPECT_TRUE(itemField->text().contains(QStringLiteral("SECRETS9")));
}

TEST_F(Views, SettingsTakeASchemeAtOneClickAndCancelChangesNothing) {
    start();
    handleCommand(command::settings);  // Escape
    EXPECT_EQ(settingsInt(setting::syntaxHighlighting), 0);
    QTimer::singleShot(0, [] {
        QWidget *dialog = QApplication::activeModalWidget();
        dialog->findChild<QPushButton *>(QStringLiteral("darkScheme"))->click();
        EXPECT_TRUE(dialog->findChild<QPlainTextEdit *>()->toPlainText().endsWith(QStringLiteral("1<250> ")));
        dialog->findChild<QComboBox *>(QString::fromLatin1(setting::comPort))->setEditText(QStringLiteral("ttyS7"));
    });
    answer(languageText(112));
    handleCommand(command::settings);
    EXPECT_EQ(settingsInt(setting::syntaxHighlighting), 1);
    EXPECT_NE(settingsColour(setting::colorText), 0u);
    EXPECT_EQ(settingsValue(setting::comPort), "ttyS7");
    EXPECT_NE(folder.read("settings.xml").find("ttyS7"), std::string::npos);
}

}  // namespace numalink
