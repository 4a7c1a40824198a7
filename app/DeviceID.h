#pragma once

#include "support/core/Described.h"

#include <QtGlobal>

namespace navrel {

/// The number of a device on USB, as one announcement of the device gave it. Numbers come back:
/// whether a device is still the one that was meant is a question of the object's identity, whether
/// two announcements speak of the same device one of its value.
class DeviceID final : public Described {
public:
    explicit DeviceID(qlonglong value) : value_(value) {}

    qlonglong value() const { return value_; }
    QString description() const override { return QString::number(value_); }

private:
    const qlonglong value_;
};

} // namespace navrel
