// Drawn views and the dialogs, in the real window.
#include "calculator/number_text.h"
#include "drawing/item_picture.h"
#include "shell/parts/program_colors.h"
#include "shell/shell_fixture.h"
#include "shell/views/surface_view.h"

namespace numalink {

struct Views : StartedShell {
    static ItemId addMatrix(int rows, int columns) {
        NewItem item{.name = "MAT A", .kind = kind::matrix, .head = Bytes(50, 0xFF), .data = {}};
        writeBig16(item.head, 7, static_cast<std::uint32_t>(rows));
        writeBig16(item.head, 9, static_cast<std::uint32_t>(columns));
        for (int row = 1; row <= rows; row++) {
            Bytes cell(valueFrameSize, ':');
            encodeValue(std::span(cell).first<valueFrameSize>(), static_cast<std::uint32_t>(row), 1, row * 1.5);
            item.data.insert(item.data.end(), cell.begin(), cell.end());
        }
        return storeAddItem(item);
    }
    QImage picture() const { return mainWindow->findChild<QWidget *>(QStringLiteral("surface"))->grab().toImage(); }
};

TEST_F(Views, MatrixFollowsItsPickedCellAndTheZoom) {
    const ItemId id = addMatrix(100, 1);
    show(id);
    ASSERT_TRUE(containerWindow->isVisible());
    auto *area = mainWindow->findChild<QScrollArea *>(QStringLiteral("surfaceView"));
    const QImage before = picture();
    EXPECT_EQ(before.pixelColor(19, 10), QColor::fromRgb(lcdColor::blue));  // the picked cell, inverse
    for (int i = 0; i < 120; i++) QTest::keyClick(area, Qt::Key_Down);
    EXPECT_EQ(picture().pixelColor(19, 99 * 8 + 10), QColor::fromRgb(lcdColor::blue));
    EXPECT_NE(picture().pixelColor(19, 10), QColor::fromRgb(lcdColor::blue));
    EXPECT_EQ(area->accessibleName(), QStringLiteral("MAT A, ") + textOf(Text::kindMatrix));
    EXPECT_EQ(area->accessibleDescription(), textOf(Text::pickedCell, {"100", "1", "150"}));
    const int bottom = area->viewport()->height() - area->widget()->y();
    EXPECT_GE(bottom, 99 * 8 + 17);
    setSurfaceZoom(3);
    EXPECT_EQ(picture().width(), before.width() * 3);
    setSurfaceZoom(1);
}

TEST_F(Views, HeadsThatLieAreDrawnAsFarAsTheyReachAndTold) {
    NewItem item{.name = "PIC", .kind = kind::picture, .head = Bytes(50), .data = Bytes(20, 0xFF)};
    writeBig16(item.head, 7, 16);
    writeBig16(item.head, 9, 24);
    writeBig16(item.head, 32, 2);
    item.data[4] = 2;
    const ItemId id = storeAddItem(item);
    show(id);
    EXPECT_EQ(picture().size(), QSize(24, 16));
    setSurfaceZoom(zoomToFit);
    EXPECT_GT(picture().width(), 24 * 2);
    setSurfaceZoom(1);
    EXPECT_EQ(picture().pixelColor(23, 15), QColor::fromRgb(lcdColor::blue));
    EXPECT_TRUE(itemField->text().contains(textOf(Text::viewEndsEarly))) << itemField->text().toStdString();
    const ItemId other = add(kind::graphFunction, "Y1");
    show(other);
    EXPECT_FALSE(containerWindow->isVisible());
    EXPECT_EQ(itemField->text(), toQt(wording(Text::size, {"0"})));
}

TEST_F(Views, ABitmapHasAFileNameOfItsItemsAndNeverReplacesTheLibrary) {
    NewItem item{.name = "A/B", .kind = kind::picture, .head = Bytes(50), .data = Bytes(20, 0xFF)};
    writeBig16(item.head, 7, 16);
    writeBig16(item.head, 9, 24);
    show(storeAddItem(item));
    for (const std::string name : {"", "x", "x.bmp", "storage.dat"}) {
        answerBoxes = false;
        QTimer::singleShot(0, [&] {
            auto *typed = QApplication::activeModalWidget()->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
            EXPECT_EQ(typed->text(), QStringLiteral("A-B"));
            if (name.empty()) return QApplication::activeModalWidget()->close(), void();
            typed->setText(toQt(folder.path + name));
            QTest::keyClick(typed, Qt::Key_Return);
            answerBoxes = true;
        });
        handleCommand(CommandId::saveBitmap);
        answerBoxes = true;
    }
    ASSERT_EQ(shown.size(), 2u);
    EXPECT_EQ(shown[0], wording(Text::exportReplace, {folder.path + "x.bmp"}));
    EXPECT_EQ(folder.read("x.bmp").substr(0, 2), "BM");
    EXPECT_EQ(shown[1], wording(Text::exportOwnFile, {folder.path + "storage.dat"}));
}

TEST_F(Views, PasswordTakesEightCharactersAndIsNeverShown) {
    const ItemId id = addProgram("ABC", "A");
    show(id);
    QTimer::singleShot(0, [] {
        auto *typed = QApplication::activeModalWidget()->findChild<QLineEdit *>();
        const auto *refused = typed->window()->findChild<QLabel *>(QStringLiteral("passwordRefused"));
        QTest::keyClicks(typed, QStringLiteral("SECRETS9"));
        EXPECT_FALSE(refused->isVisible());
        QTest::keyClicks(typed, QStringLiteral("9"));
        EXPECT_TRUE(refused->isVisible());
    });
    answer(wording(Text::ok));
    handleCommand(CommandId::password);
    StoredItem item;
    ASSERT_TRUE(storeReadItem(id, item));
    EXPECT_EQ(decodeProgramInfo(item.head)->password, "SECRETS9");
    EXPECT_NE(itemField->text(), toQt(wording(Text::size, {std::to_string(item.dataSize)})));
    EXPECT_FALSE(itemField->text().contains(QStringLiteral("SECRETS9")));
}

TEST_F(Views, SettingsTakeASchemeAtOneClickAndCancelChangesNothing) {
    for (const char *key : programColorKeys) settingsSetColour(key, 0);
    settingsSetInt(setting::syntaxHighlighting, 0);
    handleCommand(CommandId::settings);  // Escape
    EXPECT_EQ(settingsInt(setting::syntaxHighlighting), 0);
    QTimer::singleShot(0, [] {
        QWidget *dialog = QApplication::activeModalWidget();
        EXPECT_LE(dialog->height(), 500) << "of 600 dots, or of 1080 at scale 2";
        dialog->findChild<QCheckBox *>(QString::fromLatin1(setting::syntaxHighlighting))->click();
    });
    answer(wording(Text::schemeDark));
    answer(wording(Text::cancel));
    handleCommand(CommandId::settings);
    EXPECT_EQ(shown[1], wording(Text::colorsAllBlack));
    QTimer::singleShot(0, [] {
        QWidget *dialog = QApplication::activeModalWidget();
        dialog->findChild<QPushButton *>(QStringLiteral("darkScheme"))->click();
        EXPECT_TRUE(dialog->findChild<QPlainTextEdit *>()->toPlainText().endsWith(QStringLiteral("1<250> ")));
        dialog->findChild<QComboBox *>(QString::fromLatin1(setting::comPort))->setEditText(QStringLiteral("ttyS7"));
    });
    answer(wording(Text::ok));
    handleCommand(CommandId::settings);
    EXPECT_EQ(settingsInt(setting::syntaxHighlighting), 1);
    EXPECT_NE(settingsColour(setting::colorText), 0u);
    EXPECT_EQ(settingsValue(setting::comPort), "ttyS7");
    EXPECT_NE(folder.read("settings.xml").find("ttyS7"), std::string::npos);
}

}  // namespace numalink
