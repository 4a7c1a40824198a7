#pragma once

#include <memory>

namespace navrel {

/// While one lives, application objects are made with Qt's own event loop. By default Qt uses
/// GLib's if there is one, which takes a quarter more time for a turn, and each request may cost a
/// turn. Main thread. It changes the environment, which no other thread may read meanwhile.
class OwnEventLoop {
public:
    OwnEventLoop();
    /// Restores the environment, so that programs that this one starts choose for themselves.
    ~OwnEventLoop();
    OwnEventLoop(const OwnEventLoop&) = delete;
    OwnEventLoop& operator=(const OwnEventLoop&) = delete;

private:
    bool isChosenHere_;
};

/// Makes the application object of the program: a QCoreApplication, or a class derived from it.
/// `argc` and `argv` must outlive it.
template <typename Application>
std::unique_ptr<Application> makeApplication(int& argc, char** argv) {
    const OwnEventLoop choice;
    return std::make_unique<Application>(argc, argv);
}

} // namespace navrel
