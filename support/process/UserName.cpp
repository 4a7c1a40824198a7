#include "support/process/UserName.h"

#include <array>
#include <cstddef>
#include <pwd.h>

namespace navrel {

QString nameOfUser(qint64 user) {
    // An entry that does not fit is one without a name.
    constexpr std::size_t kLongestEntry = 16'384;
    if (user < 0) {
        return {};
    }
    std::array<char, kLongestEntry> buffer;
    passwd entry = {};
    passwd* found = nullptr;
    const int failure =
        ::getpwuid_r(static_cast<uid_t>(user), &entry, buffer.data(), buffer.size(), &found);
    return failure == 0 && found != nullptr ? QString::fromLocal8Bit(entry.pw_name)
                                            : QString::number(user);
}

} // namespace navrel
