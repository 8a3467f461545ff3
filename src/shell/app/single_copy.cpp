#include "shell/app/single_copy.h"

#include <sys/socket.h>
#include <unistd.h>

#include <QCryptographicHash>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>
#include <QMainWindow>
#include <QTimer>

#include "platform/file_port.h"
#include "platform/program_folder.h"
#include "shell/app/tray.h"
#include "shell/commands/file_commands.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/shell_texts.h"

namespace numalink {

namespace {

// A question: whether the library was asked for ("library" or "any"), then the files, each ended by a zero byte, and
// one more zero byte. The answer is a line.
constexpr char askedFor[] = "library";
constexpr char any[] = "any";
constexpr char shownAnswer[] = "shown\n";
constexpr char elsewhereAnswer[] = "elsewhere\n";
constexpr int answerMilliseconds = 1000;
constexpr qsizetype questionLimit = qsizetype{1024} * 1024;  // bytes

struct SingleCopy {
    QLocalServer *ofLibrary = nullptr;
    QLocalServer *ofStart = nullptr;  // while another library is open than the one of the start
    QString startName;
};
SingleCopy state;

// Named for user and library, so that copies with libraries of their own don't meet, nor those of two users.
QString serverName() {
    std::string folder;
    if (!filePort.realPath(libraryFolder().c_str(), folder)) folder = libraryFolder();
    const QByteArray named = QByteArray::number(getuid()) + ' ' + QByteArray::fromStdString(folder);
    const QByteArray digest = QCryptographicHash::hash(named, QCryptographicHash::Sha256).toHex();
    return QStringLiteral("numalink-") + QString::fromLatin1(digest.left(24));
}

QByteArray questionOf(const StartWish &wish) {
    QByteArray question = (wish.ofThisLibrary ? askedFor : any);
    question += '\0';
    for (const std::string &file : wish.files) question += QByteArray::fromStdString(file) + '\0';
    return question + '\0';
}

void answerQuestion(QLocalSocket *caller, const QByteArray &question, bool hasLibrary) {
    const QList<QByteArray> parts = question.chopped(2).split('\0');
    const bool isMine = hasLibrary || parts.first() == any;
    caller->write(isMine ? shownAnswer : elsewhereAnswer);
    caller->flush();
    caller->disconnectFromServer();
    if (!isMine) return;
    raiseMainWindow();
    std::vector<std::string> files;
    for (const QByteArray &file : parts.mid(1)) files.push_back(file.toStdString());
    // The caller's answer must be out before boxes open.
    if (!files.empty()) QTimer::singleShot(0, mainWindow, [files] { importDropped(files); });
}

void listenTo(QLocalSocket *caller, bool hasLibrary) {
    QObject::connect(caller, &QLocalSocket::disconnected, caller, &QObject::deleteLater);
    const auto take = [caller, hasLibrary, question = QByteArray()]() mutable {
        question += caller->readAll();
        if (question.endsWith(QByteArray(2, '\0'))) return answerQuestion(caller, question, hasLibrary);
        if (question.size() > questionLimit) caller->abort();
    };
    QObject::connect(caller, &QLocalSocket::readyRead, caller, take);
}

QLocalServer *listenAs(const QString &name, bool hasLibrary) {
    auto *server = new QLocalServer;
    server->setSocketOptions(QLocalServer::UserAccessOption);
    QObject::connect(server, &QLocalServer::newConnection, server, [server, hasLibrary] {
        while (QLocalSocket *caller = server->nextPendingConnection()) listenTo(caller, hasLibrary);
    });
    if (hasLibrary) QLocalServer::removeServer(name);  // whoever has the library is the one to answer for it
    server->listen(name);
    return server;
}

// Whoever may write to the folder of sockets could put one there under our name.
bool isOwnUsers(const QLocalSocket &socket) {
    ucred peer{};
    socklen_t size = sizeof peer;
    const auto number = static_cast<int>(socket.socketDescriptor());
    return getsockopt(number, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == getuid();
}

}  // namespace

bool raiseRunningCopy(const StartWish &wish) {
    QLocalSocket socket;
    socket.connectToServer(serverName());
    if (!socket.waitForConnected(answerMilliseconds) || !isOwnUsers(socket)) return false;
    socket.write(questionOf(wish));
    socket.waitForBytesWritten(answerMilliseconds);
    return socket.waitForReadyRead(answerMilliseconds) && socket.readLine() == shownAnswer;
}

void answerFurtherCopies() {
    const QString name = serverName();
    if (state.startName.isEmpty()) state.startName = name;
    state.ofLibrary = listenAs(name, true);
    if (name != state.startName) state.ofStart = listenAs(state.startName, false);
}

void stopAnsweringCopies() {
    delete state.ofLibrary;
    delete state.ofStart;
    state.ofLibrary = state.ofStart = nullptr;
}

void forgetCopies() {
    stopAnsweringCopies();
    state = {};
}

}  // namespace numalink
