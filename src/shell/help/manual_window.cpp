#include "shell/help/manual_window.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMainWindow>
#include <QPointer>
#include <QPushButton>
#include <QRegularExpression>
#include <QScreen>
#include <QSplitter>
#include <QTextBrowser>
#include <QVBoxLayout>
#include <algorithm>
#include <functional>
#include <utility>

#include "platform/thread_role.h"
#include "shell/help/key_picture.h"
#include "shell/help/manual_pages.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/scale.h"
#include "shell/parts/shell_texts.h"

namespace numalink {

namespace {

constexpr int windowWidth = 820, windowHeight = 560, listWidth = 200;
constexpr int aroundText = 80;   // pixels: margins, scroll bar and splitter
constexpr int searchLimit = 60;  // characters

// Pages and pictures by the names of their files, wherever they lie. A picture is no wider than the text, so that small
// screens need no scrolling sideways.
class ManualBrowser : public QTextBrowser {
public:
    std::vector<ManualPage> pages;
    int widestPicture = 0;  // pixels

protected:
    QVariant loadResource(int type, const QUrl &url) override {
        const QString name = url.fileName();
        if (type == QTextDocument::ImageResource)
            return fitted(name == QLatin1String(keyPictureName) ? keyPicture() : QImage::fromData(manualPicture(name)));
        for (const ManualPage &page : pages)
            if (page.name + QLatin1String(".md") == name) return page.text;
        return name == QLatin1String(allChangesName) ? QVariant(allChanges()) : QVariant();
    }

private:
    QVariant fitted(const QImage &picture) const {
        if (picture.isNull()) return {};
        const bool isWide = picture.deviceIndependentSize().width() > widestPicture;
        if (!isWide) return picture;
        QImage fit = picture.scaledToWidth(static_cast<int>(widestPicture * picture.devicePixelRatio()),
                                           Qt::SmoothTransformation);
        fit.setDevicePixelRatio(picture.devicePixelRatio());
        return fit;
    }
};

struct Manual {
    QPointer<QDialog> window;
    QPointer<QLineEdit> search;
    QPointer<QListWidget> list;
    QPointer<ManualBrowser> browser;
};
Manual state;

QUrl urlOf(const QString &page) { return QUrl(page + QLatin1String(".md")); }

// A short word is looked for where words begin ("get", not "together"); a longer one within others, too.
QRegularExpression patternOf(const QString &word) {
    constexpr int shortWord = 3;  // characters
    return QRegularExpression(
        (word.size() > shortWord ? QString() : QStringLiteral("\\b")) + QRegularExpression::escape(word),
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::UseUnicodePropertiesOption);
}

QList<QRegularExpression> wantedPatterns() {
    QList<QRegularExpression> patterns;
    const QRegularExpression ends(QStringLiteral("[\\s?!,;\"]+"));
    for (const QString &word : state.search->text().split(ends, Qt::SkipEmptyParts)) patterns << patternOf(word);
    return patterns;
}

// Headings, and questions that begin in bold.
QString headingsOf(const ManualPage &page) {
    QString headings;
    for (const QString &line : page.text.split(QLatin1Char('\n')))
        if (line.startsWith(QLatin1Char('#')) || line.startsWith(QLatin1String("**")))
            headings += line + QLatin1Char('\n');
    return headings;
}

// How well each page answers: a word counts the more the fewer pages hold it, and most where a heading does.
std::vector<double> scoresOf(const std::vector<ManualPage> &pages, const QList<QRegularExpression> &wanted) {
    constexpr double headingCounts = 3, newsCounts = 0.5;
    std::vector<double> scores(pages.size(), wanted.isEmpty() ? 1 : 0);
    for (const QRegularExpression &pattern : wanted) {
        const auto holds = [&](const ManualPage &page) { return page.text.contains(pattern); };
        const auto holding = static_cast<double>(std::ranges::count_if(pages, holds));
        for (std::size_t i = 0; i < pages.size(); i++) {
            if (!holds(pages[i])) continue;
            const double counts = pages[i].name == QLatin1String(newsPageName) ? newsCounts : 1;
            scores[i] += counts / holding * (headingsOf(pages[i]).contains(pattern) ? headingCounts : 1);
        }
    }
    return scores;
}

// The pages to list, the best answer first; those that answer far worse are left out.
std::vector<const ManualPage *> pagesFound() {
    constexpr double worthListing = 0.5;  // of the best one's score
    const std::vector<ManualPage> &pages = state.browser->pages;
    const std::vector<double> scores = scoresOf(pages, wantedPatterns());
    const double best = scores.empty() ? 0 : *std::ranges::max_element(scores);
    std::vector<std::pair<double, const ManualPage *>> found;
    for (std::size_t i = 0; i < pages.size(); i++)
        if (scores[i] > 0 && scores[i] >= best * worthListing) found.emplace_back(scores[i], &pages[i]);
    std::ranges::stable_sort(found, std::ranges::greater(), [](const auto &row) { return row.first; });
    std::vector<const ManualPage *> rows;
    rows.reserve(found.size());
    for (const auto &[score, page] : found) rows.push_back(page);
    return rows;
}

// Every place of the page that has what is looked for is marked, and the first one is in sight.
void markFound() {
    QList<QTextEdit::ExtraSelection> marks;
    const QPalette palette = state.browser->palette();
    const QTextDocument *document = state.browser->document();
    QTextCursor first;
    for (const QRegularExpression &pattern : wantedPatterns()) {
        for (QTextCursor at = document->find(pattern, 0); !at.isNull(); at = document->find(pattern, at)) {
            QTextEdit::ExtraSelection mark;
            mark.cursor = at;
            mark.format.setBackground(palette.highlight());
            mark.format.setForeground(palette.highlightedText());
            marks.append(mark);
            if (first.isNull() || at.position() < first.position()) first = at;
        }
    }
    state.browser->setExtraSelections(marks);
    if (first.isNull()) return;
    first.clearSelection();
    state.browser->setTextCursor(first);
    state.browser->ensureCursorVisible();
}

void showChosen() {
    const QListWidgetItem *row = state.list->currentItem();
    if (row != nullptr) state.browser->setSource(urlOf(row->data(Qt::UserRole).toString()));
}

void chooseRow(const QString &page) {
    for (int i = 0; i < state.list->count(); i++)
        if (state.list->item(i)->data(Qt::UserRole).toString() == page) state.list->setCurrentRow(i);
}

// A link within the pages, Back, or the list has led to another page.
void pageShown(const QUrl &url) {
    const QSignalBlocker blocked(state.list);
    chooseRow(url.fileName().chopped(3));
    markFound();
}

void listPages() {
    const QSignalBlocker blocked(state.list);
    state.list->clear();
    for (const ManualPage *page : pagesFound()) {
        auto *row = new QListWidgetItem(page->title, state.list);
        row->setData(Qt::UserRole, page->name);
        row->setToolTip(page->title);
    }
}

// With nothing looked for any more, the page on view stays.
void searchPages() {
    const QString shown = state.browser->source().fileName().chopped(3);
    listPages();
    if (wantedPatterns().isEmpty())
        chooseRow(shown);
    else
        state.list->setCurrentRow(0);
    markFound();
}

QWidget *makeContents() {
    auto *side = new QWidget;
    auto *layout = new QVBoxLayout(side);
    layout->setContentsMargins(0, 0, 0, 0);
    state.search = new QLineEdit;
    state.search->setObjectName(QStringLiteral("manualSearch"));
    state.search->setPlaceholderText(textOf(Text::manualSearch));
    state.search->setToolTip(textOf(Text::tipManualSearch));
    state.search->setAccessibleName(textOf(Text::manualSearch));
    state.search->setClearButtonEnabled(true);
    state.search->setMaxLength(searchLimit);
    state.list = new QListWidget;
    state.list->setObjectName(QStringLiteral("manualPages"));
    state.list->setAccessibleName(textOf(Text::manualPages));
    state.list->setToolTip(textOf(Text::manualPages));
    auto *back = new QPushButton(textOf(Text::manualBack));
    back->setToolTip(textOf(Text::tipManualBack));
    back->setAutoDefault(false);
    back->setEnabled(false);
    QObject::connect(back, &QPushButton::clicked, state.browser, &QTextBrowser::backward);
    QObject::connect(state.browser, &QTextBrowser::backwardAvailable, back, &QPushButton::setEnabled);
    for (QWidget *part :
         {static_cast<QWidget *>(state.search), static_cast<QWidget *>(state.list), static_cast<QWidget *>(back)})
        layout->addWidget(part);
    return side;
}

void makeWindow(QWidget *over) {
    state.window = new QDialog(over, Qt::Window);
    state.window->setObjectName(QStringLiteral("manualWindow"));
    state.window->setAttribute(Qt::WA_DeleteOnClose);
    state.window->setModal(false);
    state.window->setWindowTitle(textOf(Text::manualTitle));
    state.browser = new ManualBrowser;
    state.browser->setObjectName(QStringLiteral("manualText"));
    state.browser->setAccessibleName(textOf(Text::manualTitle));
    state.browser->pages = manualPages();
    state.browser->setOpenExternalLinks(true);
    auto *parts = new QSplitter;
    parts->addWidget(makeContents());
    parts->addWidget(state.browser);
    parts->setStretchFactor(1, 1);
    parts->setSizes({grown(listWidth), grown(windowWidth - listWidth)});
    (new QVBoxLayout(state.window))->addWidget(parts);
    listPages();
    auto *find = new QAction(state.window);
    find->setShortcut(QKeySequence::Find);
    state.window->addAction(find);
    QObject::connect(find, &QAction::triggered, state.search, [] {
        state.search->setFocus();
        state.search->selectAll();
    });
    QObject::connect(state.list, &QListWidget::currentRowChanged, state.window, showChosen);
    QObject::connect(state.search, &QLineEdit::textChanged, state.window, searchPages);
    QObject::connect(state.browser, &QTextBrowser::sourceChanged, state.window, pageShown);
    const QSize room = mainWindow->screen()->availableSize() * 9 / 10;
    state.window->resize((QSize(windowWidth, windowHeight) * textScale()).boundedTo(room));
    state.browser->widestPicture = state.window->width() - grown(listWidth) - aroundText;
}

}  // namespace

void showManual(const QString &page) {
    assertRole(ThreadRole::graphical);
    QWidget *modal = QApplication::activeModalWidget();
    QWidget *over = modal != nullptr ? modal : mainWindow;
    const bool stays = state.window != nullptr && state.window->parentWidget() == over;
    if (!stays) {
        delete state.window;
        makeWindow(over);
    }
    state.search->clear();
    chooseRow(page);
    if (state.list->currentItem() == nullptr) state.list->setCurrentRow(0);
    if (state.list->count() == 0) state.browser->setPlainText(textOf(Text::manualMissing));
    showUnminimised(state.window);
    state.window->raise();
    state.window->activateWindow();
    state.browser->setFocus();
}

void showManualAtFirstPage() { showManual({}); }
void showKeysPage() { showManual(QString::fromLatin1(keysPageName)); }
void showWhatIsNew() { showManual(QString::fromLatin1(newsPageName)); }

}  // namespace numalink
