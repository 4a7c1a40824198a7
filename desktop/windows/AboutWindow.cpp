#include "desktop/windows/AboutWindow.h"

#include "desktop/windows/ScreenRoom.h"
#include "support/core/MainThread.h"

#include <QKeyEvent>
#include <QUrl>

#include <algorithm>
#include <cmath>
#include <utility>

namespace navrel {

namespace {

constexpr int kPageWidth = 640;
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
    NAVREL_ASSERT_MAIN_THREAD();
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
    document()->setTextWidth(kPageWidth);
    const int pageHeight = static_cast<int>(std::ceil(document()->size().height()));
    resize(kPageWidth, std::min(pageHeight + 2 * frameWidth(), mostHeightOnScreen(*this)));
}

void AboutWindow::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Cancel) || event->matches(QKeySequence::Close)) {
        close();
        return;
    }
    QTextBrowser::keyPressEvent(event);
}

} // namespace navrel
