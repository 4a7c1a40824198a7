#pragma once

#include "support/dispatch/DispatchData.h"

#include <QString>

#include <cstddef>
#include <optional>

namespace navrel {

/// The payload of a received frame. Its bytes are not copied: it keeps the buffer alive that they
/// were read into, and nobody changes them.
class PTData {
public:
    /// `data` points to `length` bytes inside the dispatch data, which is contiguous.
    PTData(std::optional<DispatchData>&& dispatchData, const char* data, size_t length);
    PTData(const PTData&) = delete;
    PTData& operator=(const PTData&) = delete;

    /// What holds the bytes; may be nothing.
    const std::optional<DispatchData>& dispatchData() const { return dispatchData_; }

    /// The first byte; valid as long as this object.
    const char* data() const { return data_; }
    size_t length() const { return length_; }

    /// Text for the log: the object's address and its length.
    QString description() const;

private:
    std::optional<DispatchData> dispatchData_;
    const char* data_;
    size_t length_;
};

} // namespace navrel
