#pragma once

#include "support/dispatch/DispatchData.h"

#include <QString>

#include <cstddef>
#include <optional>

namespace navrel {

/// The payload of a received frame. Its bytes are not copied: it keeps the buffer alive into which
/// they were read. They never change.
class PTData {
public:
    /// `data` points to `length` bytes inside the dispatch data, which is contiguous.
    PTData(std::optional<DispatchData>&& dispatchData, const char* data, size_t length);
    PTData(const PTData&) = delete;
    PTData& operator=(const PTData&) = delete;

    /// The data that holds the bytes; nil if there is none.
    const std::optional<DispatchData>& dispatchData() const { return dispatchData_; }

    /// The bytes; valid as long as this object.
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
