#include "tests/endtoend/XServer.h"

#include "support/process/ToolRunner.h"
#include "tests/WaitUntil.h"

#include <QCoreApplication>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <gtest/gtest.h>

#include <csignal>
#include <sys/prctl.h>

namespace navrel {

namespace {

const QString kServer = QStringLiteral("Xvfb");
const QString kDescriber = QStringLiteral("xwininfo");

/// Nothing outlives the test, however that ends.
void endWithTheTest(QProcess& process) {
    process.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
}

/// A number of this process's own. Left to themselves, servers in network namespaces of their own
/// do not see each other, and take one another's socket away.
QString numberOfDisplay() {
    constexpr qint64 first = 100;
    constexpr qint64 count = 50'000;
    return QStringLiteral(":%1").arg(first + QCoreApplication::applicationPid() % count);
}

} // namespace

bool XServer::isAvailable() {
    return findTool(kServer).has_value() && findTool(kDescriber).has_value();
}

XServer::XServer() {
    endWithTheTest(server_);
    server_.start(kServer,
                  {numberOfDisplay(), QStringLiteral("-displayfd"), QStringLiteral("1"),
                   QStringLiteral("-screen"), QStringLiteral("0"), QStringLiteral("800x600x24"),
                   QStringLiteral("-nolisten"), QStringLiteral("tcp"), QStringLiteral("-noreset")});
    EXPECT_TRUE(waitUntil([this] { return server_.canReadLine(); }));
    display_ = QStringLiteral(":") + QString::fromUtf8(server_.readLine()).trimmed();
    // It names its display before it takes every client.
    EXPECT_TRUE(waitUntil([this] { return !allWindows().isEmpty(); }));
}

XServer::~XServer() {
    endClient();
    // Not killed: it takes its socket and its lock with it.
    server_.terminate();
    server_.waitForFinished();
}

void XServer::startClient(const QString& program, const QStringList& arguments) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DISPLAY"), display_);
    client_.setProcessEnvironment(environment);
    endWithTheTest(client_);
    client_.start(program, arguments);
    EXPECT_TRUE(client_.waitForStarted());
}

void XServer::endClient() {
    client_.kill();
    client_.waitForFinished();
}

QByteArray XServer::describe(const QStringList& arguments) const {
    QProcess describer;
    describer.start(kDescriber, QStringList{QStringLiteral("-display"), display_} + arguments);
    describer.waitForFinished();
    return describer.exitCode() == 0 ? describer.readAllStandardOutput() : QByteArray();
}

QList<int> XServer::widthsOfShownWindows(const QString& title) const {
    static const QRegularExpression width(QStringLiteral("Width: (\\d+)"));
    const QByteArray name = " \"" + title.toUtf8() + "\": ";
    QList<int> widths;
    for (const QByteArray& line : allWindows().split('\n')) {
        if (!line.contains(name)) {
            continue;
        }
        const QString id = QString::fromLatin1(line.trimmed().split(' ').constFirst());
        const QByteArray window = describe({QStringLiteral("-id"), id, QStringLiteral("-stats")});
        if (window.contains("Map State: IsViewable")) {
            widths.append(width.match(QString::fromUtf8(window)).captured(1).toInt());
        }
    }
    return widths;
}

QByteArray XServer::allWindows() const {
    return describe({QStringLiteral("-root"), QStringLiteral("-tree")});
}

QByteArray XServer::windowsWithin(const QString& title) const {
    return describe({QStringLiteral("-name"), title, QStringLiteral("-tree")});
}

} // namespace navrel
