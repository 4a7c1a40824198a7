#include "desktop/AboutWindow.h"

#include <QKeyEvent>
#include <QUrl>

#include <utility>

namespace navrel {

namespace {

constexpr QSize kUsualSize{560, 600};
constexpr int kPageMargin = 16;

} // namespace

AboutWindow::AboutWindow(std::function<void(const QUrl&)> openLink) {
    setWindowTitle(QStringLiteral("About Navrel"));
    setAccessibleName(QStringLiteral("About Navrel"));
    setAttribute(Qt::WA_ShowWithoutActivating);
    setFrameShape(QFrame::NoFrame);
    setOpenLinks(false);
    resize(kUsualSize);
    connect(this, &QTextBrowser::anchorClicked, this,
            [openLink = std::move(openLink)](const QUrl& url) { openLink(url); });
}

void AboutWindow::showPage(const QString& page) {
    setHtml(page);
    document()->setDocumentMargin(kPageMargin);
    if (isMinimized()) {
        showNormal();
    } else {
        show();
    }
    raise();
}

void AboutWindow::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Cancel) || event->matches(QKeySequence::Close)) {
        close();
        return;
    }
    QTextBrowser::keyPressEvent(event);
}

} // namespace navrel
