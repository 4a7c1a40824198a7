#include "desktop/SessionBusGuard.h"
#include "desktop/SessionBusProbe.h"
#include "tests/LogRecorder.h"
#include "tests/SessionBus.h"

#include <QLocalServer>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace navrel {
namespace {

constexpr std::chrono::seconds kLong{20};
constexpr std::chrono::milliseconds kShort{100};

/// Accepts connections, as the kernel does for any listener, and never says a word.
class MuteBus {
public:
    MuteBus() { server_.listen(folder_.filePath(QStringLiteral("bus"))); }
    QByteArray address() const { return "unix:path=" + server_.fullServerName().toUtf8(); }

private:
    QTemporaryDir folder_;
    QLocalServer server_;
};

TEST(SessionBusProbe, aRealBusGreets) {
    if (!SessionBus::isAvailable()) {
        GTEST_SKIP() << "needs dbus-daemon";
    }
    const SessionBus bus;
    EXPECT_TRUE(greetsOnBus(bus.address().toUtf8(), kLong));
}

TEST(SessionBusProbe, aBusThatAcceptsAndNeverAnswersDoesNotGreet) {
    const MuteBus bus;
    EXPECT_FALSE(greetsOnBus(bus.address(), kShort));
    EXPECT_FALSE(greetsOnBus(bus.address() + ",guid=00;tcp:host=localhost,port=1", kShort));
}

TEST(SessionBusProbe, whereNobodyListensOrTheKindIsAnotherQtFindsOutByItself) {
    for (const char* address : {"unix:path=/nonexistent/bus", "tcp:host=localhost,port=1", "", ";",
                                "unix:", "autolaunch:", "unix:path="}) {
        EXPECT_TRUE(greetsOnBus(address, kShort)) << address;
    }
}

TEST(SessionBusProbe, aBusThatDoesNotGreetIsHiddenWhileTheGuardLives) {
    const QByteArray before = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    const MuteBus bus;
    qputenv("DBUS_SESSION_BUS_ADDRESS", bus.address());
    const LogRecorder log;
    {
        const SessionBusGuard guard;
        EXPECT_TRUE(guard.hidesBus());
        EXPECT_NE(sessionBusAddress(), bus.address());
    }
    EXPECT_EQ(sessionBusAddress(), bus.address());
    ASSERT_EQ(log.messages().size(), 1);
    EXPECT_TRUE(log.messages()[0].contains(QString::fromUtf8(bus.address())));
    qputenv("DBUS_SESSION_BUS_ADDRESS", before);
}

} // namespace
} // namespace navrel
