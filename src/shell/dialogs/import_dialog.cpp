#include "shell/dialogs/import_dialog.h"

#include <QCheckBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QLineEdit>
#include <QListWidget>
#include <QMainWindow>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>
#include <utility>

#include "exchange/import/import.h"
#include "link/transmit_queue.h"
#include "shell/parts/dialog_parts.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/open_windows.h"
#include "shell/parts/scale.h"
#include "shell/parts/shell_texts.h"

namespace numalink {

namespace {

struct ImportControls {
    QRadioButton *oneFolder;
    QRadioButton *standardFolders;
    QRadioButton *transmit;
    QLineEdit *folder;
};

QGroupBox *itemsBox(const ImportQuestion &question) {
    auto *box = new QGroupBox(textOf(Text::importItems));
    auto *list = new QListWidget;
    for (const std::string &name : question.itemNames) list->addItem(toQt(name));
    list->setAccessibleName(textOf(Text::importItems));
    list->setToolTip(textOf(Text::tipImportItems));
    (new QVBoxLayout(box))->addWidget(list);
    return box;
}

QGroupBox *choicesBox(const ImportQuestion &question, ImportControls &controls) {
    auto *box = new QGroupBox(textOf(Text::importWhere));
    controls.oneFolder = new QRadioButton(textOf(Text::importOneFolder));
    controls.folder = new QLineEdit(toQt(question.folderName));
    controls.folder->setMaxLength(static_cast<int>(importFolderNameLimit));
    controls.folder->setAccessibleName(textOf(Text::importOneFolder));
    controls.standardFolders = new QRadioButton(textOf(Text::importStandardFolders));
    controls.transmit = new QRadioButton(textOf(Text::importTransmit));
    controls.transmit->setEnabled(transmitAvailable());
    controls.oneFolder->setToolTip(textOf(Text::tipImportOneFolder));
    controls.folder->setToolTip(textOf(Text::tipImportFolder));
    controls.standardFolders->setToolTip(textOf(Text::tipImportStandard));
    controls.transmit->setToolTip(textOf(Text::tipImportTransmit));
    auto *layout = new QVBoxLayout(box);
    for (QWidget *control :
         {static_cast<QWidget *>(controls.oneFolder), static_cast<QWidget *>(controls.folder),
          static_cast<QWidget *>(controls.standardFolders), static_cast<QWidget *>(controls.transmit)})
        layout->addWidget(control);
    (question.action == ImportAction::oneFolder ? controls.oneFolder : controls.standardFolders)->setChecked(true);
    controls.folder->setEnabled(controls.oneFolder->isChecked());
    QObject::connect(controls.oneFolder, &QRadioButton::toggled, controls.folder, &QWidget::setEnabled);
    return box;
}

ImportAction chosen(const ImportControls &controls) {
    if (controls.oneFolder->isChecked()) return ImportAction::oneFolder;
    return controls.standardFolders->isChecked() ? ImportAction::standardFolders : ImportAction::transmit;
}

}  // namespace

void askImport(ImportQuestion &question) {
    QDialog dialog(mainWindow);
    dialog.setWindowTitle(textOf(Text::importTitle));
    dialog.setObjectName(QStringLiteral("importDialog"));
    ImportControls controls{};
    auto *layout = new QVBoxLayout(&dialog);
    layout->addWidget(itemsBox(question));
    layout->addWidget(choicesBox(question, controls));
    auto *forAll = new QCheckBox(textOf(Text::importForAll, {std::to_string(question.filesLeft)}));
    forAll->setToolTip(textOf(Text::tipImportForAll));
    forAll->setVisible(question.filesLeft > 0);
    layout->addWidget(forAll);
    layout->addWidget(dialogButtons(&dialog));
    dialog.resize(dialog.sizeHint().expandedTo(QSize(360, 380) * textScale()));
    const bool accepted = runDialog(dialog) == QDialog::Accepted;
    question.action = accepted ? chosen(controls) : ImportAction::none;
    question.folderName = controls.folder->text().toStdString();
    question.forAll = question.filesLeft > 0 && forAll->isChecked();
}

}  // namespace numalink
