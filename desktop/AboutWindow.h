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

    /// Loads a page (HTML of Qt's rich-text subset) and brings the window to the front, without
    /// taking the keyboard from the window that has it.
    void showPage(const QString& page);

protected:
    void keyPressEvent(QKeyEvent* event) override;
};

} // namespace navrel
