#include "support/core/Application.h"
#ifdef NAVREL_OWN_NETWORK
#include "tests/NetworkNamespace.h"
#endif

#ifdef NAVREL_WIDGETS
#include <QApplication>
using Application = QApplication;
#else
#include <QCoreApplication>
using Application = QCoreApplication;
#endif
#include <gmock/gmock.h>

#include <cstdio>

int main(int argc, char** argv) {
#ifdef NAVREL_OWN_NETWORK
    // Before anything starts a thread: a namespace is entered by one thread alone.
    if (const auto failure = navrel::enterOwnNetworkNamespace()) {
        std::fprintf(stderr, "cannot run in a network namespace of its own: %s\n",
                     failure->c_str());
        return 1;
    }
#endif
#ifdef NAVREL_WIDGETS
    // Never on the desktop of the user who runs the tests.
    qputenv("QT_QPA_PLATFORM", "offscreen");
#endif
    const auto application = navrel::makeApplication<Application>(argc, argv);
    ::testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
