#pragma once

#include "project/store/RecordIndex.h"
#include "support/core/Assertion.h"

#include <QByteArray>
#include <QByteArrayView>

#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace navrel {

/// A record's neighbours in the list of its table.
template <typename Record>
struct RecordLinks {
    Record* previous = nullptr;
    Record* next = nullptr;
};

/// The records of one entity in memory: a list in the order of insertion, an index for each key
/// attribute, and what the next save has to write. A record's address is stable until it is
/// removed. One thread at a time.
///
/// Row numbers are assigned at insertion and only grow, so one number separates the records that
/// are in the store file from the new ones.
template <typename Record>
class RecordTable {
public:
    RecordTable();
    RecordTable(const RecordTable&) = delete;
    RecordTable& operator=(const RecordTable&) = delete;

    /// Appends a new record, whose attributes are all nil.
    Record& insert();
    /// Appends a record from the store file. Rows must come in ascending order, before any
    /// `insert`. `fill(record)` sets its fields and returns false if their values are not
    /// acceptable; then this returns false, and the table must not be used any more.
    template <typename Fill>
    bool insertStored(qint64 rowID, Fill fill);
    /// Removes a record, which must not be used any more.
    void remove(Record& record);
    void removeAll();

    /// The records in the order of insertion. A snapshot: the caller may remove records meanwhile.
    std::vector<Record*> all() const;
    std::vector<Record*> withKey(std::size_t key, QByteArrayView value) const {
        return indexes_[key].records(value);
    }
    /// Of the records with a key value, the one that was inserted last; null if there is none.
    Record* lastWithKey(std::size_t key, QByteArrayView value) const {
        return indexes_[key].last(value);
    }
    std::size_t size() const { return size_; }
    /// The row number of the next record.
    qint64 nextRowID() const { return nextRowID_; }
    /// The record after the given one in the list, or null.
    static const Record* next(const Record& record) { return record.tableLinks_.next; }

    /// A number that changes to a new value with any insertion, removal or change.
    quint64 generation() const { return generation_; }

    // What a save has to write, in this order.

    /// Whether all rows of the file must be deleted before anything is written.
    bool isFileOutdated() const { return fileOutdated_; }
    /// Rows of the file to be deleted, in the order of removal.
    const std::vector<qint64>& removedRowIDs() const { return removedRowIDs_; }
    const std::vector<Record*>& changedRecords() const { return changed_; }
    /// The first record that is not in the file; all after it are new too. Null if there is none.
    Record* firstNewRecord() const { return firstNew_; }

    bool hasChanges() const;
    /// Must be called once the file has the contents of this table.
    void markSaved();
    /// Must be called once an empty file has replaced the one with the rows: the next save writes
    /// all records.
    void markUnsaved();

    // For the records' setters.

    /// Notes that an attribute of the record has changed.
    void noteChange(Record& record);
    /// Changes a key attribute, and updates its index.
    void setKey(std::size_t key, Record& record, std::optional<QByteArray>& attribute,
                std::optional<QByteArray> value);

private:
    // Large enough to make allocation cheap, small enough for a project of ten files.
    static constexpr std::size_t kRecordsInChunk = 64;
    static constexpr std::size_t kKeyCount = Record::kKeyCount;
    using Chunk = std::array<Record, kRecordsInChunk>;

    template <std::size_t... keys>
    static std::array<RecordIndex<Record>, kKeyCount> makeIndexes(std::index_sequence<keys...>) {
        return {RecordIndex<Record>(keys)...};
    }

    Record& allocate(qint64 rowID);
    void forgetChange(Record& record);
    void unlink(Record& record);
    bool isStored(const Record& record) const { return record.rowID() < firstNewRowID_; }

    std::vector<std::unique_ptr<Chunk>> chunks_;
    std::size_t usedInLastChunk_ = kRecordsInChunk;
    std::vector<Record*> free_;

    Record* first_ = nullptr;
    Record* last_ = nullptr;
    std::size_t size_ = 0;
    // Mutable: an index is put in order when it is read.
    mutable std::array<RecordIndex<Record>, kKeyCount> indexes_;

    qint64 nextRowID_ = 1;
    qint64 firstNewRowID_ = 1;
    std::size_t rowsInFile_ = 0;
    quint64 generation_ = 0;
    bool fileOutdated_ = false;
    std::vector<qint64> removedRowIDs_;
    std::vector<Record*> changed_;
    Record* firstNew_ = nullptr;
};

template <typename Record>
RecordTable<Record>::RecordTable() : indexes_(makeIndexes(std::make_index_sequence<kKeyCount>())) {}

template <typename Record>
Record& RecordTable<Record>::insert() {
    Record& record = allocate(nextRowID_++);
    if (firstNew_ == nullptr) {
        firstNew_ = &record;
    }
    ++generation_;
    return record;
}

template <typename Record>
template <typename Fill>
bool RecordTable<Record>::insertStored(qint64 rowID, Fill fill) {
    NAVREL_ASSERT(firstNew_ == nullptr && rowID >= nextRowID_);
    nextRowID_ = rowID + 1;
    firstNewRowID_ = nextRowID_;
    ++rowsInFile_;
    ++generation_;
    Record& record = allocate(rowID);
    if (!fill(record)) {
        return false;
    }
    for (std::size_t key = 0; key < kKeyCount; ++key) {
        if (const auto& value = record.key(key)) {
            indexes_[key].add(record, *value);
        }
    }
    return true;
}

template <typename Record>
void RecordTable<Record>::remove(Record& record) {
    for (std::size_t key = 0; key < kKeyCount; ++key) {
        if (const auto& value = record.key(key)) {
            indexes_[key].remove(record, *value);
        }
    }
    forgetChange(record);
    if (firstNew_ == &record) {
        firstNew_ = record.tableLinks_.next;
    }
    if (isStored(record)) {
        removedRowIDs_.push_back(record.rowID());
    }
    unlink(record);
    record = Record();
    free_.push_back(&record);
    --size_;
    ++generation_;
}

template <typename Record>
void RecordTable<Record>::removeAll() {
    for (RecordIndex<Record>& index : indexes_) {
        index.clear();
    }
    chunks_.clear();
    usedInLastChunk_ = kRecordsInChunk;
    free_.clear();
    first_ = nullptr;
    last_ = nullptr;
    size_ = 0;
    changed_.clear();
    firstNew_ = nullptr;
    removedRowIDs_.clear();
    fileOutdated_ = fileOutdated_ || rowsInFile_ > 0;
    ++generation_;
}

template <typename Record>
std::vector<Record*> RecordTable<Record>::all() const {
    std::vector<Record*> records;
    records.reserve(size_);
    for (Record* record = first_; record != nullptr; record = record->tableLinks_.next) {
        records.push_back(record);
    }
    return records;
}

template <typename Record>
bool RecordTable<Record>::hasChanges() const {
    return fileOutdated_ || firstNew_ != nullptr || !changed_.empty() || !removedRowIDs_.empty();
}

template <typename Record>
void RecordTable<Record>::markSaved() {
    for (Record* record : changed_) {
        record->changedPosition_ = Record::kUnchanged;
    }
    changed_.clear();
    removedRowIDs_.clear();
    fileOutdated_ = false;
    firstNew_ = nullptr;
    firstNewRowID_ = nextRowID_;
    rowsInFile_ = size_;
}

template <typename Record>
void RecordTable<Record>::markUnsaved() {
    for (Record* record : changed_) {
        record->changedPosition_ = Record::kUnchanged;
    }
    changed_.clear();
    removedRowIDs_.clear();
    fileOutdated_ = false;
    firstNew_ = first_;
    firstNewRowID_ = 1;
    rowsInFile_ = 0;
}

template <typename Record>
void RecordTable<Record>::noteChange(Record& record) {
    ++generation_;
    if (isStored(record) && record.changedPosition_ == Record::kUnchanged) {
        record.changedPosition_ = changed_.size();
        changed_.push_back(&record);
    }
}

template <typename Record>
void RecordTable<Record>::setKey(std::size_t key, Record& record,
                                 std::optional<QByteArray>& attribute,
                                 std::optional<QByteArray> value) {
    if (attribute) {
        indexes_[key].remove(record, *attribute);
    }
    attribute = std::move(value);
    if (attribute) {
        indexes_[key].add(record, *attribute);
    }
    noteChange(record);
}

template <typename Record>
Record& RecordTable<Record>::allocate(qint64 rowID) {
    Record* record = nullptr;
    if (!free_.empty()) {
        record = free_.back();
        free_.pop_back();
    } else {
        if (usedInLastChunk_ == kRecordsInChunk) {
            chunks_.push_back(std::make_unique<Chunk>());
            usedInLastChunk_ = 0;
        }
        record = &(*chunks_.back())[usedInLastChunk_++];
    }
    record->table_ = this;
    record->rowID_ = rowID;
    record->tableLinks_.previous = last_;
    (last_ != nullptr ? last_->tableLinks_.next : first_) = record;
    last_ = record;
    ++size_;
    return *record;
}

template <typename Record>
void RecordTable<Record>::forgetChange(Record& record) {
    if (record.changedPosition_ == Record::kUnchanged) {
        return;
    }
    Record* moved = changed_.back();
    changed_[record.changedPosition_] = moved;
    moved->changedPosition_ = record.changedPosition_;
    changed_.pop_back();
}

template <typename Record>
void RecordTable<Record>::unlink(Record& record) {
    const RecordLinks<Record>& links = record.tableLinks_;
    (links.previous != nullptr ? links.previous->tableLinks_.next : first_) = links.next;
    (links.next != nullptr ? links.next->tableLinks_.previous : last_) = links.previous;
}

} // namespace navrel
