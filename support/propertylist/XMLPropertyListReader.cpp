#include "support/propertylist/ASCIIPropertyList.h"
#include "support/propertylist/PropertyListLimits.h"
#include "support/propertylist/PropertyListValues.h"
#include "support/propertylist/XMLEncoding.h"
#include "support/propertylist/XMLPropertyList.h"

#include <QXmlStreamReader>

#include <algorithm>
#include <cctype>
#include <string>

namespace navrel::propertylist {

namespace {

/// The longest tag, or document type. Those of lists have 20 and 110 bytes; the XML reader compares
/// each attribute of a tag with every other one.
constexpr std::size_t kMaxTagBytes = 256;

/// The most tags: a key and a value have one at both ends, and with the list's own and a document
/// type there are fewer than for one value more.
constexpr std::size_t kMaxTags = 4 * (kMaxPropertyListValues + 1);

/// Looks over the tags of a text, from its beginning to where it stops being XML, for what the XML
/// reader is to be spared.
class TagCheck {
public:
    explicit TagCheck(std::string_view text) : text_(text) {}

    std::optional<TextFailure> run() {
        while ((at_ = text_.find('<', at_)) < text_.size()) {
            const std::string_view rest = text_.substr(at_);
            if (rest.starts_with("<!--")) {
                skipPast("-->", 4);
            } else if (rest.starts_with("<![CDATA[")) {
                skipPast("]]>", 9);
            } else if (rest.starts_with("<?")) {
                skipPast("?>", 2);
            } else if (const char* const reason = skipTag(rest.starts_with("<!"))) {
                return TextFailure{at_, PropertyListErrorCode::malformed, reason};
            } else if (++tags_ > kMaxTags) {
                return TextFailure{at_, PropertyListErrorCode::tooLarge,
                                   "the list has too many values"};
            }
        }
        return std::nullopt;
    }

private:
    void skipPast(std::string_view ending, std::size_t from) {
        const std::size_t found = text_.find(ending, at_ + from);
        at_ = found == std::string_view::npos ? text_.size() : found + ending.size();
    }

    // Past a tag or a document type, whose quotes may hold brackets; else what is wrong with it.
    const char* skipTag(bool isDocumentType) {
        char quote = '\0';
        for (std::size_t i = at_; i < text_.size(); ++i) {
            const char byte = text_[i];
            if (i - at_ >= kMaxTagBytes) {
                return "expected a shorter tag";
            }
            if (quote != '\0') {
                quote = byte == quote ? '\0' : quote;
            } else if (byte == '"' || byte == '\'') {
                quote = byte;
            } else if (isDocumentType && byte == '[') {
                return "expected no declarations within the document type";
            } else if (byte == '>') {
                at_ = i;
                return nullptr;
            }
        }
        at_ = text_.size();
        return nullptr;
    }

    std::string_view text_;
    std::size_t at_ = 0;
    std::size_t tags_ = 0;
};

/// Reads the tokens of one list. A failure is raised on the stream reader, which then stands still
/// and keeps the position; functions return an invalid variant after one.
class Reader {
public:
    explicit Reader(const QString& text) : xml_(text) {}

    std::optional<QVariant> read(std::optional<Error>* error) {
        const QVariant list = readRoot();
        if (!xml_.hasError()) {
            return list;
        }
        report(error, code_,
               QStringLiteral("line %1, column %2: %3")
                   .arg(xml_.lineNumber())
                   .arg(xml_.columnNumber() + 1)
                   .arg(xml_.errorString()));
        return std::nullopt;
    }

private:
    QVariant readRoot() {
        if (!readPrologue()) {
            return {};
        }
        if (xml_.name() != QLatin1String("plist")) {
            fail(QStringLiteral("expected <plist>"));
            return {};
        }
        if (!nextElement()) {
            fail(QStringLiteral("expected a value"));
            return {};
        }
        const QVariant list = readValue();
        if (nextElement()) {
            fail(QStringLiteral("expected nothing more after the list"));
        }
        readEpilogue();
        return list;
    }

    // To the outermost element.
    bool readPrologue() {
        while (!xml_.hasError() && !xml_.isStartElement()) {
            xml_.readNext();
        }
        return !xml_.hasError();
    }

    // To the end of the bytes, which may hold a fault yet.
    void readEpilogue() {
        while (!xml_.atEnd()) {
            xml_.readNext();
        }
    }

    // To the next element within the current one; false at its end, and after a failure.
    bool nextElement() {
        while (!xml_.hasError()) {
            switch (xml_.readNext()) {
            case QXmlStreamReader::StartElement:
                return true;
            case QXmlStreamReader::EndElement:
                return false;
            case QXmlStreamReader::Comment:
            case QXmlStreamReader::ProcessingInstruction:
                break;
            default:
                if (!xml_.isWhitespace()) {
                    fail(QStringLiteral("expected an element instead of text"));
                }
            }
        }
        return false;
    }

    // From a start tag to its end tag. Not the stream reader's own function, which passes over
    // references to entities that nobody declared.
    QString readText() {
        QString text;
        while (!xml_.hasError()) {
            switch (xml_.readNext()) {
            case QXmlStreamReader::Characters:
                text += xml_.text();
                break;
            case QXmlStreamReader::EndElement:
                return text;
            case QXmlStreamReader::Comment:
            case QXmlStreamReader::ProcessingInstruction:
                break;
            default:
                fail(QStringLiteral("expected text"));
            }
        }
        return text;
    }

    // From the start tag of a value to its end tag.
    QVariant readValue() {
        if (++values_ > kMaxPropertyListValues) {
            fail(QStringLiteral("the list has too many values"), PropertyListErrorCode::tooLarge);
            return {};
        }
        const QStringView name = xml_.name();
        if (name == QLatin1String("dict") || name == QLatin1String("array")) {
            return readContainer(name == QLatin1String("dict"));
        }
        return readScalar(name.toString());
    }

    QVariant readContainer(bool isDictionary) {
        if (depth_ == kMaxPropertyListDepth) {
            fail(QStringLiteral("arrays and dictionaries are nested too deeply"),
                 PropertyListErrorCode::tooLarge);
            return {};
        }
        ++depth_;
        QVariant container = isDictionary ? QVariant(readEntries()) : QVariant(readElements());
        --depth_;
        return container;
    }

    QVariantList readElements() {
        QVariantList list;
        while (nextElement()) {
            list.append(readValue());
        }
        return list;
    }

    QVariantMap readEntries() {
        QVariantMap map;
        while (nextElement()) {
            if (xml_.name() != QLatin1String("key")) {
                fail(QStringLiteral("expected a key"));
                break;
            }
            const QString key = readText();
            if (!nextElement()) {
                fail(QStringLiteral("expected a value after a key"));
                break;
            }
            map.insert(key, readValue());
        }
        return map;
    }

    QVariant readScalar(const QString& name) {
        const QString text = readText();
        if (xml_.hasError()) {
            return {};
        }
        QVariant value;
        if (name == QLatin1String("string")) {
            value = text;
        } else if (name == QLatin1String("integer")) {
            value = integerOfText(text.trimmed());
        } else if (name == QLatin1String("real")) {
            value = realOfText(text.trimmed());
        } else if (name == QLatin1String("true") || name == QLatin1String("false")) {
            value = name == QLatin1String("true");
        } else if (name == QLatin1String("date")) {
            value = dateOfText(text.trimmed());
        } else if (name == QLatin1String("data")) {
            value = dataOfText(text);
        } else {
            fail(QStringLiteral("expected a value instead of <%1>").arg(name));
            return {};
        }
        if (!value.isValid()) {
            fail(QStringLiteral("expected the text of <%1>").arg(name));
        }
        return value;
    }

    static QVariant integerOfText(const QString& text) {
        const bool isHexadecimal = text.startsWith(QLatin1String("0x"), Qt::CaseInsensitive);
        bool isNumber = false;
        const qlonglong number = text.toLongLong(&isNumber, isHexadecimal ? 16 : 10);
        return isNumber ? QVariant(number) : QVariant();
    }

    static QVariant realOfText(const QString& text) {
        bool isNumber = false;
        const double number = text.toDouble(&isNumber);
        return isNumber ? QVariant(number) : QVariant();
    }

    static QVariant dateOfText(const QString& text) {
        const QDateTime date = QDateTime::fromString(text, Qt::ISODate);
        return isInRange(date) && date.toString(QString::fromUtf8(kXMLDateFormat)) == text
                   ? QVariant(date)
                   : QVariant();
    }

    static QVariant dataOfText(const QString& text) {
        QByteArray digits = text.toUtf8();
        digits.removeIf([](char byte) { return std::isspace(static_cast<unsigned char>(byte)); });
        const auto data =
            QByteArray::fromBase64Encoding(digits, QByteArray::AbortOnBase64DecodingErrors);
        return data ? QVariant(*data) : QVariant();
    }

    // The first failure stands.
    void fail(const QString& expected,
              PropertyListErrorCode code = PropertyListErrorCode::malformed) {
        if (!xml_.hasError()) {
            xml_.raiseError(expected);
            code_ = code;
        }
    }

    QXmlStreamReader xml_;
    PropertyListErrorCode code_ = PropertyListErrorCode::malformed;
    std::size_t values_ = 0;
    int depth_ = 0;
};

} // namespace

namespace {

bool beginsLikeXML(std::string_view bytes) {
    if (bytes.starts_with(kByteOrderMark)) {
        bytes.remove_prefix(kByteOrderMark.size());
    }
    bytes.remove_prefix(std::min(bytes.find_first_not_of(kASCIIWhiteSpace), bytes.size()));
    return bytes.starts_with("<?") || bytes.starts_with("<!") || bytes.starts_with("<plist");
}

std::optional<QVariant> readUTF8(const QByteArray& bytes, std::optional<Error>* error) {
    const std::string_view text(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    std::optional<TextFailure> failure = checkUTF8(text);
    if (!failure) {
        failure = TagCheck(text).run();
    }
    if (failure) {
        if (error != nullptr) {
            *error = errorOfFailure(*failure, text);
        }
        return std::nullopt;
    }
    return Reader(QString::fromUtf8(bytes)).read(error);
}

} // namespace

bool isXML(std::string_view bytes) {
    if (otherEncodingOfXML(bytes).startsWith("UTF")) {
        // Of units of two or four bytes, those that XML begins with have one that is not null.
        constexpr std::size_t kEnoughToTell = 256;
        std::string beginning(bytes.substr(0, kEnoughToTell));
        std::erase_if(beginning,
                      [](char byte) { return byte == '\0' || byte == '\xFE' || byte == '\xFF'; });
        return beginsLikeXML(beginning);
    }
    return beginsLikeXML(bytes);
}

std::optional<QVariant> readXML(const QByteArray& bytes, std::optional<Error>* error) {
    if (static_cast<std::size_t>(bytes.size()) > kMaxPropertyListBytes) {
        report(error, PropertyListErrorCode::tooLarge,
               QStringLiteral("the list has too many bytes"));
        return std::nullopt;
    }
    const QByteArray encoding =
        otherEncodingOfXML({bytes.constData(), static_cast<std::size_t>(bytes.size())});
    if (encoding.isEmpty()) {
        return readUTF8(bytes, error);
    }
    const auto text = toUTF8({bytes.constData(), static_cast<std::size_t>(bytes.size())}, encoding);
    if (!text) {
        report(error, PropertyListErrorCode::malformed,
               QStringLiteral("the list is not in %1").arg(QString::fromLatin1(encoding)));
        return std::nullopt;
    }
    return readUTF8(*text, error);
}

} // namespace navrel::propertylist
