// Holds docs/protocol.md to the frame types and keys of the code.

#include "app/CommandService.h"
#include "protocol/CompanionKeys.h"
#include "protocol/CompanionProtocol.h"

#include <QFile>
#include <QRegularExpression>
#include <QString>
#include <gmock/gmock.h>

#include <set>

namespace navrel {
namespace {

/// The part of the page that lists requests and replies.
QString page() {
    QFile file(QStringLiteral(NAVREL_SOURCE_FOLDER "/docs/protocol.md"));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(file.readAll());
    const QString begin = QStringLiteral("## Requests and replies");
    return text.section(begin, 1).section(QStringLiteral("### A request and its reply"), 0, 0);
}

TEST(ProtocolPage, listsTheTypesThatAreAnswered) {
    std::set<quint32> listed;
    static const QRegularExpression row(QStringLiteral("^\\| (\\d+) \\|"),
                                        QRegularExpression::MultilineOption);
    for (auto match = row.globalMatch(page()); match.hasNext();) {
        listed.insert(match.next().captured(1).toUInt());
    }
    std::set<quint32> answered;
    for (quint32 type = 104; type < 1000; ++type) {
        if (CommandService::accepts(type)) {
            answered.insert(type);
        }
    }
    EXPECT_EQ(listed, answered);
    EXPECT_EQ(answered.size(), 12U);
}

TEST(ProtocolPage, namesEachKeyAndNoOther) {
    const std::set<QString> keys = {
        key::allowed, key::autoUpdate, key::counterpart, key::extension,  key::identifier,
        key::isGroup, key::items,      key::label,       key::line,       key::name,
        key::path,    key::project,    key::shortcut,    key::superclass, key::title,
        key::type,    key::version};
    std::set<QString> named;
    static const QRegularExpression keyOfReply(QStringLiteral("\"(\\w+)\":"));
    static const QRegularExpression keyOfRequest(
        QStringLiteral("\"(\\w+)\" \\((?:string|number|boolean)"));
    for (const auto* pattern : {&keyOfReply, &keyOfRequest}) {
        for (auto match = pattern->globalMatch(page()); match.hasNext();) {
            named.insert(match.next().captured(1));
        }
    }
    EXPECT_EQ(named, keys);
}

} // namespace
} // namespace navrel
