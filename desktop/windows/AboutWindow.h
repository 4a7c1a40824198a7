#pragma once

#include <QString>
#include <QTextBrowser>

#include <functional>

namespace navrel {

/// The window with the page about the program. Main thread.
class AboutWindow final : public QTextBrowser {
public:
    /// Hidden at first. `openLink` is called with what a link of the page points at.
    explicit AboutWindow(std::function<void(const QUrl&)> openLink);

    /// Loads a page (HTML of Qt's rich-text subset), makes a window that is not open as high as the
    /// page where the screen allows, and brings it to the front, with the keyboard.
    void showPage(const QString& page);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void fitPage();
};

} // namespace navrel
