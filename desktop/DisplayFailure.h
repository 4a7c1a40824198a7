#pragma once

namespace navrel {

/// While one lives, an application object that cannot reach its display ends the program with a
/// sentence and exit status 1, instead of an abort. Main thread, around the making of that object.
class DisplayFailure {
public:
    DisplayFailure();
    /// From now on messages of Qt go where they went before.
    ~DisplayFailure();
    DisplayFailure(const DisplayFailure&) = delete;
    DisplayFailure& operator=(const DisplayFailure&) = delete;
};

} // namespace navrel
