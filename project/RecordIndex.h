#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QHashFunctions>

#include <cstddef>
#include <unordered_map>

namespace navrel {

/// A record's neighbours in a list of records of its kind.
template <typename Record>
struct RecordLinks {
    Record* previous = nullptr;
    Record* next = nullptr;
};

/// Finds the records of a table by the value of one attribute. The records of one value form a list
/// through the records themselves, in the order of their insertion into the table.
///
/// `Record` gives `links(key)`, the links of that list, and `rowID()`, which grows with insertion.
template <typename Record>
class RecordIndex {
public:
    explicit RecordIndex(std::size_t key) : key_(key) {}

    void add(Record& record, const QByteArray& value);

    /// Takes a record out that stands under `value`.
    void remove(Record& record, const QByteArray& value);

    void clear();

    /// The first and the last record of a value, or null.
    Record* first(QByteArrayView value) const;
    Record* last(QByteArrayView value) const;

private:
    struct Chain {
        Record* head = nullptr;
        Record* tail = nullptr;
    };
    // Seeded anew in every process, so that no project file is made of keys that collide.
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
    using Chains = std::unordered_map<QByteArray, Chain, Hash, Equal>;

    Chain& chainFor(const QByteArray& value);
    const Chain* chainOf(QByteArrayView value) const;
    void link(Chain& chain, Record& record);

    std::size_t key_;
    Chains chains_;
    // The chain last added to: the elements of a file come one after the other and share one key.
    QByteArray recentValue_;
    Chain* recentChain_ = nullptr;
};

template <typename Record>
void RecordIndex<Record>::add(Record& record, const QByteArray& value) {
    link(chainFor(value), record);
}

template <typename Record>
void RecordIndex<Record>::remove(Record& record, const QByteArray& value) {
    const auto found = chains_.find(QByteArrayView(value));
    Chain& chain = found->second;
    RecordLinks<Record>& links = record.links(key_);
    (links.previous != nullptr ? links.previous->links(key_).next : chain.head) = links.next;
    (links.next != nullptr ? links.next->links(key_).previous : chain.tail) = links.previous;
    links = {};
    if (chain.head == nullptr) {
        chains_.erase(found);
        recentChain_ = nullptr;
    }
}

template <typename Record>
void RecordIndex<Record>::clear() {
    chains_.clear();
    recentChain_ = nullptr;
}

template <typename Record>
Record* RecordIndex<Record>::first(QByteArrayView value) const {
    const Chain* chain = chainOf(value);
    return chain != nullptr ? chain->head : nullptr;
}

template <typename Record>
Record* RecordIndex<Record>::last(QByteArrayView value) const {
    const Chain* chain = chainOf(value);
    return chain != nullptr ? chain->tail : nullptr;
}

template <typename Record>
typename RecordIndex<Record>::Chain& RecordIndex<Record>::chainFor(const QByteArray& value) {
    if (recentChain_ == nullptr || recentValue_ != value) {
        recentChain_ = &chains_[value];
        recentValue_ = value;
    }
    return *recentChain_;
}

template <typename Record>
const typename RecordIndex<Record>::Chain*
RecordIndex<Record>::chainOf(QByteArrayView value) const {
    const auto found = chains_.find(value);
    return found != chains_.end() ? &found->second : nullptr;
}

template <typename Record>
void RecordIndex<Record>::link(Chain& chain, Record& record) {
    // A record whose value was changed may belong before younger ones; a new one comes last.
    Record* after = chain.tail;
    while (after != nullptr && after->rowID() > record.rowID()) {
        after = after->links(key_).previous;
    }
    Record* before = after != nullptr ? after->links(key_).next : chain.head;
    record.links(key_) = {after, before};
    (after != nullptr ? after->links(key_).next : chain.head) = &record;
    (before != nullptr ? before->links(key_).previous : chain.tail) = &record;
}

} // namespace navrel
