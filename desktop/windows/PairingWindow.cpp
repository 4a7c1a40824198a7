#include "desktop/windows/PairingWindow.h"

#include "desktop/MenuText.h"
#include "desktop/windows/QRCode.h"
#include "support/core/MainThread.h"

#include <QCheckBox>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include <chrono>
#include <utility>

namespace navrel {

namespace {

using Mode = AccessSettings::Mode;

constexpr int kMargin = 16;
constexpr int kSpacing = 10;
constexpr int kColumnWidth = 300;
constexpr qreal kDigitsScale = 1.8;

enum Column { kDeviceColumn, kLastUseColumn, kReadOnlyColumn, kForgetColumn, kColumnCount };

/// Text for users to read and copy, never markup.
QLabel* plainLabel(const QString& text = {}) {
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

QLabel* heading(const QString& text) {
    auto* label = plainLabel(text);
    QFont font = label->font();
    font.setBold(true);
    label->setFont(font);
    return label;
}

void makeSelectable(QLabel& label, const QFont& font) {
    label.setFont(font);
    label.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
}

} // namespace

PairingWindow::PairingWindow(Events events) : events_(std::move(events)) {
    setWindowTitle(QStringLiteral("Phone or Tablet"));
    state_ = plainLabel();
    advice_ = plainLabel();
    auto* sides = new QHBoxLayout;
    sides->setSpacing(2 * kMargin);
    sides->addWidget(pairingSide());
    sides->addWidget(deviceSide(), 1);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    layout->setSpacing(kSpacing);
    layout->addWidget(modeChoice());
    layout->addWidget(state_);
    layout->addWidget(advice_);
    layout->addLayout(sides, 1);
    due_.setInterval(std::chrono::seconds(1));
    connect(&due_, &QTimer::timeout, this, [this] { events_.isDue(); });
}

QWidget* PairingWindow::modeChoice() {
    auto* choice = new QWidget;
    auto* layout = new QVBoxLayout(choice);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(heading(QStringLiteral("Who can reach Navrel by a browser?")));
    const std::pair<Mode, QString> choices[] = {
        {Mode::off, QStringLiteral("&Nobody")},
        {Mode::machine, QStringLiteral("This &machine, and devices connected by USB or SSH")},
        {Mode::network, QStringLiteral("Devices in this ne&twork")}};
    for (const auto& [mode, title] : choices) {
        auto* button = new QRadioButton(title);
        modes_.addButton(button, static_cast<int>(mode));
        layout->addWidget(button);
    }
    connect(&modes_, &QButtonGroup::idClicked, this,
            [this](int mode) { events_.didChooseMode(static_cast<Mode>(mode)); });
    return choice;
}

QWidget* PairingWindow::pairingSide() {
    pairing_ = new QWidget;
    code_ = new QRCode;
    addresses_ = new QComboBox;
    addresses_->setAccessibleName(QStringLiteral("Address"));
    digits_ = plainLabel();
    digits_->setAccessibleName(QStringLiteral("Code to type"));
    QFont large = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    large.setPointSizeF(font().pointSizeF() * kDigitsScale);
    makeSelectable(*digits_, large);
    fingerprintTitle_ = plainLabel(QStringLiteral("Fingerprint of the certificate (SHA-256):"));
    fingerprint_ = plainLabel();
    makeSelectable(*fingerprint_, QFontDatabase::systemFont(QFontDatabase::FixedFont));
    auto* another = new QPushButton(QStringLiteral("New &Code"));
    connect(another, &QPushButton::clicked, this, [this] { events_.didAskForNewCode(); });
    connect(addresses_, &QComboBox::textActivated, this,
            [this](const QString& address) { events_.didChooseAddress(address); });

    auto* layout = new QVBoxLayout(pairing_);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(kSpacing);
    layout->addWidget(heading(QStringLiteral("Pair a device")));
    layout->addWidget(plainLabel(QStringLiteral("Scan this with the device's camera:")));
    layout->addWidget(code_, 0, Qt::AlignHCenter);
    layout->addWidget(plainLabel(QStringLiteral("Or open this address and type the code:")));
    layout->addWidget(addresses_);
    auto* codeLine = new QHBoxLayout;
    codeLine->addWidget(digits_, 1);
    codeLine->addWidget(another);
    layout->addLayout(codeLine);
    layout->addWidget(fingerprintTitle_);
    layout->addWidget(fingerprint_);
    layout->addStretch(1);
    pairing_->setFixedWidth(kColumnWidth);
    return pairing_;
}

QWidget* PairingWindow::deviceSide() {
    devices_ = new QTableWidget(0, kColumnCount);
    devices_->setAccessibleName(QStringLiteral("Paired devices"));
    devices_->setHorizontalHeaderLabels({QStringLiteral("Device"), QStringLiteral("Last use"),
                                         QStringLiteral("Read only"), QString()});
    devices_->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    devices_->horizontalHeader()->setSectionResizeMode(kDeviceColumn, QHeaderView::Stretch);
    devices_->horizontalHeader()->setHighlightSections(false);
    devices_->verticalHeader()->hide();
    devices_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    devices_->setSelectionMode(QAbstractItemView::NoSelection);
    devices_->setFocusPolicy(Qt::NoFocus); // its buttons are reached by the keyboard
    devices_->setShowGrid(false);
    devices_->setMinimumWidth(kColumnWidth + kColumnWidth / 2);
    noDevices_ = plainLabel(QStringLiteral("No device is paired."));
    auto* side = new QWidget;
    auto* layout = new QVBoxLayout(side);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(kSpacing);
    layout->addWidget(heading(QStringLiteral("Paired devices")));
    layout->addWidget(noDevices_);
    layout->addWidget(devices_, 1);
    layout->addStretch();
    return side;
}

void PairingWindow::show(const PairingContents& contents) {
    NAVREL_ASSERT_MAIN_THREAD();
    if (contents == contents_ && modes_.checkedId() >= 0) {
        return;
    }
    const bool haveDevicesChanged = contents.devices != contents_.devices || modes_.checkedId() < 0;
    contents_ = contents;
    modes_.button(static_cast<int>(contents.mode))->setChecked(true);
    state_->setText(contents.state);
    advice_->setText(contents.advice);
    advice_->setHidden(contents.advice.isEmpty());
    pairing_->setVisible(!contents.addresses.isEmpty());
    code_->setText(contents.url);
    showAddresses(contents);
    digits_->setText(contents.code.isEmpty() ? QStringLiteral("–") : contents.code);
    fingerprintTitle_->setVisible(!contents.fingerprint.isEmpty());
    fingerprint_->setVisible(!contents.fingerprint.isEmpty());
    fingerprint_->setText(contents.fingerprint);
    if (haveDevicesChanged) {
        showDevices(contents.devices);
    }
}

void PairingWindow::showAddresses(const PairingContents& contents) {
    QStringList shown;
    for (int index = 0; index < addresses_->count(); ++index) {
        shown.append(addresses_->itemText(index));
    }
    if (shown != contents.addresses) {
        addresses_->clear();
        addresses_->addItems(contents.addresses);
    }
    addresses_->setCurrentText(contents.address);
}

void PairingWindow::showDevices(const QList<PairingContents::Device>& devices) {
    noDevices_->setVisible(devices.isEmpty());
    devices_->setVisible(!devices.isEmpty());
    devices_->setRowCount(static_cast<int>(devices.size()));
    for (int row = 0; row < devices.size(); ++row) {
        const PairingContents::Device& device = devices.at(row);
        auto* label = new QTableWidgetItem(titleOnOneLine(device.label));
        label->setToolTip(toolTipForTitle(device.label));
        devices_->setItem(row, kDeviceColumn, label);
        devices_->setItem(row, kLastUseColumn, new QTableWidgetItem(device.lastUse));
        devices_->setCellWidget(row, kReadOnlyColumn, readOnlySwitch(device));
        devices_->setCellWidget(row, kForgetColumn, forgetButton(device));
    }
    devices_->resizeRowsToContents();
}

QWidget* PairingWindow::readOnlySwitch(const PairingContents::Device& device) {
    auto* box = new QCheckBox;
    box->setAccessibleName(QStringLiteral("Read only: %1").arg(titleOnOneLine(device.label)));
    box->setChecked(device.readOnly);
    connect(box, &QCheckBox::clicked, this, [this, number = device.number](bool checked) {
        events_.didSetReadOnly(number, checked);
    });
    auto* cell = new QWidget;
    auto* layout = new QHBoxLayout(cell);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(box, 0, Qt::AlignCenter);
    return cell;
}

// Deleted later, since forgetting shows the devices again while the button is still at work.
QWidget* PairingWindow::forgetButton(const PairingContents::Device& device) {
    auto* button = new QPushButton(QStringLiteral("Forget"));
    button->setAccessibleName(QStringLiteral("Forget %1").arg(titleOnOneLine(device.label)));
    connect(
        button, &QPushButton::clicked, this,
        [this, number = device.number] { events_.didForget(number); }, Qt::QueuedConnection);
    return button;
}

void PairingWindow::bringToFront() {
    NAVREL_ASSERT_MAIN_THREAD();
    if (isMinimized()) {
        showNormal();
    } else {
        QWidget::show();
    }
    raise();
    activateWindow();
}

void PairingWindow::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Cancel) || event->matches(QKeySequence::Close)) {
        close();
        return;
    }
    QWidget::keyPressEvent(event);
}

void PairingWindow::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    due_.start();
}

void PairingWindow::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    due_.stop();
}

} // namespace navrel
