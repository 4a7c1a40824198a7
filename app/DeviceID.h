#pragma once

#include "support/core/Described.h"

#include <QtGlobal>

namespace navrel {

/// The number of a device on USB, as the daemon announced it when the device was attached. The
/// daemon may reuse numbers, so there are two comparisons: equal values mean the same number, and
/// the same object means the same attachment.
class DeviceID final : public Described {
public:
    explicit DeviceID(qlonglong value) : value_(value) {}

    qlonglong value() const { return value_; }
    QString description() const override { return QString::number(value_); }

private:
    const qlonglong value_;
};

} // namespace navrel
