#include "scanning/QWAdditions.h"

namespace navrel {

ByteRange rangeOfData_qw(QByteArrayView buffer, QByteArrayView pattern) {
    const auto length = static_cast<quint64>(pattern.size());
    if (pattern.isEmpty()) {
        return {kNotFound, length};
    }
    quint64 start = kNotFound;
    qsizetype matched = 0;
    for (qsizetype index = 0; index < buffer.size(); ++index) {
        if (buffer[index] != pattern[matched]) {
            matched = 0;
            start = kNotFound;
            continue;
        }
        if (start == kNotFound) {
            start = static_cast<quint64>(index);
        }
        if (++matched == pattern.size()) {
            return {start, length};
        }
    }
    return {start, length};
}

} // namespace navrel
