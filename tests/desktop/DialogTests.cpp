// The dialogs with somebody in front of them: each test answers from a timer, while the dialog
// runs.

#include "desktop/QtDesktop.h"
#include "desktop/windows/AboutWindow.h"
#include "desktop/windows/OpenPanel.h"
#include "support/core/Error.h"
#include "tests/LogRecorder.h"
#include "tests/WaitUntil.h"

#include <QApplication>
#include <QDateTime>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileIconProvider>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTimer>
#include <QToolButton>
#include <QTreeView>
#include <gtest/gtest.h>

#include <functional>

namespace navrel {
namespace {

/// Waits for a modal dialog of this kind, then does something to it.
template <typename Dialog>
void onceShown(const std::function<void(Dialog&)>& act) {
    QTimer::singleShot(0, qApp, [act] {
        if (auto* dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget())) {
            act(*dialog);
        } else {
            onceShown<Dialog>(act);
        }
    });
}

void press(QWidget& widget, Qt::Key key) {
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
    QCoreApplication::sendEvent(&widget, &press);
}

QPushButton* buttonNamed(const QWidget& dialog, const QString& title) {
    for (auto* button : dialog.findChildren<QPushButton*>()) {
        if (button->text().remove(u'&') == title) {
            return button;
        }
    }
    return nullptr;
}

const QString kDownload = QStringLiteral("Download");
const QString kOK = QStringLiteral("OK");

class DialogTest : public ::testing::Test {
protected:
    int runAlert(const std::function<void(QMessageBox&)>& act) {
        onceShown<QMessageBox>(act);
        return desktop_.runAlert(QStringLiteral("Navrel update"),
                                 QStringLiteral("New version (<b>2</b>)"), {kDownload, kOK});
    }

    static AboutWindow* aboutWindow() {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (auto* window = dynamic_cast<AboutWindow*>(widget)) {
                return window;
            }
        }
        return nullptr;
    }

    QtDesktop desktop_{true};
};

TEST_F(DialogTest, anAlertIsAWarningWithItsTextsAsWritten) {
    runAlert([](QMessageBox& alert) {
        EXPECT_EQ(alert.icon(), QMessageBox::Warning);
        EXPECT_EQ(alert.text(), QStringLiteral("Navrel update"));
        EXPECT_EQ(alert.informativeText(), QStringLiteral("New version (<b>2</b>)"));
        for (const auto* label : alert.findChildren<QLabel*>()) {
            EXPECT_EQ(label->textFormat(), Qt::PlainText) << qPrintable(label->text());
            EXPECT_FALSE(label->openExternalLinks());
        }
        EXPECT_EQ(alert.defaultButton()->text(), kDownload);
        alert.close();
    });
}

TEST_F(DialogTest, eachButtonOfAnAlertHasItsNumber) {
    for (int position = 0; position < 2; ++position) {
        EXPECT_EQ(runAlert([position](QMessageBox& alert) {
                      buttonNamed(alert, position == 0 ? kDownload : kOK)->click();
                  }),
                  kAlertFirstButtonReturn + position);
    }
}

TEST_F(DialogTest, returnPressesTheFirstButtonAndEscapeTheLast) {
    EXPECT_EQ(runAlert([](QMessageBox& alert) { press(alert, Qt::Key_Return); }),
              kAlertFirstButtonReturn);
    EXPECT_EQ(runAlert([](QMessageBox& alert) { press(alert, Qt::Key_Escape); }),
              kAlertFirstButtonReturn + 1);
}

TEST_F(DialogTest, anErrorIsShownWithItsReasonAndLogged) {
    const LogRecorder log;
    const Error error(QStringLiteral("YOUR_ERROR_DOMAIN"), 9999, QStringLiteral("Failed"));
    onceShown<QMessageBox>([](QMessageBox& alert) {
        EXPECT_EQ(alert.icon(), QMessageBox::Critical);
        EXPECT_EQ(alert.text(), QStringLiteral("Failed"));
        alert.close();
    });
    EXPECT_FALSE(desktop_.presentError(error));
    EXPECT_EQ(log.messages(), QStringList{error.description()});
}

TEST_F(DialogTest, theAboutWindowShowsThePageAndEscapeClosesIt) {
    desktop_.showAboutWindow(QStringLiteral("<h1>Navrel</h1>"));
    AboutWindow* window = aboutWindow();
    ASSERT_NE(window, nullptr);
    EXPECT_TRUE(window->isVisible());
    EXPECT_TRUE(waitUntil([&] { return window->isActiveWindow(); }));
    EXPECT_EQ(window->toPlainText(), QStringLiteral("Navrel"));

    press(*window, Qt::Key_Escape);
    EXPECT_FALSE(window->isVisible());
    desktop_.showAboutWindow(QStringLiteral("<p>Again</p>"));
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(window->toPlainText(), QStringLiteral("Again"));
}

TEST_F(DialogTest, thePageAboutTheProgramIsShownWithoutScrolling) {
    const QString line = QStringLiteral("<p>A line of the page.</p>");
    desktop_.showAboutWindow(line.repeated(10));
    AboutWindow* window = aboutWindow();
    ASSERT_NE(window, nullptr);
    QCoreApplication::processEvents();
    EXPECT_EQ(window->verticalScrollBar()->maximum(), 0);
    window->close();
    desktop_.showAboutWindow(line.repeated(1000));
    QCoreApplication::processEvents();
    EXPECT_GT(window->verticalScrollBar()->maximum(), 0);
    EXPECT_LT(window->height(), window->screen()->size().height());
}

/// An open panel in a folder with a bundle, and one more within a folder.
class OpenPanelTest : public DialogTest {
protected:
    OpenPanelTest() {
        for (const char* folder : {"App.xcodeproj/project.xcworkspace", "inside/Other.xcodeproj",
                                   "empty", "Not.xcodeproj.backup"}) {
            EXPECT_TRUE(QDir(folder_.path()).mkpath(QString::fromLatin1(folder)));
        }
    }

    std::optional<QString> run(const std::function<void(OpenPanel&)>& act) {
        onceShown<QFileDialog>([this, act](QFileDialog& dialog) {
            dialog.setDirectory(folder_.path());
            act(dynamic_cast<OpenPanel&>(dialog));
        });
        return desktop_.runOpenPanel(QStringLiteral("Select"), {QStringLiteral("xcodeproj")});
    }
    static void type(OpenPanel& panel, const QString& text) {
        panel.findChild<QLineEdit*>()->setText(text);
        panel.accept();
    }
    QString path(const char* name) const { return folder_.filePath(QString::fromLatin1(name)); }

    QTemporaryDir folder_;
};

TEST_F(OpenPanelTest, aBundleIsPickedAsIfItWereAFile) {
    EXPECT_EQ(run([](OpenPanel& panel) {
                  EXPECT_EQ(panel.windowTitle(), QStringLiteral("Select"));
                  type(panel, QStringLiteral("App.xcodeproj"));
              }),
              path("App.xcodeproj"));
}

TEST_F(OpenPanelTest, aBundleIsPickedHoweverItsPathIsTyped) {
    for (const QString& typed :
         {QStringLiteral("App.xcodeproj/"), path("App.xcodeproj"), path("App.xcodeproj/"),
          QStringLiteral("inside/../App.xcodeproj"), QStringLiteral("./App.xcodeproj")}) {
        EXPECT_EQ(run([&typed](OpenPanel& panel) {
                      type(panel, typed);
                      if (panel.isVisible()) {
                          panel.reject();
                      }
                  }),
                  path("App.xcodeproj"))
            << qPrintable(typed);
    }
}

TEST_F(OpenPanelTest, aBundleThatIsEnteredIsPicked) {
    EXPECT_EQ(run([this](OpenPanel& panel) {
                  panel.setDirectory(path("App.xcodeproj"));
                  Q_EMIT panel.directoryEntered(path("App.xcodeproj"));
              }),
              path("App.xcodeproj"));
}

TEST_F(OpenPanelTest, anotherFolderIsEnteredNotPicked) {
    EXPECT_EQ(run([this](OpenPanel& panel) {
                  type(panel, QStringLiteral("inside"));
                  EXPECT_TRUE(panel.isVisible());
                  EXPECT_EQ(panel.directory().path(), path("inside"));
                  type(panel, QStringLiteral("Other.xcodeproj"));
              }),
              path("inside/Other.xcodeproj"));
}

TEST_F(OpenPanelTest, whatOnlyLooksLikeABundleIsNotPicked) {
    QFile file(path("File.xcodeproj"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_EQ(run([](OpenPanel& panel) {
                  type(panel, QStringLiteral("File.xcodeproj"));
                  EXPECT_TRUE(panel.isVisible());
                  type(panel, QStringLiteral("Not.xcodeproj.backup"));
                  EXPECT_TRUE(panel.isVisible());
                  panel.reject();
              }),
              std::nullopt);
}

TEST_F(OpenPanelTest, itStartsWhereItIsToldOrElseAtHome) {
    QString start = path("inside");
    desktop_.setOpenPanelFolder([&] { return start; });
    const auto startsIn = [this] {
        QString folder;
        onceShown<QFileDialog>([&](QFileDialog& dialog) {
            folder = dialog.directory().path();
            dialog.reject();
        });
        desktop_.runOpenPanel(QStringLiteral("Select"), {QStringLiteral("xcodeproj")});
        return folder;
    };
    EXPECT_EQ(startsIn(), path("inside"));
    for (const QString& nowhere : {QString(), path("gone")}) {
        start = nowhere;
        EXPECT_EQ(startsIn(), QDir::homePath());
    }
}

TEST_F(OpenPanelTest, aBundleIsCalledAProjectAndItsDateIsShownWhole) {
    run([this](OpenPanel& panel) {
        const auto* list = panel.findChild<QTreeView*>(QStringLiteral("treeView"));
        ASSERT_NE(list, nullptr);
        const auto columnOf = [&](const QString& title) {
            for (int column = 0; column < list->model()->columnCount(); ++column) {
                if (list->model()->headerData(column, Qt::Horizontal).toString() == title) {
                    return column;
                }
            }
            return -1;
        };
        EXPECT_EQ(panel.iconProvider()->type(QFileInfo(path("App.xcodeproj"))),
                  QStringLiteral("Project"));
        EXPECT_NE(panel.iconProvider()->type(QFileInfo(path("empty"))), QStringLiteral("Project"));
        const int dates = columnOf(QStringLiteral("Date Modified"));
        ASSERT_GE(dates, 0);
        EXPECT_TRUE(waitUntil([&] {
            const QModelIndex first = list->model()->index(0, dates, list->rootIndex());
            const QString date = first.data().toString();
            return !date.isEmpty() &&
                   list->columnWidth(dates) > list->fontMetrics().horizontalAdvance(date);
        }));
        panel.reject();
    });
}

TEST_F(OpenPanelTest, nothingIsMadeOrChangedThereAndNothingIsKeptOfIt) {
    const QString preferences =
        QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
        QStringLiteral("/QtProject.conf");
    const auto dateOf = [&] { return QFileInfo(preferences).lastModified(); };
    const QDateTime before = dateOf();
    run([](OpenPanel& panel) {
        const auto* newFolder = panel.findChild<QToolButton*>(QStringLiteral("newFolderButton"));
        EXPECT_TRUE(newFolder == nullptr || !newFolder->isVisible());
        EXPECT_TRUE(panel.testOption(QFileDialog::ReadOnly));
        panel.reject();
    });
    EXPECT_EQ(dateOf(), before);
    // Other preferences still go where they belong.
    const QSettings own(QStringLiteral("nl.kelvane"), QStringLiteral("Navrel-test"));
    EXPECT_EQ(QFileInfo(own.fileName()).path(),
              QFileInfo(preferences).path() + QStringLiteral("/nl.kelvane"));
}

TEST_F(OpenPanelTest, escapeCancels) {
    EXPECT_EQ(run([](OpenPanel& panel) { press(panel, Qt::Key_Escape); }), std::nullopt);
}

} // namespace
} // namespace navrel
