#pragma once

namespace navrel {

/// Whether the other end of a connected Unix socket belongs to this process's user. False if the
/// system does not say. Any thread.
bool isPeerThisUser(int socket);

} // namespace navrel
