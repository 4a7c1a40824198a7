#include "support/propertylist/PropertyListLimits.h"
#include "support/propertylist/PropertyListValues.h"
#include "support/propertylist/XMLPropertyList.h"

#include <QXmlStreamWriter>

#include <algorithm>

namespace navrel {

namespace propertylist {

namespace {

constexpr QStringView kDocumentType = u"<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                                      u"\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">";

/// Writes one list. Functions return what is wrong with a value.
class Writer {
public:
    using Failure = std::optional<UnwritableValue>;

    explicit Writer(QByteArray* bytes) : xml_(bytes) { xml_.setAutoFormatting(true); }

    Failure write(const QVariant& list) {
        xml_.writeStartDocument();
        xml_.writeDTD(kDocumentType.toString());
        xml_.writeStartElement(QStringLiteral("plist"));
        xml_.writeAttribute(QStringLiteral("version"), QStringLiteral("1.0"));
        Failure failure = writeValue(list);
        xml_.writeEndDocument();
        return failure;
    }

private:
    Failure writeValue(const QVariant& value) {
        switch (value.typeId()) {
        case QMetaType::QVariantMap:
            return writeContainer(value, QStringLiteral("dict"));
        case QMetaType::QVariantList:
            return writeContainer(value, QStringLiteral("array"));
        case QMetaType::QString:
            return writeText(QStringLiteral("string"), value.toString());
        case QMetaType::QByteArray:
            xml_.writeTextElement(QStringLiteral("data"),
                                  QString::fromLatin1(value.toByteArray().toBase64()));
            return std::nullopt;
        case QMetaType::Double:
        case QMetaType::Float:
            xml_.writeTextElement(QStringLiteral("real"),
                                  QString::number(value.toDouble(), 'g', 17));
            return std::nullopt;
        case QMetaType::QDateTime:
            return writeDate(value.toDateTime());
        default:
            return writeInteger(value);
        }
    }

    Failure writeContainer(const QVariant& value, const QString& name) {
        if (depth_ == kMaxPropertyListDepth) {
            return UnwritableValue(QStringLiteral("nested too deeply"),
                                   PropertyListErrorCode::tooLarge);
        }
        ++depth_;
        xml_.writeStartElement(name);
        Failure failure = value.typeId() == QMetaType::QVariantMap ? writeEntries(value.toMap())
                                                                   : writeElements(value.toList());
        xml_.writeEndElement();
        --depth_;
        return failure;
    }

    Failure writeEntries(const QVariantMap& map) {
        for (auto entry = map.cbegin(); entry != map.cend(); ++entry) {
            Failure failure = writeText(QStringLiteral("key"), entry.key());
            if (!failure) {
                failure = writeValue(entry.value());
            }
            if (failure) {
                return std::move(*failure).inEntry(entry.key());
            }
        }
        return std::nullopt;
    }

    Failure writeElements(const QVariantList& list) {
        for (qsizetype i = 0; i < list.size(); ++i) {
            if (Failure failure = writeValue(list.at(i))) {
                return std::move(*failure).inElement(i);
            }
        }
        return std::nullopt;
    }

    // Carriage returns go out as references: readers of XML take plain ones for line feeds.
    Failure writeText(const QString& name, const QString& text) {
        if (!isCarriedByXML(text)) {
            return UnwritableValue(QStringLiteral("text that XML cannot carry"));
        }
        xml_.writeStartElement(name);
        const QList<QStringView> pieces = QStringView(text).split(u'\r');
        for (qsizetype i = 0; i < pieces.size(); ++i) {
            if (i > 0) {
                xml_.writeEntityReference(QStringLiteral("#13"));
            }
            xml_.writeCharacters(pieces.at(i).toString());
        }
        xml_.writeEndElement();
        return std::nullopt;
    }

    static bool isCarriedByXML(QStringView text) {
        return text.isValidUtf16() && std::all_of(text.begin(), text.end(), [](QChar character) {
                   const char16_t unit = character.unicode();
                   return (unit >= 0x20 && unit < 0xFFFE) || unit == u'\t' || unit == u'\n' ||
                          unit == u'\r';
               });
    }

    Failure writeDate(const QDateTime& date) {
        if (!isInRange(date)) {
            return UnwritableValue(QStringLiteral("a date outside the years 1 to 9999"));
        }
        xml_.writeTextElement(QStringLiteral("date"),
                              date.toUTC().toString(QString::fromUtf8(kXMLDateFormat)));
        return std::nullopt;
    }

    Failure writeInteger(const QVariant& value) {
        const std::optional<qlonglong> integer = integerOf(value);
        if (!integer) {
            return UnwritableValue::ofType(value);
        }
        xml_.writeTextElement(QStringLiteral("integer"), QString::number(*integer));
        return std::nullopt;
    }

    QXmlStreamWriter xml_;
    int depth_ = 0;
};

} // namespace

} // namespace propertylist

std::optional<QByteArray> XMLDataWithPropertyList(const QVariant& propertyList,
                                                  std::optional<Error>* error) {
    QByteArray bytes;
    if (const auto failure = propertylist::Writer(&bytes).write(propertyList)) {
        failure->reportTo(error);
        return std::nullopt;
    }
    return bytes;
}

} // namespace navrel
