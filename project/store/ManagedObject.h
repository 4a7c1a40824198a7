#pragma once

#include "project/store/RecordTable.h"

#include <QByteArray>

#include <array>
#include <cstddef>
#include <limits>
#include <optional>
#include <utility>

namespace navrel {

/// An attribute of an entity: its name, which is also that of its column, and the record's field.
template <typename Record, typename Value>
struct Attribute {
    using Field = std::optional<Value> Record::*;

    const char* name;
    Field field;
};

template <typename Record, typename Value>
Attribute(const char*, std::optional<Value> Record::*) -> Attribute<Record, Value>;

/// The base of the records of all entities. A record belongs to its table, which a context owns:
/// records are inserted and deleted through the context, and valid until they are deleted.
///
/// `Record` numbers its key attributes, by which records are fetched, from 0 to `keyCount` - 1, and
/// returns their values from `key(number)`.
template <typename Record, std::size_t keyCount>
class ManagedObject {
public:
    static constexpr std::size_t kKeyCount = keyCount;

    /// The record's row in the store file; grows with insertion.
    qint64 rowID() const { return rowID_; }

protected:
    /// Sets an attribute. Setting it to the value that it has is not a change.
    template <typename Value>
    void setAttribute(std::optional<Value>& attribute, std::optional<Value> value) {
        if (attribute != value) {
            attribute = std::move(value);
            table_->noteChange(static_cast<Record&>(*this));
        }
    }

    /// As `setAttribute`, for a key attribute: updates the index too.
    void setKey(std::size_t key, std::optional<QByteArray>& attribute,
                std::optional<QByteArray> value) {
        if (attribute != value) {
            table_->setKey(key, static_cast<Record&>(*this), attribute, std::move(value));
        }
    }

private:
    friend class RecordTable<Record>;
    friend class RecordIndex<Record>;

    static constexpr std::size_t kUnchanged = std::numeric_limits<std::size_t>::max();

    qsizetype& position(std::size_t key) { return keyPositions_[key]; }

    RecordTable<Record>* table_ = nullptr;
    qint64 rowID_ = 0;
    std::size_t changedPosition_ = kUnchanged;
    RecordLinks<Record> tableLinks_;
    // Where the record stands in the index of each key.
    std::array<qsizetype, keyCount> keyPositions_{};
};

} // namespace navrel
