#pragma once

#include <memory>

namespace navrel {

/// Has Qt bring its own event loop while one lives. The one that it takes by default where there is
/// GLib needs half as long again for a turn, and a request and its answer are one or two turns.
/// What the environment says goes first. Main thread, while no other reads the environment.
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
