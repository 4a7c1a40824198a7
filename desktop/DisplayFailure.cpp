#include "desktop/DisplayFailure.h"

#include "support/core/MainThread.h"

#include <QByteArray>
#include <QString>
#include <QtGlobal>

#include <cstdio>
#include <cstring>
#include <unistd.h>

namespace navrel {

namespace {

QtMessageHandler previousHandler = nullptr; // main thread

QByteArray displayName() {
    const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
    const bool isWayland = platform.isEmpty() ? qEnvironmentVariableIsEmpty("DISPLAY")
                                              : platform.startsWith("wayland");
    return isWayland ? "WAYLAND_DISPLAY=" + qgetenv("WAYLAND_DISPLAY")
                     : "DISPLAY=" + qgetenv("DISPLAY");
}

[[noreturn]] void endWithSentence() {
    std::fprintf(stderr,
                 "navrel: the display cannot be reached (%s). Without DISPLAY and WAYLAND_DISPLAY "
                 "it runs without windows.\n",
                 displayName().constData());
    ::_exit(1);
}

// What Qt says on its way to that end is about plugins, and no help.
void receive(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    if (type == QtFatalMsg) {
        endWithSentence();
    }
    const bool isAboutPlugins =
        context.category != nullptr && std::strncmp(context.category, "qt.qpa", 6) == 0;
    if (!isAboutPlugins && previousHandler != nullptr) {
        previousHandler(type, context, message);
    }
}

} // namespace

DisplayFailure::DisplayFailure() {
    NAVREL_ASSERT_MAIN_THREAD();
    previousHandler = qInstallMessageHandler(&receive);
}

DisplayFailure::~DisplayFailure() {
    NAVREL_ASSERT_MAIN_THREAD();
    qInstallMessageHandler(previousHandler);
}

} // namespace navrel
