// Text from elsewhere (versions, paths, titles, device and editor names) in every window and menu:
// shown letter by letter, never as markup.

#include "app/AboutPage.h"
#include "desktop/QtDesktop.h"
#include "desktop/tray/MenuWidget.h"
#include "desktop/windows/AboutWindow.h"
#include "desktop/windows/MenuWindow.h"
#include "desktop/windows/PairingWindow.h"
#include "support/core/Error.h"

#include <QApplication>
#include <QHelpEvent>
#include <QLabel>
#include <QListWidget>
#include <QMessageBox>
#include <QTableWidget>
#include <QTextDocument>
#include <QTimer>
#include <QToolTip>
#include <gtest/gtest.h>

#include <functional>

namespace navrel {
namespace {

const QString kForeign = QStringLiteral("1.2.3 <h1>BIG</h1> <a href=\"http://x/\">y</a> &amp;");

/// What the user reads where a widget chooses by itself between text and markup.
QString asShown(const QString& text) {
    if (!Qt::mightBeRichText(text)) {
        return text;
    }
    QTextDocument document;
    document.setHtml(text);
    return document.toPlainText();
}

QString asShown(const QLabel& label) {
    return label.textFormat() == Qt::PlainText ? label.text() : asShown(label.text());
}

/// Everything that a window shows, tool tips included.
QString allTexts(const QWidget& window) {
    QStringList texts;
    for (const auto* widget : window.findChildren<QWidget*>()) {
        texts.append(asShown(widget->toolTip()));
    }
    for (const auto* label : window.findChildren<QLabel*>()) {
        texts.append(asShown(*label));
    }
    for (const auto* list : window.findChildren<QListWidget*>()) {
        for (int row = 0; row < list->count(); ++row) {
            texts.append({list->item(row)->text(), asShown(list->item(row)->toolTip())});
        }
    }
    for (const auto* table : window.findChildren<QTableWidget*>()) {
        for (int cell = 0; cell < table->rowCount() * table->columnCount(); ++cell) {
            const auto* item =
                table->item(cell / table->columnCount(), cell % table->columnCount());
            if (item != nullptr) {
                texts.append({item->text(), asShown(item->toolTip())});
            }
        }
    }
    return texts.join(u'\n');
}

/// Whether the foreign text is there, nowhere without what markup would take away.
bool isShownAsWritten(const QString& texts) {
    return texts.contains(kForeign) &&
           texts.count(QStringLiteral("<h1>BIG")) == texts.count(QStringLiteral("BIG"));
}

/// What the next alert shows; it is closed at once.
QString textsOfAlert(const std::function<void()>& run) {
    QString texts;
    std::function<void()> look = [&] {
        if (auto* alert = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            texts = allTexts(*alert);
            alert->close();
        } else {
            QTimer::singleShot(0, qApp, look);
        }
    };
    QTimer::singleShot(0, qApp, look);
    run();
    return texts;
}

/// The tool tip that a menu shows while the pointer rests on an entry.
QString toolTipAt(QMenu& menu, QAction& action) {
    const QPoint position = menu.actionGeometry(&action).center();
    QToolTip::hideText();
    QHelpEvent rest(QEvent::ToolTip, position, menu.mapToGlobal(position));
    QCoreApplication::sendEvent(&menu, &rest);
    return QToolTip::text();
}

TEST(ForeignText, thisTestSeesMarkup) {
    QWidget window;
    auto* label = new QLabel(kForeign, &window);
    EXPECT_FALSE(isShownAsWritten(allTexts(window)));
    label->setTextFormat(Qt::PlainText);
    EXPECT_TRUE(isShownAsWritten(allTexts(window)));
    label->setToolTip(kForeign);
    EXPECT_FALSE(isShownAsWritten(allTexts(window)));
}

TEST(ForeignText, isNoMarkupInAlerts) {
    QtDesktop desktop(true);
    EXPECT_TRUE(isShownAsWritten(
        textsOfAlert([&] { desktop.runAlert(kForeign, kForeign, {QStringLiteral("OK")}); })));
    Error error(QStringLiteral("YOUR_ERROR_DOMAIN"), 9999, kForeign);
    EXPECT_TRUE(isShownAsWritten(textsOfAlert([&] { desktop.presentError(error); })));
}

TEST(ForeignText, isNoMarkupInTheMenuAndItsWindow) {
    StatusMenu menu;
    menu.addText(1, kForeign);
    menu.setShortcuts({kForeign, kForeign.repeated(4)}, {});
    const MenuWindow window(menu, QIcon());
    EXPECT_TRUE(isShownAsWritten(allTexts(window)));

    MenuWidget widget(menu);
    widget.popup(QPoint());
    for (QAction* action : widget.actions()) {
        EXPECT_TRUE(action->isSeparator() || action->text().contains(QStringLiteral("<h1>BIG")));
        EXPECT_TRUE(isShownAsWritten(kForeign + asShown(toolTipAt(widget, *action))));
    }
}

TEST(ForeignText, isNoMarkupInTheAboutWindow) {
    AboutWindow window([](const QUrl&) {});
    window.showPage(aboutPage(
        {kForeign,
         kForeign,
         kForeign,
         {{StateSentence::Part::project, StateSentence::Level::error, kForeign, kForeign}}}));
    EXPECT_TRUE(isShownAsWritten(window.toPlainText()));
}

TEST(ForeignText, isNoMarkupInThePairingWindow) {
    PairingContents contents;
    contents.mode = AccessSettings::Mode::network;
    contents.state = kForeign;
    contents.addresses = {kForeign};
    contents.address = kForeign;
    contents.url = kForeign;
    contents.code = kForeign;
    contents.fingerprint = kForeign;
    contents.devices = {{3, kForeign, kForeign, false}};
    PairingWindow window({[](AccessSettings::Mode) {}, [](const QString&) {}, [] {}, [](int) {},
                          [](int, bool) {}, [] {}});
    window.show(contents);
    EXPECT_TRUE(isShownAsWritten(allTexts(window)));
}

} // namespace
} // namespace navrel
