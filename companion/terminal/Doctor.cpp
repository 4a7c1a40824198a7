#include "companion/terminal/Doctor.h"

#include "companion/link/OwnerLink.h"
#include "companion/terminal/StateText.h"
#include "companion/terminal/ViewAccess.h"

#include <QDir>
#include <QFileInfo>
#include <QSysInfo>

#include <clocale>

namespace navrel {

namespace {

constexpr int kFactTitleWidth = 10;
const QString kUSBDaemonSocket = QStringLiteral("/var/run/usbmuxd");

QString line(const QString& title, const QString& value) {
    return title.leftJustified(kFactTitleWidth) + value + u'\n';
}

QString hint(const QString& text) {
    return QString(kFactTitleWidth, u' ') + text + u'\n';
}

QString socketLines(const DoctorFacts& facts) {
    if (facts.socket.empty()) {
        return line(QStringLiteral("Socket"), QStringLiteral("XDG_RUNTIME_DIR is not set.")) +
               hint(QStringLiteral("Log in through the system's login manager or over SSH, or set "
                                   "it to a folder of your own."));
    }
    return line(QStringLiteral("Socket"),
                QString::fromStdString(facts.socket) +
                    (facts.isSocketThere ? QString() : QStringLiteral(" is not there.")));
}

QString navrelLines(const DoctorFacts& facts, const CodeAnswer& state, const TerminalText& text) {
    if (!state.isView()) {
        return line(QStringLiteral("Navrel"), state.problem) + hint(state.hint) +
               socketLines(facts) +
               line(QStringLiteral("USB"),
                    facts.isUSBDaemonThere
                        ? QStringLiteral("The USB daemon is there.")
                        : QStringLiteral("The USB daemon is not there; it starts with the first "
                                         "device."));
    }
    return line(QStringLiteral("Navrel"),
                textAt(state.view, "version") + QStringLiteral(" is running.")) +
           socketLines(facts) + stateText(state.view, text);
}

} // namespace

DoctorFacts doctorFacts(const QString& version) {
    DoctorFacts facts;
    facts.version = version;
    facts.system = QSysInfo::prettyProductName();
    facts.terminal = qEnvironmentVariable("TERM");
    facts.locale = QString::fromLocal8Bit(std::setlocale(LC_CTYPE, nullptr));
    facts.home = QDir::homePath();
    facts.socket = ownerSocketPath();
    facts.isSocketThere = QFileInfo::exists(QString::fromStdString(facts.socket));
    facts.isUSBDaemonThere = QFileInfo::exists(kUSBDaemonSocket);
    return facts;
}

QString withoutHome(QString text, const QString& home) {
    if (home.size() > 1) {
        text.replace(home + u'/', QStringLiteral("~/"));
    }
    return text;
}

QString doctorText(const DoctorFacts& facts, CodeSource* source, const TerminalText& text) {
    const CodeAnswer state =
        source != nullptr ? source->state()
                          : CodeAnswer::failure(CommandResult::noNavrel,
                                                QStringLiteral("No Navrel of yours is running."),
                                                QStringLiteral("Start it with: navrel"));
    const QString size = facts.traits.isTerminal ? QStringLiteral(", %1 columns, %2 lines")
                                                       .arg(facts.traits.width)
                                                       .arg(facts.traits.height)
                                                 : QString();
    return withoutHome(
        line(QStringLiteral("Companion"), facts.version) +
            line(QStringLiteral("System"), facts.system) +
            line(QStringLiteral("Terminal"),
                 (facts.terminal.isEmpty() ? QStringLiteral("none") : facts.terminal) + size) +
            line(QStringLiteral("Locale"), facts.locale) + navrelLines(facts, state, text),
        facts.home);
}

} // namespace navrel
