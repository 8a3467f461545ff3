// The question for an export and the one for a bitmap, in the running window.
#include "exchange/import/import.h"
#include "shell/shell_fixture.h"

namespace numalink {

namespace {

using Lines = std::vector<std::string>;

template <typename Widget>
Widget *partOf(const char *name) {
    return QApplication::activeModalWidget()->findChild<Widget *>(QLatin1String(name));
}

template <typename Button>
Button *buttonWith(const QString &text) {
    for (Button *button : QApplication::activeModalWidget()->findChildren<Button *>())
        if (button->text() == text) return button;
    return nullptr;
}

Lines linesOf(const QListWidget *list) {
    Lines lines;
    for (int row = 0; row < list->count(); row++) lines.push_back(list->item(row)->text().toStdString());
    return lines;
}

void doubleClick(QListWidget *list, int row) {
    const QPoint place = list->visualItemRect(list->item(row)).center();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, place);
}

}  // namespace

using ExportByWindow = StartedShell;

TEST_F(ExportByWindow, ChosenItemsGoIntoTheFileAndStayChosen) {
    const ItemId games = storeResolvePath("/Games/old/", true);
    addProgram("SNAKE", "A", games);
    addProgram("apple", "B", games);
    addProgram("TOP", "C");
    addProgram("HIDDEN", "D", storeTempFolder());
    show(storeFindItem("SNAKE", games));
    whileOpen = [this] {
        auto *left = partOf<QListWidget>("availableItems");
        auto *right = partOf<QListWidget>("chosenItems");
        QPushButton *ok =
            QApplication::activeModalWidget()->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok);
        EXPECT_EQ(linesOf(left), (Lines{"TOP", "(Games/old) apple", "(Games/old) SNAKE"}));
        EXPECT_FALSE(ok->isEnabled()) << "nothing is chosen";
        EXPECT_EQ(left->currentItem()->text(), QStringLiteral("(Games/old) SNAKE")) << "as in the tree";
        const char *const order[] = {"availableItems", ">", ">>", "<", "<<", "chosenItems"};
        QWidget *at = left;
        for (const char *name : order) {
            const auto *button = qobject_cast<QPushButton *>(at);
            EXPECT_EQ(button != nullptr ? button->text() : at->objectName(), QLatin1String(name)) << "by Tab";
            do at = at->nextInFocusChain();
            while ((at->focusPolicy() & Qt::TabFocus) == 0 || !at->isVisible());
        }
        doubleClick(left, 1);
        EXPECT_EQ(linesOf(right), (Lines{"(Games/old) apple"}));
        EXPECT_EQ(left->currentRow(), 1);
        buttonWith<QPushButton>(QStringLiteral(">>"))->click();
        EXPECT_EQ(linesOf(right), (Lines{"TOP", "(Games/old) apple", "(Games/old) SNAKE"}));
        doubleClick(right, 0);
        EXPECT_EQ(linesOf(left), (Lines{"TOP"}));
        buttonWith<QRadioButton>(textOf(Text::exportTypeCat))->click();
        whileOpen = [this] {
            auto *name = partOf<QLineEdit>("fileNameEdit");
            name->setText(toQt(folder.path + "out"));
            QTest::keyClick(name, Qt::Key_Return);
        };
        ok->click();
    };
    handleCommand(CommandId::save);
    const std::string file = folder.read("out.cat");
    EXPECT_LT(file.find("File Name:apple"), file.find("File Name:SNAKE")) << file;
    EXPECT_EQ(file.find("TOP"), std::string::npos);
    whileOpen = [] {
        EXPECT_EQ(linesOf(partOf<QListWidget>("chosenItems")), (Lines{"(Games/old) apple", "(Games/old) SNAKE"}));
        EXPECT_TRUE(buttonWith<QRadioButton>(textOf(Text::exportTypeCat))->isChecked());
    };
    handleCommand(CommandId::save);
    EXPECT_EQ(shown, (Lines{wording(Text::toolSave)})) << "of the second time, closed with Escape";
}

TEST_F(ExportByWindow, ABitmapIsShownInBothRasterTypesAndCancelAddsNothing) {
    folder.write("half.ppm", "P6\n2 1\n255\n" + std::string("\xFF\xFF\xFF\x80\x80\x80"));
    whileOpen = [] {
        const QLabel *result = nullptr;
        for (const QLabel *label : QApplication::activeModalWidget()->findChildren<QLabel *>())
            if (label->accessibleName() == textOf(Text::bitmapResult)) result = label;
        ASSERT_NE(result, nullptr);
        const QImage dithered = result->pixmap().toImage();
        EXPECT_EQ(dithered.size(), QSize(384, 192));
        buttonWith<QRadioButton>(textOf(Text::rasterSharp))->click();
        EXPECT_NE(result->pixmap().toImage(), dithered);
        buttonWith<QRadioButton>(textOf(Text::rasterImage))->click();
        EXPECT_EQ(result->pixmap().toImage(), dithered);
    };
    importFile(folder.path + "half.ppm", "half");
    EXPECT_EQ(shown, (Lines{wording(Text::bitmapImportTitle) + " - half"}));
    EXPECT_TRUE(storeListChildren(storeTempFolder()).empty());
}

}  // namespace numalink
