#include "shell/app/qt_language.h"

#include <QApplication>
#include <QLibraryInfo>
#include <QPointer>
#include <QTranslator>

#include "shell/parts/shell_texts.h"

namespace numalink {

namespace {

QPointer<QTranslator> translator;

}  // namespace

void chooseQtLanguage() {
    delete translator;
    translator = new QTranslator(qApp);
    const QString file = QStringLiteral("qtbase_") + textOf(Text::qtTranslation);
    if (translator->load(file, QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QApplication::installTranslator(translator);
}

}  // namespace numalink
