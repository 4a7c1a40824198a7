#include "app/AboutPage.h"

#include "support/Log.h"

#include <QFile>

namespace navrel {

QString aboutPage(const AboutFacts& facts) {
    QFile resource(QStringLiteral(":/About.html"));
    if (!resource.open(QIODevice::ReadOnly)) {
        log(QStringLiteral("No page about the program: %1").arg(resource.errorString()));
        return QString();
    }
    QString page = QString::fromUtf8(resource.readAll());
    page.replace(QStringLiteral("%VERSION%"), facts.version.toHtmlEscaped());
    page.replace(QStringLiteral("%STORE%"), facts.storeFolder.toHtmlEscaped());
    page.replace(QStringLiteral("%PREFERENCES%"), facts.preferencesFile.toHtmlEscaped());
    return page;
}

} // namespace navrel
