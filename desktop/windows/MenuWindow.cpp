#include "desktop/windows/MenuWindow.h"

#include "desktop/MenuText.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QFrame>
#include <QScreen>
#include <QTimer>
#include <QVBoxLayout>

namespace navrel {

namespace {

constexpr int kIDRole = Qt::UserRole;
constexpr int kWidth = 360;
/// Of the screen's height, so that the window's frame and panels have room.
constexpr double kMostOfScreen = 0.85;
constexpr int kSeparatorHeight = 9;

/// One click, or Return, chooses: as in a menu, whatever the desktop does in lists of files.
const QString kStyle = QStringLiteral("QListView { activate-on-singleclick: 1; padding: 4px; }"
                                      "QListView::item { padding: 4px 8px; }");

} // namespace

MenuWindow::MenuWindow(StatusMenu& menu, const QIcon& icon) : menu_(menu) {
    setWindowTitle(QStringLiteral("Navrel"));
    setWindowIcon(icon);
    list_.setAccessibleName(QStringLiteral("Navrel"));
    list_.setFrameShape(QFrame::NoFrame);
    list_.setTextElideMode(Qt::ElideMiddle);
    list_.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list_.setStyleSheet(kStyle);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(&list_);
    connect(&list_, &QListWidget::itemActivated, this, [this](const QListWidgetItem* item) {
        const int id = item->data(kIDRole).toInt();
        QTimer::singleShot(0, this, [this, id] { menu_.choose(id); });
    });
    QCoreApplication::instance()->installEventFilter(this);
    menu_.addView(*this);
    menuDidChange();
}

MenuWindow::~MenuWindow() {
    menu_.removeView(*this);
}

void MenuWindow::menuDidChange() {
    const int row = list_.currentRow();
    list_.clear();
    for (const MenuEntry* entry : menu_.visibleEntries()) {
        if (entry->kind() == MenuEntry::Kind::Separator) {
            addSeparator();
        } else {
            show(*entry, *new QListWidgetItem(&list_));
        }
    }
    list_.setCurrentRow(row);
    fitRows();
}

void MenuWindow::fitRows() {
    if (hasUsersSize_ || !isVisible()) {
        return;
    }
    layout()->activate();
    const int around = list_.height() - list_.viewport()->height();
    const int mostHeight =
        static_cast<int>(screen()->availableGeometry().height() * kMostOfScreen) - around;
    int height = 0;
    for (int row = 0; row < list_.count(); ++row) {
        const int rowHeight = list_.sizeHintForRow(row);
        if (height + rowHeight > mostHeight) {
            break;
        }
        height += rowHeight;
    }
    // Few rows in small letters take less room than a window must have.
    fittedSize_ = QSize(kWidth, height + around).expandedTo(minimumSizeHint());
    resize(fittedSize_);
}

void MenuWindow::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    fitRows();
}

void MenuWindow::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    hasUsersSize_ = hasUsersSize_ || (fittedSize_.isValid() && event->size() != fittedSize_);
}

void MenuWindow::addSeparator() {
    auto* item = new QListWidgetItem(&list_);
    item->setFlags(Qt::NoItemFlags);
    auto* line = new QFrame;
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Plain);
    line->setForegroundRole(QPalette::PlaceholderText);
    item->setSizeHint({0, kSeparatorHeight});
    list_.setItemWidget(item, line);
}

void MenuWindow::entryDidChange(const MenuEntry& entry) {
    for (int row = 0; row < list_.count(); ++row) {
        if (list_.item(row)->data(kIDRole).toInt() == entry.id()) {
            show(entry, *list_.item(row));
        }
    }
}

void MenuWindow::show(const MenuEntry& entry, QListWidgetItem& item) const {
    item.setData(kIDRole, entry.id());
    item.setText(titleOnOneLine(entry.title()));
    item.setToolTip(toolTipForTitle(entry.title()));
    item.setFlags(entry.canBeChosen() ? Qt::ItemIsEnabled | Qt::ItemIsSelectable : Qt::NoItemFlags);
    if (entry.kind() == MenuEntry::Kind::Switch) {
        item.setCheckState(entry.isChecked() ? Qt::Checked : Qt::Unchecked);
    }
}

void MenuWindow::closeEvent(QCloseEvent* event) {
    if (!isProgramEnding_) {
        event->ignore();
        showMinimized();
    }
}

bool MenuWindow::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Quit && watched == QCoreApplication::instance()) {
        isProgramEnding_ = true;
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace navrel
