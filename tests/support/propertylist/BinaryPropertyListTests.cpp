#include "support/propertylist/PropertyList.h"
#include "support/propertylist/PropertyListLimits.h"
#include "support/propertylist/PropertyListValues.h"
#include "tests/support/propertylist/PropertyListTest.h"

#include <QDateTime>
#include <QObject>
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>

namespace navrel {
namespace {

QByteArray hex(const char* digits) {
    return QByteArray::fromHex(digits);
}

QByteArray bigEndian(quint64 number, int size) {
    QByteArray bytes;
    for (int shift = (size - 1) * 8; shift >= 0; shift -= 8) {
        bytes += static_cast<char>(number >> shift);
    }
    return bytes;
}

struct Sizes {
    int offset = 1;
    int reference = 1;
};

/// A file of the given objects, the first of which is the list.
QByteArray fileOf(const QList<QByteArray>& objects, Sizes sizes = {}) {
    QByteArray bytes = "bplist00";
    QByteArray offsets;
    for (const QByteArray& object : objects) {
        offsets += bigEndian(static_cast<quint64>(bytes.size()), sizes.offset);
        bytes += object;
    }
    const auto table = static_cast<quint64>(bytes.size());
    return bytes + offsets + QByteArray(6, '\0') + static_cast<char>(sizes.offset) +
           static_cast<char>(sizes.reference) + bigEndian(static_cast<quint64>(objects.size()), 8) +
           bigEndian(0, 8) + bigEndian(table, 8);
}

QVariant readObject(const QByteArray& object) {
    return readList(fileOf({object}));
}

QByteArray binaryOf(const QVariant& list) {
    return written(list, binaryDataWithPropertyList);
}

QString reasonAgainstBinary(const QVariant& list) {
    return unwritableReason(list, binaryDataWithPropertyList);
}

/// The bytes of a scalar as the writer makes them.
QByteArray writtenObject(const QVariant& value) {
    const QByteArray bytes = binaryOf(value);
    return bytes.sliced(8, bytes.size() - 8 - 1 - 32);
}

const QByteArray kReply = hex("62706c6973743030"  // "bplist00"
                              "d2 01 02 03 04"    // 0: dictionary, 2 keys: 1 and 2, values 3 and 4
                              "55 6974656d73"     // 1: "items"
                              "54 6e616d65"       // 2: "name"
                              "a3 02 05 05"       // 3: array of 3: 2, 5 and 5 again
                              "62 00e9 4e2d"      // 4: UTF-16 text
                              "10 01"             // 5: integer 1
                              "08 0d 13 18 1c 21" // the offset table
                              "000000000000"      // unused
                              "01"                // bytes of an offset
                              "01"                // bytes of a reference
                              "0000000000000006"  // objects
                              "0000000000000000"  // the top object
                              "0000000000000023"  // position of the offset table
);

TEST(BinaryPropertyList, aListIsWrittenAsTheseBytes) {
    const QVariantMap reply =
        map({{QStringLiteral("items"), QVariantList{QStringLiteral("name"), 1, true}},
             {QStringLiteral("name"), QString::fromUtf8("\u00E9\u4E2D")}});

    // The numbers of objects are those of the writer: an array's elements come before what follows.
    EXPECT_EQ(binaryOf(reply).toHex(),
              hex("62706c6973743030"  // "bplist00"
                  "d2 01 02 03 05"    // 0: dictionary, 2 keys: 1 and 2, values 3 and 5
                  "55 6974656d73"     // 1: "items"
                  "54 6e616d65"       // 2: "name"
                  "a3 02 04 04"       // 3: array of 3: 2 (the key's string), 4 and 4 again
                  "10 01"             // 4: integer 1, and true
                  "62 00e9 4e2d"      // 5: UTF-16 text
                  "08 0d 13 18 1c 1e" // the offset table
                  "000000000000 01 01 0000000000000006 0000000000000000 0000000000000023")
                  .toHex());
}

TEST(BinaryPropertyList, theseBytesAreReadAsAList) {
    EXPECT_EQ(readList(kReply),
              QVariant(map({{QStringLiteral("items"),
                             QVariantList{QStringLiteral("name"), qlonglong{1}, qlonglong{1}}},
                            {QStringLiteral("name"), QString::fromUtf8("\u00E9\u4E2D")}})));
}

TEST(BinaryPropertyList, booleansAreReadAsSuchAndWrittenAsIntegers) {
    EXPECT_EQ(readObject(hex("08")), QVariant(false));
    EXPECT_EQ(readObject(hex("09")), QVariant(true));
    EXPECT_EQ(readObject(hex("09")).typeId(), QMetaType::Bool);
    EXPECT_EQ(writtenObject(false), hex("1000"));
    EXPECT_EQ(writtenObject(true), hex("1001"));
}

TEST(BinaryPropertyList, integersHaveOneTwoFourOrEightBytes) {
    const std::pair<const char*, qlonglong> cases[] = {
        {"10 00", 0},
        {"10 ff", 255}, // short ones have no sign
        {"11 0100", 256},
        {"11 ffff", 65'535},
        {"12 00010000", 65'536},
        {"12 ffffffff", 4'294'967'295},
        {"13 0000000100000000", 4'294'967'296},
        {"13 7fffffffffffffff", std::numeric_limits<qlonglong>::max()},
        {"13 ffffffffffffffff", -1},
        {"13 8000000000000000", std::numeric_limits<qlonglong>::min()},
    };
    for (const auto& [digits, integer] : cases) {
        EXPECT_EQ(readObject(hex(digits)), QVariant(integer)) << digits;
        EXPECT_EQ(writtenObject(integer).toHex(), hex(digits).toHex());
    }
}

TEST(BinaryPropertyList, everyIntegerTypeIsWritten) {
    for (const QVariant& value :
         {QVariant(7), QVariant(7U), QVariant(7ULL), QVariant::fromValue(7L),
          QVariant::fromValue<short>(7), QVariant::fromValue<quint8>(7)}) {
        EXPECT_EQ(writtenObject(value), hex("1007")) << value.typeName();
    }
    EXPECT_EQ(reasonAgainstBinary(std::numeric_limits<qulonglong>::max()),
              QStringLiteral("the list: a value of type qulonglong"));
}

TEST(BinaryPropertyList, integersOfSixteenBytesAreReadWhereTheyFit) {
    EXPECT_EQ(readObject(hex("14 0000000000000000 0000000000000007")), QVariant(qlonglong{7}));
    EXPECT_EQ(readObject(hex("14 ffffffffffffffff ffffffffffffffff")), QVariant(qlonglong{-1}));
    EXPECT_EQ(reasonOf(fileOf({hex("14 0000000000000000 8000000000000000")})),
              QStringLiteral("byte 8: expected an integer of 64 bits with a sign"));
    EXPECT_EQ(reasonOf(fileOf({hex("15") + QByteArray(32, '\0')})),
              QStringLiteral("byte 8: expected an integer of 1 to 16 bytes"));
}

TEST(BinaryPropertyList, realsHaveFourOrEightBytes) {
    EXPECT_EQ(readObject(hex("22 3fc00000")), QVariant(1.5));
    EXPECT_EQ(readObject(hex("23 3ff8000000000000")), QVariant(1.5));
    EXPECT_EQ(writtenObject(1.5), hex("23 3ff8000000000000"));
    EXPECT_EQ(writtenObject(1.5F), hex("23 3ff8000000000000"));
    EXPECT_EQ(reasonOf(fileOf({hex("21 0000")})),
              QStringLiteral("byte 8: expected a real of 4 or 8 bytes"));
}

TEST(BinaryPropertyList, aDateIsSecondsSinceTheFirstDayOf2001) {
    const QDateTime date(QDate(2001, 1, 2), QTime(0, 0, 0, 500), propertylist::kUTC);

    EXPECT_EQ(writtenObject(date), hex("33 40f5180800000000")); // 86400.5
    EXPECT_EQ(readObject(hex("33 40f5180800000000")), QVariant(date));
    EXPECT_EQ(readObject(hex("33 0000000000000000")),
              QVariant(QDateTime(QDate(2001, 1, 1), QTime(0, 0), propertylist::kUTC)));
    EXPECT_EQ(writtenObject(date.toOffsetFromUtc(3600)), writtenObject(date));
}

TEST(BinaryPropertyList, datesAreWithinTheYears1To9999) {
    const QDateTime first(QDate(1, 1, 1), QTime(0, 0), propertylist::kUTC);
    const QDateTime last(QDate(9999, 12, 31), QTime(23, 59, 59, 999), propertylist::kUTC);
    EXPECT_EQ(readList(binaryOf(first)), QVariant(first));
    EXPECT_EQ(readList(binaryOf(last)), QVariant(last));

    const double tooLate = static_cast<double>(
        QDateTime(QDate(2001, 1, 1), QTime(0, 0), propertylist::kUTC).secsTo(last.addMSecs(1)));
    for (const double seconds : {std::nan(""), -HUGE_VAL, 1e18, -1e12, tooLate}) {
        const QByteArray date = "\x33" + bigEndian(std::bit_cast<quint64>(seconds), 8);
        EXPECT_EQ(reasonOf(fileOf({date})),
                  QStringLiteral("byte 8: expected a date within the years 1 to 9999"));
    }
    EXPECT_EQ(reasonAgainstBinary(QDateTime()),
              QStringLiteral("the list: a date outside the years 1 to 9999"));
    EXPECT_EQ(reasonAgainstBinary(last.addMSecs(1)),
              QStringLiteral("the list: a date outside the years 1 to 9999"));
}

TEST(BinaryPropertyList, dataAndTextHaveTheirLengthInTheMarkerUpToFourteen) {
    EXPECT_EQ(writtenObject(QByteArray("\x00\xFF", 2)), hex("42 00ff"));
    EXPECT_EQ(readObject(hex("42 00ff")), QVariant(QByteArray("\x00\xFF", 2)));
    EXPECT_EQ(writtenObject(QString(14, u'x')), "\x5E" + QByteArray(14, 'x'));
    EXPECT_EQ(readObject(hex("40")), QVariant(QByteArray()));
    EXPECT_EQ(readObject(hex("50")), QVariant(QString()));
    EXPECT_EQ(readObject(hex("a0")), QVariant(QVariantList()));
    EXPECT_EQ(readObject(hex("d0")), QVariant(QVariantMap()));
}

TEST(BinaryPropertyList, longerLengthsFollowAsAnInteger) {
    EXPECT_EQ(writtenObject(QString(15, u'x')), "\x5F\x10\x0F" + QByteArray(15, 'x'));
    EXPECT_EQ(readObject("\x5F\x10\x0F" + QByteArray(15, 'x')), QVariant(QString(15, u'x')));
    EXPECT_EQ(readObject("\x5F" + hex("13 0000000000000002") + "xy"),
              QVariant(QStringLiteral("xy")));

    const QByteArray data(70'000, 'd');
    EXPECT_TRUE(binaryOf(data).startsWith("bplist00\x4F" + hex("12 00011170") + "dd"));
    EXPECT_EQ(readList(binaryOf(data)), QVariant(data));
    EXPECT_EQ(readList(binaryOf(QString(300, u'\u00E9'))), QVariant(QString(300, u'\u00E9')));
}

TEST(BinaryPropertyList, textIsASCIIOrUTF16) {
    EXPECT_EQ(writtenObject(QString::fromUtf8("\U0001F600")), hex("62 d83d de00"));
    EXPECT_EQ(readObject(hex("62 d83d de00")), QVariant(QString::fromUtf8("\U0001F600")));
    EXPECT_EQ(writtenObject(QStringLiteral("\x7F")), hex("51 7f"));
    EXPECT_EQ(writtenObject(QString::fromUtf8("\u0080")), hex("61 0080"));
}

TEST(BinaryPropertyList, textThatIsNoneIsRefused) {
    EXPECT_EQ(reasonOf(fileOf({hex("51 80")})), QStringLiteral("byte 8: expected ASCII text"));
    EXPECT_EQ(reasonOf(fileOf({hex("61 d83d")})), QStringLiteral("byte 8: expected UTF-16 text"));
    EXPECT_EQ(reasonOf(fileOf({hex("62 de00 d83d")})),
              QStringLiteral("byte 8: expected UTF-16 text"));
    EXPECT_EQ(reasonAgainstBinary(map({{QStringLiteral("k"), QString(QChar(0xD83D))}})),
              QStringLiteral("k: text that is not Unicode"));
}

TEST(BinaryPropertyList, offsetsHaveOneToEightBytes) {
    for (int size = 1; size <= 8; ++size) {
        EXPECT_EQ(readList(fileOf({hex("51 61")}, {.offset = size})),
                  QVariant(QStringLiteral("a")));
    }
    EXPECT_EQ(binaryOf(QByteArray(300, 'd')).at(8 + 4 + 300 + 2 + 6), 2); // two bytes for 312
}

TEST(BinaryPropertyList, referencesHaveOneToEightBytes) {
    for (int size = 1; size <= 8; ++size) {
        const QByteArray array = hex("a1") + bigEndian(1, size);
        EXPECT_EQ(readList(fileOf({array, hex("09")}, {.reference = size})),
                  QVariant(QVariantList{true}));
    }
}

TEST(BinaryPropertyList, manyObjectsTakeLongerReferences) {
    QVariantList integers;
    for (qlonglong i = 0; i < 70'000; ++i) {
        integers.append(i);
    }
    const QVariantList few = integers.first(300);
    EXPECT_EQ(binaryOf(few).at(binaryOf(few).size() - 25), 2);
    EXPECT_EQ(binaryOf(integers).at(binaryOf(integers).size() - 25), 4);
    EXPECT_EQ(readList(binaryOf(few)), QVariant(few));
    EXPECT_EQ(readList(binaryOf(integers)), QVariant(integers));
}

TEST(BinaryPropertyList, everyKindOfValueComesBack) {
    const QVariantMap all =
        map({{QStringLiteral("array"), QVariantList{QVariantList(), QVariantMap(), qlonglong{-5}}},
             {QStringLiteral("data"), QByteArray("bytes")},
             {QStringLiteral("date"),
              QDateTime(QDate(2024, 2, 29), QTime(1, 2, 3, 4), propertylist::kUTC)},
             {QStringLiteral("real"), 0.1},
             {QString::fromUtf8("cl\u00E9"), QString()}});

    EXPECT_EQ(readList(binaryOf(all)), QVariant(all));
}

TEST(BinaryPropertyList, aKeyThatIsNoTextIsRefused) {
    EXPECT_EQ(reasonOf(fileOf({hex("d1 01 01"), hex("10 01")})),
              QStringLiteral("byte 9: expected text as a key"));
}

TEST(BinaryPropertyList, otherKindsOfObjectsAreRefused) {
    for (const char* digits : {"00", "0f", "80 00", "c0", "70", "b0", "e0", "f0", "30"}) {
        EXPECT_EQ(reasonOf(fileOf({hex(digits)})),
                  QStringLiteral("byte 8: expected the marker of an object"))
            << digits;
    }
}

TEST(BinaryPropertyList, valuesThatAreNoneAreNamedWithTheirPlace) {
    QObject object;
    const QVariantList items{1, map({{QStringLiteral("path"), QVariant::fromValue(&object)}})};

    EXPECT_EQ(reasonAgainstBinary(map({{QStringLiteral("items"), items}})),
              QStringLiteral("items[1].path: a value of type QObject*"));
    EXPECT_EQ(reasonAgainstBinary(QVariantList{QVariantList{QVariant()}}),
              QStringLiteral("[0][0]: nothing instead of a value"));
    EXPECT_EQ(reasonAgainstBinary(QVariant()),
              QStringLiteral("the list: nothing instead of a value"));
    EXPECT_EQ(reasonAgainstBinary(QVariant::fromValue(nullptr)),
              QStringLiteral("the list: a value of type std::nullptr_t"));
}

TEST(BinaryPropertyList, aSharedArrayIsReadWhereverItStands) {
    const QVariantList shared{true};
    EXPECT_EQ(readList(fileOf({hex("a2 01 01"), hex("a1 02"), hex("09")})),
              QVariant(QVariantList{QVariant(shared), QVariant(shared)}));
}

TEST(BinaryPropertyList, sharedArraysDoNotUnfoldWithoutBound) {
    QList<QByteArray> objects; // each an array of the next one ten times: 10 to the power of 9
    for (int i = 0; i < 9; ++i) {
        objects.append("\xAA" + QByteArray(10, static_cast<char>(i + 1)));
    }
    const Error error = errorOf(fileOf(objects << hex("09")));
    EXPECT_EQ(error.code(), static_cast<qint64>(PropertyListErrorCode::tooLarge));
    EXPECT_TRUE(error.localizedDescription()->endsWith(QStringLiteral("too many values")));
}

TEST(BinaryPropertyList, referencesAreCountedBeforeTheyAreFollowed) {
    // Arrays that each refer to the next one first. The last one is found to be too much before its
    // references are looked at.
    constexpr quint64 kReferences = kMaxPropertyListValues / 2;
    const auto arrayOf = [](char first) {
        return hex("af 12") + bigEndian(kReferences, 4) + first +
               QByteArray(static_cast<qsizetype>(kReferences) - 1, '\x03');
    };
    const QByteArray first = arrayOf('\x01');
    const QByteArray last = arrayOf('\x7F'); // which is no object's number
    const Error error =
        errorOf(fileOf({first, arrayOf('\x02'), last, hex("09")}, {.offset = 4, .reference = 1}));
    EXPECT_EQ(error.code(), static_cast<qint64>(PropertyListErrorCode::tooLarge));
    EXPECT_EQ(*error.localizedDescription(),
              QStringLiteral("byte %1: the list has too many values").arg(8 + 2 * first.size()));
}

TEST(BinaryPropertyList, containersWithinThemselvesAreRefused) {
    EXPECT_EQ(reasonOf(fileOf({hex("a1 00")})),
              QStringLiteral("byte 8: expected no container within itself"));
    EXPECT_EQ(reasonOf(fileOf({hex("a1 01"), hex("d1 02 00"), hex("51 61")})),
              QStringLiteral("byte 8: expected no container within itself"));
}

QByteArray nestedFile(int depth) {
    QList<QByteArray> objects;
    for (int i = 1; i < depth; ++i) {
        objects.append(hex("a1") + bigEndian(static_cast<quint64>(i), 2));
    }
    return fileOf(objects << hex("a0"), {.offset = 2, .reference = 2});
}

TEST(BinaryPropertyList, nestingHasALimit) {
    EXPECT_TRUE(propertyListWithData(nestedFile(kMaxPropertyListDepth)).has_value());
    EXPECT_EQ(errorOf(nestedFile(kMaxPropertyListDepth + 1)).code(),
              static_cast<qint64>(PropertyListErrorCode::tooLarge));

    QVariant list = QVariantList();
    for (int depth = 1; depth < kMaxPropertyListDepth; ++depth) {
        list = QVariantList{list};
    }
    EXPECT_EQ(readList(binaryOf(list)), list);
    EXPECT_TRUE(
        reasonAgainstBinary(QVariantList{list}).endsWith(QStringLiteral("nested too deeply")));
}

TEST(BinaryPropertyList, objectsThatClaimTheSameBytesAreRefused) {
    // 20 data objects at one position would make 20 copies of what stands there.
    QByteArray bytes = "bplist00\xAF\x10\x14";
    for (char i = 1; i <= 20; ++i) {
        bytes += i;
    }
    const auto data = static_cast<char>(bytes.size());
    bytes += "\x4F\x11" + bigEndian(1000, 2) + QByteArray(1000, 'd');
    const auto table = static_cast<quint64>(bytes.size());
    bytes += '\x08' + QByteArray(20, data) + QByteArray(6, '\0') + "\x01\x01" + bigEndian(21, 8) +
             bigEndian(0, 8) + bigEndian(table, 8);

    EXPECT_TRUE(reasonOf(bytes).endsWith(QStringLiteral("expected objects that share no bytes")));
}

TEST(BinaryPropertyList, contentsBeyondTheBytesAreRefused) {
    for (const char* digits :
         {"43 0000", "53 6161", "62 0061", "a2 00", "d1 00", "11 00", "22 0000",
          "33 00000000000000", "4f 12 7fffffff 00", "4f 13 7fffffffffffffff",
          "6f 13 7fffffffffffffff", "af 13 4000000000000000", "df 13 4000000000000000", "4f",
          "4f 11 00", "4f 51 61", "4f 13 ffffffffffffffff"}) {
        EXPECT_EQ(errorOf(fileOf({hex(digits)})).code(),
                  static_cast<qint64>(PropertyListErrorCode::malformed))
            << digits;
    }
}

TEST(BinaryPropertyList, referencesAndPositionsBeyondTheObjectsAreRefused) {
    EXPECT_EQ(reasonOf(fileOf({hex("a1 01")})),
              QStringLiteral("byte 9: expected the number of an object"));

    QByteArray bytes = fileOf({hex("09")});
    bytes[9] = '\x09'; // the offset of the object is now that of the offset table itself
    EXPECT_EQ(reasonOf(bytes), QStringLiteral("byte 9: expected the position of an object"));
    bytes[9] = '\x07'; // within the header
    EXPECT_EQ(reasonOf(bytes), QStringLiteral("byte 9: expected the position of an object"));
}

TEST(BinaryPropertyList, trailersThatLieAreRefused) {
    const auto lyingFile = [](qsizetype fromEnd, const QByteArray& field) {
        QByteArray bytes = fileOf({hex("09")});
        return bytes.replace(bytes.size() - fromEnd, field.size(), field);
    };
    const QString sizes = QStringLiteral("byte 16: expected sizes from 1 to 8");
    EXPECT_EQ(reasonOf(lyingFile(26, hex("00"))), sizes);
    EXPECT_EQ(reasonOf(lyingFile(26, hex("09"))), sizes);
    EXPECT_EQ(reasonOf(lyingFile(25, hex("00"))), sizes);
    EXPECT_EQ(reasonOf(lyingFile(25, hex("ff"))), sizes);

    const QString table = QStringLiteral("byte 18: expected the offset table within the bytes");
    EXPECT_EQ(reasonOf(lyingFile(24, bigEndian(2, 8))), table);
    EXPECT_EQ(reasonOf(lyingFile(24, hex("ffffffffffffffff"))), table);
    EXPECT_EQ(reasonOf(lyingFile(8, bigEndian(7, 8))), table);
    EXPECT_EQ(reasonOf(lyingFile(8, bigEndian(11, 8))), table);
    EXPECT_EQ(reasonOf(lyingFile(8, hex("ffffffffffffffff"))), table);
    EXPECT_EQ(reasonOf(lyingFile(16, bigEndian(1, 8))),
              QStringLiteral("byte 26: expected the number of an object"));
    EXPECT_EQ(reasonOf(lyingFile(24, bigEndian(0, 8))),
              QStringLiteral("byte 26: expected the number of an object"));
}

TEST(BinaryPropertyList, objectsHaveALimit) {
    QByteArray bytes = fileOf({hex("09")});
    const auto count = static_cast<qsizetype>(kMaxPropertyListValues) + 1;
    bytes.insert(10, QByteArray(count - 1, '\x08'));
    bytes.replace(bytes.size() - 24, 8, bigEndian(static_cast<quint64>(count), 8));

    EXPECT_EQ(errorOf(bytes).code(), static_cast<qint64>(PropertyListErrorCode::tooLarge));
}

TEST(BinaryPropertyList, otherVersionsAndShortBytesAreRefused) {
    const QString reason = QStringLiteral("byte 0: expected a header and a trailer of version 0");
    EXPECT_EQ(reasonOf("bplist"), reason);
    EXPECT_EQ(reasonOf("bplist00" + QByteArray(31, '\0')), reason);
    QByteArray bytes = fileOf({hex("09")});
    bytes[6] = '1';
    EXPECT_EQ(reasonOf(bytes), reason);
}

TEST(BinaryPropertyList, everyBeginningOfAFileIsAnError) {
    // From the magic on: what is shorter is a word of the old-style format.
    for (qsizetype size = 6; size < kReply.size(); ++size) {
        EXPECT_FALSE(propertyListWithData(kReply.first(size)).has_value()) << size;
    }
}

TEST(BinaryPropertyList, noSingleChangedByteDoesHarm) {
    for (qsizetype place = 0; place < kReply.size(); ++place) {
        for (int byte = 0; byte < 256; ++byte) {
            QByteArray bytes = kReply;
            bytes[place] = static_cast<char>(byte);
            const std::optional<QVariant> list = propertyListWithData(bytes);
            if (list) {
                EXPECT_EQ(binaryOf(readList(binaryOf(*list))), binaryOf(*list));
            }
        }
    }
}

} // namespace
} // namespace navrel
