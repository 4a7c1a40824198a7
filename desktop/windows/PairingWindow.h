#pragma once

#include "desktop/windows/PairingContents.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QLabel>
#include <QTableWidget>
#include <QTimer>
#include <QWidget>

#include <functional>

namespace navrel {

class QRCode;

/// The window "Phone or Tablet…": who may reach Navrel by a browser, how a device is paired, and
/// the devices that are. It shows contents that it is given, and asks for others; texts that come
/// from devices are shown as they are, never as markup. Main thread.
class PairingWindow final : public QWidget {
public:
    /// What the user does. None may be null.
    struct Events {
        std::function<void(AccessSettings::Mode mode)> didChooseMode;
        std::function<void(const QString& address)> didChooseAddress;
        std::function<void()> didAskForNewCode;
        std::function<void(int device)> didForget;
        std::function<void(int device, bool readOnly)> didSetReadOnly;
        /// Once a second while the window shows: codes expire, and devices come and go.
        std::function<void()> isDue;
    };

    /// Hidden at first.
    explicit PairingWindow(Events events);

    void show(const PairingContents& contents);
    /// Brings it to the front, with the keyboard.
    void bringToFront();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    QWidget* modeChoice();
    QWidget* pairingSide();
    QWidget* deviceSide();
    void showAddresses(const PairingContents& contents);
    void showDevices(const QList<PairingContents::Device>& devices);
    QWidget* readOnlySwitch(const PairingContents::Device& device);
    QWidget* forgetButton(const PairingContents::Device& device);

    const Events events_;
    PairingContents contents_;
    QButtonGroup modes_;
    QLabel* state_ = nullptr; // owned by the window, as all that follow
    QLabel* advice_ = nullptr;
    QWidget* pairing_ = nullptr;
    QRCode* code_ = nullptr;
    QComboBox* addresses_ = nullptr;
    QLabel* digits_ = nullptr;
    QLabel* fingerprintTitle_ = nullptr;
    QLabel* fingerprint_ = nullptr;
    QLabel* noDevices_ = nullptr;
    QTableWidget* devices_ = nullptr;
    QTimer due_;
};

} // namespace navrel
