#include "project/store/CDObject.h"
#include "project/store/RecordTable.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <vector>

namespace navrel {
namespace {

TEST(RecordTable, aRowNumberIsNeverGivenTwice) {
    RecordTable<CDObject> table;
    CDObject& first = table.insert();
    const qint64 rowID = first.rowID();
    table.remove(first);
    EXPECT_GT(table.insert().rowID(), rowID);
    table.removeAll();
    EXPECT_GT(table.insert().rowID(), rowID + 1);
}

TEST(RecordTable, itsIndexAgreesWithASearchWhateverIsDone) {
    RecordTable<CDObject> table;
    std::map<qint64, CDObject*> records; // in the order of insertion
    std::mt19937 random(7);              // the same deeds in every run
    const auto anyRecord = [&] {
        auto record = records.begin();
        std::advance(record, random() % records.size());
        return record;
    };
    const auto anyParent = [&] { return QByteArray::number(random() % 3); };
    for (int deed = 0; deed < 20'000; ++deed) {
        switch (records.empty() ? 0 : random() % 4) {
        case 0:
        case 1: {
            CDObject& record = table.insert();
            record.setParentID(anyParent());
            records.emplace(record.rowID(), &record);
            break;
        }
        case 2: {
            const auto record = anyRecord();
            table.remove(*record->second);
            records.erase(record);
            break;
        }
        default:
            anyRecord()->second->setParentID(anyParent());
        }
        if (deed % 50 != 0) {
            continue;
        }
        for (const char* parent : {"0", "1", "2"}) {
            std::vector<CDObject*> expected;
            for (const auto& [rowID, record] : records) {
                if (record->parentID() == parent) {
                    expected.push_back(record);
                }
            }
            ASSERT_EQ(table.withKey(CDObject::kParentIDKey, parent), expected);
            ASSERT_EQ(table.lastWithKey(CDObject::kParentIDKey, parent),
                      expected.empty() ? nullptr : expected.back());
        }
    }
}

TEST(RecordTable, aHundredThousandRecordsOfOneKeyAreRemovedAndMovedInAnyOrder) {
    constexpr std::size_t kRecords = 100'000;
    RecordTable<CDObject> table;
    for (std::size_t count = 0; count < kRecords; ++count) {
        table.insert().setParentID(QByteArray("old"));
    }
    table.insert().setParentID(QByteArray("new"));
    for (CDObject* record : table.withKey(CDObject::kParentIDKey, "old")) {
        record->setParentID(QByteArray("new"));
    }
    const std::vector<CDObject*> moved = table.withKey(CDObject::kParentIDKey, "new");
    ASSERT_EQ(moved.size(), kRecords + 1);
    EXPECT_EQ(moved, table.all());
    for (CDObject* record : moved) {
        table.remove(*record);
    }
    EXPECT_EQ(table.size(), 0U);
    EXPECT_EQ(table.lastWithKey(CDObject::kParentIDKey, "new"), nullptr);
}

} // namespace
} // namespace navrel
