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

/// The window "Phone or Tablet…": which browsers may reach Navrel, how to pair a device, and the
/// paired devices. It shows the contents that it is given, and reports what the user does. Text
/// from devices is shown literally, never as markup. Main thread.
class PairingWindow final : public QWidget {
public:
    /// Called when the user does something. None may be null.
    struct Events {
        std::function<void(AccessSettings::Mode mode)> didChooseMode;
        std::function<void(const QString& address)> didChooseAddress;
        std::function<void()> didAskForNewCode;
        std::function<void(int device)> didForget;
        std::function<void(int device, bool readOnly)> didSetReadOnly;
        /// Called once a second while the window is shown, since codes expire and devices come and
        /// go: `show` should be called with new contents.
        std::function<void()> isDue;
    };

    /// Hidden at first.
    explicit PairingWindow(Events events);

    void show(const PairingContents& contents);
    /// Brings the window to the front, with the keyboard focus.
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
