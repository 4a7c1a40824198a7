#include "app/AboutPage.h"

#include "support/core/Log.h"

#include <QFile>

namespace navrel {

namespace {

QString stateSection(const std::vector<StateSentence>& state) {
    QString rows;
    for (const StateSentence& sentence : state) {
        rows += QStringLiteral("<tr><td valign=\"top\"><b>%1</b></td><td>%2%3</td></tr>\n")
                    .arg(titleOf(sentence.part).toHtmlEscaped(), sentence.text.toHtmlEscaped(),
                         sentence.hint.isEmpty()
                             ? QString()
                             : QStringLiteral("<br><i>%1</i>").arg(sentence.hint.toHtmlEscaped()));
    }
    return rows.isEmpty()
               ? QString()
               : QStringLiteral("<h3>State</h3>\n<table cellspacing=\"0\" cellpadding=\"3\">\n") +
                     rows + QStringLiteral("</table>");
}

} // namespace

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
    page.replace(QStringLiteral("%STATE%"), stateSection(facts.state)); // last: it holds any text
    return page;
}

} // namespace navrel
