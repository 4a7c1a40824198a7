#pragma once

#include <QString>

namespace navrel {

inline QString text(const char* bytes) {
    return QString::fromUtf8(bytes);
}

} // namespace navrel
