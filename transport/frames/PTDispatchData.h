#pragma once

#include "support/dispatch/DispatchData.h"

#include <QByteArrayView>

namespace navrel {

/// A view of contiguous dispatch data that keeps the bytes alive as long as it lives.
class PTDispatchData {
public:
    explicit PTDispatchData(DispatchData contiguous);

    QByteArrayView bytes() const;

private:
    DispatchData dispatchData_;
};

} // namespace navrel
