#include "support/core/Assertion.h"

#include "support/core/Log.h"

#include <QString>

#include <cstdlib>

namespace navrel {

void assertionFailed(const char* condition, const char* function, const char* file, int line) {
    log(QStringLiteral("Assertion failed: (%1), function %2, file %3, line %4.")
            .arg(QString::fromUtf8(condition), QString::fromUtf8(function), QString::fromUtf8(file))
            .arg(line));
    std::abort();
}

} // namespace navrel
