#include "desktop/QtDesktop.h"
#include "support/core/Error.h"
#include "tests/LogRecorder.h"

#include <gtest/gtest.h>

namespace navrel {
namespace {

TEST(QtDesktop, withoutADisplayEveryDialogCountsAsDismissedAndTheLogSaysSo) {
    const LogRecorder log;
    QtDesktop desktop;

    EXPECT_EQ(desktop.runOpenPanel(QStringLiteral("Select"), {QStringLiteral("xcodeproj")}),
              std::nullopt);
    EXPECT_EQ(desktop.runAlert(QStringLiteral("Quit?"), QString(),
                               {QStringLiteral("A"), QStringLiteral("B")}),
              kAlertFirstButtonReturn + 2);
    const Error error(QStringLiteral("D"), 1, QStringLiteral("It broke"));
    EXPECT_FALSE(desktop.presentError(error));
    EXPECT_EQ(log.messages(),
              (QStringList{QStringLiteral("No display to ask on: Select"),
                           QStringLiteral("No display to ask on: Quit?"), error.description()}));
}

} // namespace
} // namespace navrel
