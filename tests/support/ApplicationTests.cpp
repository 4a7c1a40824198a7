#include "support/core/Application.h"

#include <QAbstractEventDispatcher>
#include <QByteArray>
#include <gmock/gmock.h>

namespace navrel {
namespace {

// The application of every test binary is made as the program's is.
TEST(Application, runsOnQtsOwnEventLoop) {
    const auto* const dispatcher = QAbstractEventDispatcher::instance();
    ASSERT_NE(dispatcher, nullptr);
    EXPECT_THAT(dispatcher->metaObject()->className(), testing::Not(testing::HasSubstr("Glib")));
}

TEST(Application, leavesNothingInTheEnvironmentOfProgramsThatItStarts) {
    std::make_unique<OwnEventLoop>().reset();
    EXPECT_FALSE(qEnvironmentVariableIsSet("QT_NO_GLIB"));
}

TEST(Application, keepsWhatTheEnvironmentSaysOfTheEventLoop) {
    qputenv("QT_NO_GLIB", "0");
    std::make_unique<OwnEventLoop>().reset();
    EXPECT_EQ(qgetenv("QT_NO_GLIB"), "0");
    qunsetenv("QT_NO_GLIB");
}

} // namespace
} // namespace navrel
