#pragma once

#include <QString>
#include <QTextBrowser>

#include <functional>

namespace navrel {

/// The window with the page about the program. Main thread.
class AboutWindow final : public QTextBrowser {
public:
    /// Hidden at first. `openLink` is called with the target of a link that the user chooses.
    explicit AboutWindow(std::function<void(const QUrl&)> openLink);

    /// Loads a page (HTML of Qt's rich-text subset) and brings the window to the front, with the
    /// keyboard focus. A window that was hidden becomes as high as the page, if the screen has
    /// room.
    void showPage(const QString& page);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void fitPage();
};

} // namespace navrel
