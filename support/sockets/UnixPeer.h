#pragma once

namespace navrel {

/// Whether the other end of a connected Unix socket belongs to this process's user.
bool isPeerThisUser(int socket);

} // namespace navrel
