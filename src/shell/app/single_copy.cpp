#include "shell/app/single_copy.h"

#include <QCryptographicHash>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>

#include "platform/program_folder.h"
#include "shell/app/tray.h"
#include "shell/parts/shell_texts.h"

namespace numalink {

namespace {

constexpr int answerMilliseconds = 1000;
QLocalServer *server = nullptr;

// Named for the library, so that copies with libraries of their own don't meet.
QString serverName() {
    const QString folder = QFileInfo(toQt(libraryFolder())).canonicalFilePath();
    const QByteArray digest = QCryptographicHash::hash(folder.toUtf8(), QCryptographicHash::Sha256).toHex();
    return QStringLiteral("numalink-") + QString::fromLatin1(digest.left(24));
}

void answerNext() {
    QLocalSocket *caller = server->nextPendingConnection();
    if (caller == nullptr) return;
    raiseMainWindow();
    caller->write("shown\n");
    caller->flush();
    QObject::connect(caller, &QLocalSocket::disconnected, caller, &QObject::deleteLater);
    caller->disconnectFromServer();
}

}  // namespace

bool raiseRunningCopy() {
    QLocalSocket socket;
    socket.connectToServer(serverName());
    if (!socket.waitForConnected(answerMilliseconds)) return false;
    return socket.waitForReadyRead(answerMilliseconds) && socket.readLine() == "shown\n";
}

void answerFurtherCopies() {
    server = new QLocalServer;
    server->setSocketOptions(QLocalServer::UserAccessOption);
    QLocalServer::removeServer(serverName());
    QObject::connect(server, &QLocalServer::newConnection, server, answerNext);
    server->listen(serverName());
}

void stopAnsweringCopies() {
    delete server;
    server = nullptr;
}

}  // namespace numalink
