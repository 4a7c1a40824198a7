#include "desktop/QtDesktop.h"

#include "support/DesktopOpener.h"
#include "support/Error.h"
#include "support/Log.h"

#include <QApplication>
#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>

namespace navrel {

namespace {

bool isDisplayThere() {
    if (qobject_cast<QGuiApplication*>(QCoreApplication::instance()) == nullptr) {
        return false;
    }
    const QString platform = QGuiApplication::platformName();
    return platform != QStringLiteral("offscreen") && platform != QStringLiteral("minimal");
}

bool hasAllowedType(const QString& path, const QStringList& allowedFileTypes) {
    for (const QString& type : allowedFileTypes) {
        if (path.endsWith(QLatin1Char('.') + type)) {
            return true;
        }
    }
    return false;
}

QString textOf(const Error& error) {
    const QString text = error.localizedDescription().value_or(error.description());
    const Error* cause = error.underlyingError();
    QString details = error.localizedFailureReason().value_or(QString());
    if (cause != nullptr) {
        details +=
            QStringLiteral("\n\n") + cause->localizedDescription().value_or(cause->description());
    }
    return details.isEmpty() ? text : QStringLiteral("%1\n\n%2").arg(text, details.trimmed());
}

} // namespace

std::optional<QString> QtDesktop::runOpenPanel(const QString& title,
                                               const QStringList& allowedFileTypes) {
    if (!isDisplayThere()) {
        log(QStringLiteral("No display to ask on: %1").arg(title));
        return std::nullopt;
    }
    // Bundles are folders here, so the panel picks folders, and asks again for any other one.
    QFileDialog panel(nullptr, title);
    panel.setFileMode(QFileDialog::Directory);
    panel.setOption(QFileDialog::DontUseNativeDialog);
    while (panel.exec() == QDialog::Accepted) {
        const QString path = panel.selectedFiles().value(0);
        if (hasAllowedType(path, allowedFileTypes)) {
            return path;
        }
        panel.setDirectory(path);
    }
    return std::nullopt;
}

bool QtDesktop::presentError(const Error& error) {
    log(error.description());
    if (isDisplayThere()) {
        QMessageBox::critical(nullptr, QStringLiteral("Navrel"), textOf(error));
    }
    return false;
}

int QtDesktop::runAlert(const QString& message, const QString& informativeText,
                        const QStringList& buttons) {
    if (!isDisplayThere()) {
        log(QStringLiteral("No display to ask on: %1").arg(message));
        return kAlertFirstButtonReturn + static_cast<int>(buttons.size());
    }
    QMessageBox alert(QMessageBox::Warning, QStringLiteral("Navrel"), message);
    alert.setInformativeText(informativeText);
    QList<QAbstractButton*> pushButtons;
    for (const QString& title : buttons) {
        pushButtons.append(alert.addButton(title, QMessageBox::ActionRole));
    }
    alert.exec();
    return kAlertFirstButtonReturn + static_cast<int>(pushButtons.indexOf(alert.clickedButton()));
}

bool QtDesktop::openFile(const QString& path) {
    return openWithDesktop(path);
}

void QtDesktop::terminate() {
    QCoreApplication::quit();
}

} // namespace navrel
