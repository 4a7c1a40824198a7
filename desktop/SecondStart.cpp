#include "desktop/SecondStart.h"

#include "support/core/Log.h"
#include "support/core/MainThread.h"

#include <QLocalSocket>

#include <utility>

namespace navrel {

namespace {

/// A first start that is busy for longer comes to the front later: the connection waits for it.
constexpr int kAnswerWithin = 1000;

} // namespace

SecondStart::SecondStart(const QString& socketPath, std::function<void()> didStart) {
    NAVREL_ASSERT_MAIN_THREAD();
    QLocalServer::removeServer(socketPath);
    server_.setSocketOptions(QLocalServer::UserAccessOption);
    QObject::connect(&server_, &QLocalServer::newConnection, &server_,
                     [this, didStart = std::move(didStart)] {
                         while (QLocalSocket* connection = server_.nextPendingConnection()) {
                             connection->deleteLater(); // that it connected is all it has to say
                         }
                         didStart();
                     });
    if (!server_.listen(socketPath)) {
        log(QStringLiteral("A second start will not bring this one to the front: %1")
                .arg(server_.errorString()));
    }
}

bool SecondStart::tellFirst(const QString& socketPath) {
    QLocalSocket connection;
    connection.connectToServer(socketPath);
    return connection.waitForConnected(kAnswerWithin);
}

} // namespace navrel
