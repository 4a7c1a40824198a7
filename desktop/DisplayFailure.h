#pragma once

namespace navrel {

/// While one lives, an application object that cannot reach its display ends the program with a
/// sentence and exit status 1, instead of aborting it. Must exist on the main thread while that
/// object is made.
class DisplayFailure {
public:
    DisplayFailure();
    /// Restores the handler of Qt's messages.
    ~DisplayFailure();
    DisplayFailure(const DisplayFailure&) = delete;
    DisplayFailure& operator=(const DisplayFailure&) = delete;
};

} // namespace navrel
