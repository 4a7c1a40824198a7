#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QHashFunctions>
#include <QVarLengthArray>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <unordered_map>
#include <vector>

namespace navrel {

/// Finds the records of a table by the value of one attribute, in the order of their insertion into
/// the table. Adding and removing take constant time, however many records share a value.
///
/// `Record` must have `rowID()`, which grows with insertion, and `position(key)`, a number that the
/// index keeps in the record.
template <typename Record>
class RecordIndex {
public:
    explicit RecordIndex(std::size_t key) : key_(key) {}

    void add(Record& record, const QByteArray& value);

    /// Removes a record, which must have been added with this value.
    void remove(Record& record, const QByteArray& value);

    void clear();

    std::vector<Record*> records(QByteArrayView value);

    /// The record inserted last, or null.
    Record* last(QByteArrayView value);

private:
    /// The records of one value. Removal leaves a gap, since closing it would mean moving all
    /// records after it. The last one is never a gap.
    struct Group {
        QVarLengthArray<Record*, 1> records;
        qsizetype gaps = 0;
        // False after a record was added behind younger ones, because its value was changed.
        bool isInOrder = true;
    };
    // Seeded differently in every process, so that nobody can write a project file whose keys
    // collide.
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(QByteArrayView value) const {
            return qHash(value, QHashSeed::globalSeed());
        }
    };
    struct Equal {
        using is_transparent = void;
        bool operator()(QByteArrayView left, QByteArrayView right) const { return left == right; }
    };

    Group& groupFor(const QByteArray& value);
    Group* orderedGroup(QByteArrayView value);
    void closeGaps(Group& group);

    std::size_t key_;
    std::unordered_map<QByteArray, Group, Hash, Equal> groups_;
    // The group last added to: the elements of a file come one after the other and share one value.
    QByteArray recentValue_;
    Group* recentGroup_ = nullptr;
};

template <typename Record>
void RecordIndex<Record>::add(Record& record, const QByteArray& value) {
    Group& group = groupFor(value);
    if (!group.records.isEmpty() && group.records.last()->rowID() > record.rowID()) {
        group.isInOrder = false;
    }
    record.position(key_) = group.records.size();
    group.records.append(&record);
}

template <typename Record>
void RecordIndex<Record>::remove(Record& record, const QByteArray& value) {
    const auto found = groups_.find(QByteArrayView(value));
    Group& group = found->second;
    group.records[record.position(key_)] = nullptr;
    ++group.gaps;
    while (!group.records.isEmpty() && group.records.last() == nullptr) {
        group.records.removeLast();
        --group.gaps;
    }
    if (group.records.isEmpty()) {
        groups_.erase(found);
        recentGroup_ = nullptr;
    } else if (2 * group.gaps > group.records.size()) {
        closeGaps(group);
    }
}

template <typename Record>
void RecordIndex<Record>::clear() {
    groups_.clear();
    recentGroup_ = nullptr;
}

template <typename Record>
std::vector<Record*> RecordIndex<Record>::records(QByteArrayView value) {
    std::vector<Record*> result;
    if (const Group* group = orderedGroup(value)) {
        result.reserve(static_cast<std::size_t>(group->records.size() - group->gaps));
        std::copy_if(group->records.begin(), group->records.end(), std::back_inserter(result),
                     [](const Record* record) { return record != nullptr; });
    }
    return result;
}

template <typename Record>
Record* RecordIndex<Record>::last(QByteArrayView value) {
    const Group* group = orderedGroup(value);
    return group != nullptr ? group->records.last() : nullptr;
}

template <typename Record>
typename RecordIndex<Record>::Group& RecordIndex<Record>::groupFor(const QByteArray& value) {
    if (recentGroup_ == nullptr || recentValue_ != value) {
        recentGroup_ = &groups_[value];
        recentValue_ = value;
    }
    return *recentGroup_;
}

template <typename Record>
typename RecordIndex<Record>::Group* RecordIndex<Record>::orderedGroup(QByteArrayView value) {
    const auto found = groups_.find(value);
    if (found == groups_.end()) {
        return nullptr;
    }
    Group& group = found->second;
    if (!group.isInOrder) {
        closeGaps(group);
    }
    return &group;
}

/// Closes the gaps and puts the records in order.
template <typename Record>
void RecordIndex<Record>::closeGaps(Group& group) {
    auto& records = group.records;
    records.erase(std::remove(records.begin(), records.end(), nullptr), records.end());
    if (!group.isInOrder) {
        std::sort(records.begin(), records.end(), [](const Record* left, const Record* right) {
            return left->rowID() < right->rowID();
        });
    }
    for (qsizetype position = 0; position < records.size(); ++position) {
        records[position]->position(key_) = position;
    }
    group.gaps = 0;
    group.isInOrder = true;
}

} // namespace navrel
