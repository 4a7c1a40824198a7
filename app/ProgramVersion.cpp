#include "app/ProgramVersion.h"

namespace navrel {

QString programVersion() {
    return QStringLiteral(NAVREL_VERSION);
}

QString majorMinorVersion(const QString& version) {
    return version.section(QLatin1Char('.'), 0, 1);
}

} // namespace navrel
