#include "desktop/windows/MenuWindow.h"

#include "desktop/MenuText.h"
#include "desktop/windows/ScreenRoom.h"
#include "support/core/MainThread.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QFrame>
#include <QLabel>
#include <QTimer>
#include <QVBoxLayout>

#include <chrono>
#include <utility>

namespace navrel {

namespace {

constexpr int kIDRole = Qt::UserRole;
constexpr int kMenuWidth = 360;
constexpr int kSeparatorHeight = 9;
/// Of a row, within the list's own; kStyle sets them.
constexpr int kListPadding = 4;
constexpr int kRowPaddingAbove = 4;
constexpr int kRowPaddingBeside = 8;
constexpr std::chrono::seconds kStateInterval{1};
/// Sizes that X11 has not confirmed yet: more are not under way at once.
constexpr qsizetype kFittedSizesRemembered = 8;

/// One click, or Return, chooses: as in a menu, whatever the desktop does in lists of files.
const QString kStyle = QStringLiteral("QListView { activate-on-singleclick: 1; padding: 4px; }"
                                      "QListView::item { padding: 4px 8px; }");

/// What is well is said in a sentence; what is not, with what to do.
QString stateText(const StateSentence& sentence) {
    using Level = StateSentence::Level;
    const QString text = QStringLiteral("%1: %2").arg(titleOf(sentence.part), sentence.text);
    const bool isAmiss = sentence.level == Level::warning || sentence.level == Level::error;
    return isAmiss && !sentence.hint.isEmpty() ? text + u' ' + sentence.hint : text;
}

/// The room that a sentence has beside a list's scroll bar.
int sentenceWidth(const QListWidget& list) {
    return kMenuWidth - 2 * (kListPadding + kRowPaddingBeside) -
           list.style()->pixelMetric(QStyle::PM_ScrollBarExtent);
}

void showSentence(const StateSentence& sentence, QListWidgetItem& item, QLabel& label) {
    label.setText(stateText(sentence));
    label.setToolTip(toolTipForTitle(sentence.hint));
    item.setData(Qt::AccessibleTextRole, label.text());
    const int textHeight = label.heightForWidth(sentenceWidth(*item.listWidget()));
    item.setSizeHint({0, textHeight + 2 * kRowPaddingAbove});
}

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
    stateTimer_.setInterval(kStateInterval);
    connect(&stateTimer_, &QTimer::timeout, this, &MenuWindow::showState);
    QCoreApplication::instance()->installEventFilter(this);
    menu_.addView(*this);
    menuDidChange();
}

MenuWindow::~MenuWindow() {
    menu_.removeView(*this);
}

void MenuWindow::menuDidChange() {
    NAVREL_ASSERT_MAIN_THREAD();
    const int row = list_.currentRow();
    list_.clear();
    addState();
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
    const int mostHeight = mostHeightOnScreen(*this) - around;
    int height = 0;
    for (int row = 0; row < list_.count(); ++row) {
        const int rowHeight = list_.sizeHintForRow(row);
        if (height + rowHeight > mostHeight) {
            break;
        }
        height += rowHeight;
    }
    // Few rows in small letters take less room than a window must have.
    const QSize fitting = QSize(kMenuWidth, height + around).expandedTo(minimumSizeHint());
    fittedSizes_.append(fitting);
    if (fittedSizes_.size() > kFittedSizesRemembered) {
        fittedSizes_.removeFirst();
    }
    resize(fitting);
}

void MenuWindow::addState() {
    for (const StateSentence& sentence : sentences_) {
        auto* item = new QListWidgetItem(&list_);
        item->setFlags(Qt::NoItemFlags);
        auto* label = new QLabel;
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
        list_.setItemWidget(item, label);
        showSentence(sentence, *item, *label);
    }
    if (!sentences_.empty()) {
        addSeparator();
    }
}

/// Rows change in place, so that the list does not move under the pointer.
void MenuWindow::showState() {
    std::vector<StateSentence> sentences = menu_.state();
    if (sentences == sentences_) {
        return;
    }
    const bool isOther = sentences.size() != sentences_.size();
    sentences_ = std::move(sentences);
    if (isOther) {
        menuDidChange();
        return;
    }
    for (int row = 0; const StateSentence& sentence : sentences_) {
        QListWidgetItem& item = *list_.item(row++);
        showSentence(sentence, item, static_cast<QLabel&>(*list_.itemWidget(&item)));
    }
    fitRows();
}

void MenuWindow::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    showState();
    stateTimer_.start();
    fitRows();
}

void MenuWindow::hideEvent(QHideEvent* event) {
    stateTimer_.stop();
    QWidget::hideEvent(event);
}

void MenuWindow::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    hasUsersSize_ =
        hasUsersSize_ || (!fittedSizes_.isEmpty() && !fittedSizes_.contains(event->size()));
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
    NAVREL_ASSERT_MAIN_THREAD();
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
