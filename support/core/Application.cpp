#include "support/core/Application.h"

#include "support/core/MainThread.h"

#include <QByteArray>
#include <QtGlobal>

namespace navrel {

namespace {

constexpr const char* kWithoutGLib = "QT_NO_GLIB";

} // namespace

OwnEventLoop::OwnEventLoop() : isChosenHere_(!qEnvironmentVariableIsSet(kWithoutGLib)) {
    NAVREL_ASSERT_MAIN_THREAD();
    if (isChosenHere_) {
        qputenv(kWithoutGLib, "1");
    }
}

OwnEventLoop::~OwnEventLoop() {
    if (isChosenHere_) {
        qunsetenv(kWithoutGLib);
    }
}

} // namespace navrel
