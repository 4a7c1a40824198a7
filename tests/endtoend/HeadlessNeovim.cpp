#include "tests/endtoend/HeadlessNeovim.h"

#include "support/process/ToolRunner.h"
#include "tests/WaitUntil.h"

namespace navrel {

namespace {

const QString kNeovim = QStringLiteral("nvim");

} // namespace

bool HeadlessNeovim::isAvailable() {
    return findTool(kNeovim).has_value();
}

HeadlessNeovim::~HeadlessNeovim() {
    kill();
}

void HeadlessNeovim::kill() {
    process_.kill();
    process_.waitForFinished();
}

bool HeadlessNeovim::start(const QString& socket, const QString& file) {
    socket_ = socket;
    process_.start(kNeovim, {QStringLiteral("--clean"), QStringLiteral("--headless"),
                             QStringLiteral("--listen"), socket_, file});
    return waitUntil([this] { return valueOf(QStringLiteral("v:vim_did_enter")) == "1"; });
}

QByteArray HeadlessNeovim::valueOf(const QString& expression) const {
    QProcess client;
    client.setProcessChannelMode(QProcess::MergedChannels);
    client.start(kNeovim, {QStringLiteral("--clean"), QStringLiteral("--headless"),
                           QStringLiteral("--server"), socket_, QStringLiteral("--remote-expr"),
                           expression});
    client.waitForFinished();
    return client.readAll().trimmed();
}

} // namespace navrel
