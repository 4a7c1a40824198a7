#include "desktop/QtDesktop.h"

#include "desktop/tray/StatusItem.h"
#include "desktop/windows/AboutWindow.h"
#include "desktop/windows/OpenPanel.h"
#include "support/core/Error.h"
#include "support/core/Log.h"
#include "support/process/DesktopOpener.h"

#include <QApplication>
#include <QGridLayout>
#include <QIcon>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QSpacerItem>

namespace navrel {

namespace {

constexpr int kAlertWidth = 420;

QString messageOf(const Error& error) {
    return error.localizedDescription().value_or(error.description());
}

QString detailsOf(const Error& error) {
    QStringList details;
    if (const auto reason = error.localizedFailureReason()) {
        details.append(*reason);
    }
    if (const Error* cause = error.underlyingError()) {
        details.append(messageOf(*cause));
    }
    if (const auto suggestion = error.localizedRecoverySuggestion()) {
        details.append(*suggestion);
    }
    return details.join(QStringLiteral("\n\n"));
}

/// An alert wide enough for a sentence.
class Alert final : public QMessageBox {
public:
    Alert(Icon icon, const QString& message, const QString& informativeText)
        : QMessageBox(icon, QStringLiteral("Navrel"), QString()) {
        setText(message);
        setInformativeText(informativeText);
        // The texts may come from anywhere: they are no markup. The format of the alert is that of
        // its message alone.
        setTextFormat(Qt::PlainText);
        for (auto* label : findChildren<QLabel*>()) {
            label->setTextFormat(Qt::PlainText);
            label->setOpenExternalLinks(false);
        }
        if (auto* grid = qobject_cast<QGridLayout*>(layout())) {
            grid->addItem(new QSpacerItem(kAlertWidth, 0), grid->rowCount(), 0, 1,
                          grid->columnCount());
        }
    }
};

} // namespace

bool QtDesktop::isDisplayThere() {
    if (qobject_cast<QGuiApplication*>(QCoreApplication::instance()) == nullptr) {
        return false;
    }
    const QString platform = QGuiApplication::platformName();
    return platform != QStringLiteral("offscreen") && platform != QStringLiteral("minimal");
}

QtDesktop::QtDesktop(bool hasDisplay) : hasDisplay_(hasDisplay) {}

QtDesktop::~QtDesktop() = default;

void QtDesktop::bringToFront() {
    if (statusItem_ != nullptr && hasDisplay_) {
        statusItem_->bringToFront();
    }
}

std::optional<QString> QtDesktop::runOpenPanel(const QString& title,
                                               const QStringList& allowedFileTypes) {
    if (!hasDisplay_) {
        log(QStringLiteral("No display to ask on: %1").arg(title));
        return std::nullopt;
    }
    OpenPanel panel(title, allowedFileTypes, openPanelFolder_ ? openPanelFolder_() : QString());
    if (panel.exec() != QDialog::Accepted) {
        return std::nullopt;
    }
    return panel.selectedFiles().constFirst();
}

bool QtDesktop::presentError(const Error& error) {
    log(error.description());
    if (hasDisplay_) {
        Alert(QMessageBox::Critical, messageOf(error), detailsOf(error)).exec();
    }
    return false;
}

int QtDesktop::runAlert(const QString& message, const QString& informativeText,
                        const QStringList& buttons) {
    if (!hasDisplay_) {
        log(QStringLiteral("No display to ask on: %1").arg(message));
        return kAlertFirstButtonReturn + static_cast<int>(buttons.size());
    }
    Alert alert(QMessageBox::Warning, message, informativeText);
    QList<QPushButton*> pushButtons;
    for (const QString& title : buttons) {
        pushButtons.append(alert.addButton(title, QMessageBox::ActionRole));
    }
    if (!pushButtons.isEmpty()) {
        alert.setDefaultButton(pushButtons.constFirst());
        alert.setEscapeButton(pushButtons.constLast());
    }
    alert.exec();
    return kAlertFirstButtonReturn +
           static_cast<int>(pushButtons.indexOf(qobject_cast<QPushButton*>(alert.clickedButton())));
}

bool QtDesktop::openFile(const QString& path) {
    return openWithDesktop(path);
}

void QtDesktop::openURL(const QUrl& url, std::function<void()> wasRefused) {
    if (!openURLWithDesktop(url, wasRefused)) {
        wasRefused();
    }
}

void QtDesktop::showStatusItem(StatusMenu& menu, const QString& imagePath) {
    statusItem_ = std::make_unique<StatusItem>(menu, QIcon(imagePath), hasDisplay_);
}

void QtDesktop::showAboutWindow(const QString& page) {
    if (!hasDisplay_) {
        log(QStringLiteral("No display to show a window on: About Navrel"));
        return;
    }
    if (aboutWindow_ == nullptr) {
        aboutWindow_ = std::make_unique<AboutWindow>([this](const QUrl& url) {
            openURL(url, [url] {
                log(QStringLiteral("Failed to open url: %1").arg(url.toString(QUrl::FullyEncoded)));
            });
        });
    }
    aboutWindow_->showPage(page);
}

void QtDesktop::terminate() {
    // Not by closing the windows first, which are free to refuse.
    QCoreApplication::exit();
}

} // namespace navrel
