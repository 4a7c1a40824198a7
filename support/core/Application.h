#pragma once

#include <memory>

namespace navrel {

/// Has applications made with Qt's own event loop while one lives. The one that Qt takes by default
/// where there is GLib needs a quarter more time for a turn, and each request may cost one. Main
/// thread, while no other reads the environment.
class OwnEventLoop {
public:
    OwnEventLoop();
    /// Programs that this one starts choose for themselves.
    ~OwnEventLoop();
    OwnEventLoop(const OwnEventLoop&) = delete;
    OwnEventLoop& operator=(const OwnEventLoop&) = delete;

private:
    bool isChosenHere_;
};

/// The application object of the program, a QCoreApplication or a class derived from it. `argc` and
/// `argv` must outlive it.
template <typename Application>
std::unique_ptr<Application> makeApplication(int& argc, char** argv) {
    const OwnEventLoop choice;
    return std::make_unique<Application>(argc, argv);
}

} // namespace navrel
