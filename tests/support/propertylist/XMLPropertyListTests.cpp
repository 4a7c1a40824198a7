#include "support/propertylist/PropertyList.h"
#include "support/propertylist/PropertyListLimits.h"
#include "support/propertylist/PropertyListValues.h"
#include "tests/support/propertylist/PropertyListTest.h"

#include <QDateTime>
#include <QObject>
#include <QStringConverter>
#include <gtest/gtest.h>

#include <limits>

namespace navrel {
namespace {

const QByteArray kHeader = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                           "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                           "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n";

QByteArray fileOf(const QByteArray& value) {
    return kHeader + "<plist version=\"1.0\">" + value + "</plist>";
}

QVariant readValue(const QByteArray& value) {
    return readList(fileOf(value));
}

QByteArray xmlOf(const QVariant& list) {
    return written(list, XMLDataWithPropertyList);
}

QString reasonAgainstXML(const QVariant& list) {
    return unwritableReason(list, XMLDataWithPropertyList);
}

TEST(XMLPropertyList, aListIsWrittenWithHeaderAndDocumentType) {
    const QVariantMap message = map({{QStringLiteral("MessageType"), QStringLiteral("Connect")},
                                     {QStringLiteral("PortNumber"), 10505},
                                     {QStringLiteral("Ports"), QVariantList{true, 1.5}},
                                     {QStringLiteral("Tail"), QVariantMap()}});

    EXPECT_EQ(xmlOf(message), kHeader + "<plist version=\"1.0\">\n"
                                        "    <dict>\n"
                                        "        <key>MessageType</key>\n"
                                        "        <string>Connect</string>\n"
                                        "        <key>PortNumber</key>\n"
                                        "        <integer>10505</integer>\n"
                                        "        <key>Ports</key>\n"
                                        "        <array>\n"
                                        "            <integer>1</integer>\n"
                                        "            <real>1.5</real>\n"
                                        "        </array>\n"
                                        "        <key>Tail</key>\n"
                                        "        <dict/>\n"
                                        "    </dict>\n"
                                        "</plist>\n");
}

TEST(XMLPropertyList, everyElementGivesItsKindOfValue) {
    EXPECT_EQ(readValue("<string>a &lt;b&gt; &amp; &#x4E2D;</string>"),
              QVariant(QString::fromUtf8("a <b> & \u4E2D")));
    EXPECT_EQ(readValue("<integer> -7 </integer>"), QVariant(qlonglong{-7}));
    EXPECT_EQ(readValue("<integer>0x1F</integer>"), QVariant(qlonglong{31}));
    EXPECT_EQ(readValue("<real>2.5e3</real>"), QVariant(2500.0));
    EXPECT_EQ(readValue("<true/>"), QVariant(true));
    EXPECT_EQ(readValue("<false></false>"), QVariant(false));
    EXPECT_EQ(readValue("<data>\n\tAP8 =\n</data>"), QVariant(QByteArray("\x00\xFF", 2)));
    EXPECT_EQ(readValue("<date>2024-02-29T23:59:58Z</date>"),
              QVariant(QDateTime(QDate(2024, 2, 29), QTime(23, 59, 58), propertylist::kUTC)));
    EXPECT_EQ(readValue("<array><string/><array/><dict/></array>"),
              QVariant(QVariantList{QString(), QVariantList(), QVariantMap()}));
    EXPECT_EQ(readValue("<dict><key>a</key><integer>1</integer><key>a</key><true/></dict>"),
              QVariant(map({{QStringLiteral("a"), true}})));
}

TEST(XMLPropertyList, commentsInstructionsAndWhiteSpaceStandBetweenElements) {
    EXPECT_EQ(readList("\xEF\xBB\xBF<!-- 1 --><plist>\n<!-- 2 --><array> <?x y?> <true/>"
                       "<!-- 3 -->\n</array>\n</plist><!-- 4 -->\n"),
              QVariant(QVariantList{true}));
}

TEST(XMLPropertyList, theTextIsUTF8WhereItDeclaresNothingElse) {
    for (const char* encoding : {"UTF-8", "utf8", "UTF-16"}) {
        EXPECT_EQ(readList(QByteArray("<?xml version=\"1.0\" encoding=\"") + encoding +
                           "\"?><plist><string>\xC3\xA9</string></plist>"),
                  QVariant(QString::fromUtf8("\u00E9")));
    }
    EXPECT_EQ(readList("<plist><string>\xC3\xA9 encoding='ISO-8859-1'</string></plist>"),
              QVariant(QString::fromUtf8("\u00E9 encoding='ISO-8859-1'")));
}

TEST(XMLPropertyList, theDeclaredEncodingIsRead) {
    EXPECT_EQ(readList("<?xml version='1.0' encoding='ISO-8859-1'?><plist><string>\xE9</string>"
                       "</plist>"),
              QVariant(QString::fromUtf8("\u00E9")));
    EXPECT_EQ(readList("<?xml version=\"1.0\" encoding=\"Shift_JIS\" ?><plist>"
                       "<string>\x8A\xBF\x8E\x9A</string></plist>"),
              QVariant(QString::fromUtf8("\u6F22\u5B57")));
}

TEST(XMLPropertyList, aTextInUTF16OrUTF32IsReadWithAndWithoutAByteOrderMark) {
    const QString text =
        QString::fromUtf8("<?xml version=\"1.0\" "
                          "encoding=\"UTF-16\"?><plist><string>\u00E9\U0001F600</string></plist>");
    for (const auto encoding : {QStringConverter::Utf16LE, QStringConverter::Utf16BE,
                                QStringConverter::Utf32LE, QStringConverter::Utf32BE}) {
        for (const auto flags :
             {QStringConverter::Flag::Default, QStringConverter::Flag::WriteBom}) {
            const bool hasMark = flags == QStringConverter::Flag::WriteBom;
            const bool isLarge =
                encoding == QStringConverter::Utf32LE || encoding == QStringConverter::Utf32BE;
            if (isLarge && !hasMark) {
                continue; // no XML without a mark
            }
            const QByteArray bytes = QStringEncoder(encoding, flags).encode(text);
            EXPECT_EQ(readList(bytes), QVariant(QString::fromUtf8("\u00E9\U0001F600")));
        }
    }
}

TEST(XMLPropertyList, whatIsNotInItsEncodingIsRefused) {
    EXPECT_EQ(reasonOf("<?xml version='1.0' encoding='nonsense'?><plist><true/></plist>"),
              QStringLiteral("the list is not in nonsense"));
    EXPECT_EQ(reasonOf("<?xml version='1.0' encoding='US-ASCII'?><plist>\xE9</plist>"),
              QStringLiteral("the list is not in us-ascii"));
    // Half a unit, and half a surrogate pair.
    EXPECT_EQ(reasonOf(QByteArray("\xFF\xFE<\0?\0x", 7)),
              QStringLiteral("the list is not in UTF-16LE"));
    EXPECT_EQ(reasonOf(QByteArray("\xFF\xFE<\0?\0\x3D\xD8", 8)),
              QStringLiteral("the list is not in UTF-16LE"));
}

TEST(XMLPropertyList, everyKindOfValueComesBack) {
    const QVariantMap all = map(
        {{QStringLiteral("array"), QVariantList{QVariantList(), QVariantMap(), qlonglong{-5}}},
         {QStringLiteral("data"), QByteArray("by\0tes", 6)},
         {QStringLiteral("date"), QDateTime(QDate(24, 2, 29), QTime(1, 2, 3), propertylist::kUTC)},
         {QStringLiteral("real"), 0.1},
         {QStringLiteral("infinite"), -std::numeric_limits<double>::infinity()},
         {QStringLiteral("most"), std::numeric_limits<qlonglong>::min()},
         {QString::fromUtf8("cl\u00E9<&>"), QString::fromUtf8(" \U0001F600\n\t\r\n\r ]]> \"'")},
         {QString(), QString()}});

    EXPECT_EQ(readList(xmlOf(all)), QVariant(all));
}

TEST(XMLPropertyList, datesKeepWholeSeconds) {
    const QDateTime date(QDate(2024, 2, 29), QTime(1, 2, 3, 999), propertylist::kUTC);
    EXPECT_EQ(readList(xmlOf(date)), QVariant(date.addMSecs(-999)));
}

TEST(XMLPropertyList, textThatXMLCannotCarryIsNamedWithItsPlace) {
    const QString reason = QStringLiteral("items[0].name: text that XML cannot carry");
    for (const char16_t unit : {u'\0', u'\x01', u'\v', u'\x1F', u'\xFFFE', u'\xFFFF', u'\xD83D'}) {
        const QVariantMap item = map({{QStringLiteral("name"), QString(QChar(unit))}});
        EXPECT_EQ(reasonAgainstXML(map({{QStringLiteral("items"), QVariantList{item}}})), reason);
    }
}

TEST(XMLPropertyList, valuesThatAreNoneAreNamedWithTheirPlace) {
    QObject object;
    EXPECT_EQ(reasonAgainstXML(QVariantList{1, QVariant::fromValue(&object)}),
              QStringLiteral("[1]: a value of type QObject*"));
    EXPECT_EQ(reasonAgainstXML(map({{QStringLiteral("a"), QVariant()}})),
              QStringLiteral("a: nothing instead of a value"));
    EXPECT_EQ(reasonAgainstXML(QDateTime()),
              QStringLiteral("the list: a date outside the years 1 to 9999"));
}

TEST(XMLPropertyList, whatIsNoListIsRefusedWithItsPlace) {
    const QByteArray start = "<?xml version=\"1.0\"?>\n";
    EXPECT_EQ(reasonOf(start + "<list><true/></list>"),
              QStringLiteral("line 2, column 7: expected <plist>"));
    EXPECT_TRUE(reasonOf("<plist></plist>").endsWith(QStringLiteral("expected a value")));
    EXPECT_TRUE(reasonOf("<plist><true/><true/></plist>")
                    .endsWith(QStringLiteral("expected nothing more after the list")));
    EXPECT_TRUE(reasonOf("<plist>text</plist>")
                    .endsWith(QStringLiteral("expected an element instead of text")));
    EXPECT_TRUE(reasonOf("<plist><dict><string>a</string></dict></plist>")
                    .endsWith(QStringLiteral("expected a key")));
    EXPECT_TRUE(reasonOf("<plist><dict><key>a</key></dict></plist>")
                    .endsWith(QStringLiteral("expected a value after a key")));
    EXPECT_TRUE(reasonOf("<plist><set/></plist>")
                    .endsWith(QStringLiteral("expected a value instead of <set>")));
}

TEST(XMLPropertyList, textThatIsNotOfItsElementIsRefused) {
    for (const char* value :
         {"<integer/>", "<integer>x</integer>", "<integer>1.5</integer>",
          "<integer>9223372036854775808</integer>", "<real/>", "<real>1,5</real>", "<date/>",
          "<date>2024-02-30T00:00:00Z</date>", "<date>2024-02-29</date>",
          "<date>2024-02-29T00:00:00+01:00</date>", "<date>2024-02-29T00:00:00</date>",
          "<data>A*==</data>", "<string><b/></string>"}) {
        EXPECT_EQ(errorOf(fileOf(value)).code(),
                  static_cast<qint64>(PropertyListErrorCode::malformed))
            << value;
    }
}

TEST(XMLPropertyList, whatIsNotWellFormedIsRefused) {
    const QByteArray file = fileOf("<dict><key>a</key><string>b</string></dict>");
    for (qsizetype size = 0; size < file.size(); ++size) {
        EXPECT_FALSE(propertyListWithData(file.first(size)).has_value()) << size;
    }
    EXPECT_FALSE(propertyListWithData(file + "<plist/>").has_value());
    EXPECT_FALSE(propertyListWithData(file + "junk").has_value());
    EXPECT_FALSE(propertyListWithData(fileOf("<string>&nbsp;</string>")).has_value());
    EXPECT_FALSE(propertyListWithData(fileOf("<string>&#xD83D;</string>")).has_value());
    EXPECT_FALSE(propertyListWithData(fileOf("<string>\x01</string>")).has_value());
}

TEST(XMLPropertyList, bytesThatAreNotUTF8AreRefused) {
    for (const char* bad : {"\xA9", "\xC3", "\xC0\x80", "\xED\xA0\x80", "\xFF"}) {
        EXPECT_FALSE(
            propertyListWithData(fileOf(QByteArray("<string>") + bad + "</string>")).has_value());
    }
}

TEST(XMLPropertyList, entitiesOfADocumentTypeAreRefused) {
    QByteArray bomb = "<?xml version=\"1.0\"?><!DOCTYPE plist [<!ENTITY a0 \"aaaaaaaaaa\">";
    for (char i = '1'; i <= '9'; ++i) {
        const QByteArray reference = QByteArray("&a") + static_cast<char>(i - 1) + ";";
        bomb += QByteArray("<!ENTITY a") + i + " \"" + reference.repeated(10) + "\">";
    }
    EXPECT_TRUE(reasonOf(bomb + "]><plist><string>&a9;</string></plist>")
                    .endsWith(QStringLiteral("expected no declarations within the document type")));
    EXPECT_FALSE(propertyListWithData("<!DOCTYPE plist [<!ENTITY f SYSTEM \"file:///etc/passwd\">]>"
                                      "<plist><string>&f;</string></plist>")
                     .has_value());
}

TEST(XMLPropertyList, aTagHasALimitAndSoHaveItsAttributes) {
    QByteArray attributes;
    for (int i = 0; i < 100'000; ++i) {
        attributes += " a" + QByteArray::number(i) + "='>'";
    }
    EXPECT_EQ(reasonOf("<!-- < -->\n<plist" + attributes + "><true/></plist>"),
              QStringLiteral("line 2, column 1: expected a shorter tag"));
    EXPECT_EQ(reasonOf("<plist>\n <array" + attributes),
              QStringLiteral("line 2, column 2: expected a shorter tag"));
}

TEST(XMLPropertyList, onlyTagsHaveThatLimit) {
    const QByteArray text = QByteArray("<a b='").repeated(100);
    EXPECT_EQ(readList("<?x " + text + "?><!--" + text + "--><plist version='>'><string><![CDATA[" +
                       text + "]]></string></plist>"),
              QVariant(QString::fromUtf8(text)));
}

TEST(XMLPropertyList, nestingHasALimit) {
    const auto nested = [](int depth) {
        return "<plist>" + QByteArray("<array>").repeated(depth) +
               QByteArray("</array>").repeated(depth) + "</plist>";
    };
    EXPECT_TRUE(propertyListWithData(nested(kMaxPropertyListDepth)).has_value());
    EXPECT_EQ(errorOf(nested(kMaxPropertyListDepth + 1)).code(),
              static_cast<qint64>(PropertyListErrorCode::tooLarge));
    EXPECT_EQ(errorOf(nested(100'000)).code(),
              static_cast<qint64>(PropertyListErrorCode::tooLarge));

    QVariant list = QVariantList();
    for (int depth = 1; depth < kMaxPropertyListDepth; ++depth) {
        list = QVariantList{list};
    }
    EXPECT_EQ(readList(xmlOf(list)), list);
    EXPECT_TRUE(reasonAgainstXML(QVariantList{list}).endsWith(QStringLiteral("nested too deeply")));
}

TEST(XMLPropertyList, valuesHaveALimit) {
    const auto values = static_cast<qsizetype>(kMaxPropertyListValues);
    const QByteArray file =
        "<plist><array>" + QByteArray("<true/>").repeated(values) + "</array></plist>";

    EXPECT_EQ(errorOf(file).code(), static_cast<qint64>(PropertyListErrorCode::tooLarge));
}

TEST(XMLPropertyList, tagsAreCountedBeforeAnythingIsMadeOfThem) {
    const auto tooMany = static_cast<qsizetype>(4 * kMaxPropertyListValues + 5);
    // The list is malformed at once for a reader; what is told is that it is too large.
    const QByteArray file = "<plist><foo>" + QByteArray("<a>").repeated(tooMany);

    EXPECT_EQ(errorOf(file).code(), static_cast<qint64>(PropertyListErrorCode::tooLarge));
}

TEST(XMLPropertyList, theMostValuesMayAllHaveKeys) {
    const auto entries = static_cast<qsizetype>(kMaxPropertyListValues) - 1; // and the dictionary
    const QByteArray file = "<!DOCTYPE plist><plist><dict>" +
                            QByteArray("<key>a</key><string>b</string>").repeated(entries) +
                            "</dict></plist>";

    EXPECT_EQ(readList(file), QVariant(QVariantMap{{QStringLiteral("a"), QStringLiteral("b")}}));
}

} // namespace
} // namespace navrel
