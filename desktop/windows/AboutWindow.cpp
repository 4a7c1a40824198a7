#include "desktop/windows/AboutWindow.h"

#include <QKeyEvent>
#include <QScreen>
#include <QUrl>

#include <algorithm>
#include <cmath>
#include <utility>

namespace navrel {

namespace {

constexpr int kWidth = 640;
/// Of the screen's height, so that the window's frame and panels have room.
constexpr double kMostOfScreen = 0.85;
constexpr int kPageMargin = 16;

} // namespace

AboutWindow::AboutWindow(std::function<void(const QUrl&)> openLink) {
    setWindowTitle(QStringLiteral("About Navrel"));
    setAccessibleName(QStringLiteral("About Navrel"));
    setFrameShape(QFrame::NoFrame);
    setOpenLinks(false);
    connect(this, &QTextBrowser::anchorClicked, this,
            [openLink = std::move(openLink)](const QUrl& url) { openLink(url); });
}

void AboutWindow::showPage(const QString& page) {
    setHtml(page);
    document()->setDocumentMargin(kPageMargin);
    fitPage();
    if (isMinimized()) {
        showNormal();
    } else {
        show();
    }
    raise();
    activateWindow();
}

void AboutWindow::fitPage() {
    if (isVisible()) {
        return; // the user may have resized it
    }
    document()->setTextWidth(kWidth);
    const int pageHeight = static_cast<int>(std::ceil(document()->size().height()));
    const int mostHeight = static_cast<int>(screen()->availableGeometry().height() * kMostOfScreen);
    resize(kWidth, std::min(pageHeight + 2 * frameWidth(), mostHeight));
}

void AboutWindow::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Cancel) || event->matches(QKeySequence::Close)) {
        close();
        return;
    }
    QTextBrowser::keyPressEvent(event);
}

} // namespace navrel
