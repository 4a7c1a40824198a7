#include "support/propertylist/XMLEncoding.h"

#include <unicode/ucnv.h>

#include <algorithm>
#include <array>
#include <limits>
#include <memory>
#include <utility>

namespace navrel::propertylist {

namespace {

using namespace std::string_view_literals;

/// Beginnings that no text in UTF-8 has, the longer ones first.
constexpr std::array<std::pair<std::string_view, const char*>, 6> kWideBeginnings{{
    {"\xFF\xFE\0\0"sv, "UTF-32LE"},
    {"\0\0\xFE\xFF"sv, "UTF-32BE"},
    {"\xFF\xFE"sv, "UTF-16LE"},
    {"\xFE\xFF"sv, "UTF-16BE"},
    {"<\0"sv, "UTF-16LE"},
    {"\0<"sv, "UTF-16BE"},
}};

/// A declaration is shorter.
constexpr std::size_t kLongestDeclaration = 128;

/// What a declaration says about the encoding, in lower case; empty where it says nothing.
QByteArray declaredEncoding(std::string_view bytes) {
    const std::string_view declaration =
        bytes.substr(0, std::min(bytes.find("?>"), kLongestDeclaration));
    std::size_t at = declaration.starts_with("<?xml") ? declaration.find("encoding") : bytes.npos;
    at = at == bytes.npos ? at : declaration.find_first_of("'\"", at);
    if (at == bytes.npos) {
        return {};
    }
    const std::size_t end = declaration.find(declaration[at], at + 1);
    if (end == bytes.npos) {
        return {};
    }
    const std::string_view name = declaration.substr(at + 1, end - at - 1);
    return QByteArray(name.data(), static_cast<qsizetype>(name.size())).toLower();
}

struct Closer {
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};

} // namespace

QByteArray otherEncodingOfXML(std::string_view bytes) {
    for (const auto& [beginning, encoding] : kWideBeginnings) {
        if (bytes.starts_with(beginning)) {
            return encoding;
        }
    }
    QByteArray declared = declaredEncoding(bytes);
    return declared.startsWith("utf") || declared.startsWith("ucs") ? QByteArray() : declared;
}

std::optional<QByteArray> toUTF8(std::string_view bytes, const QByteArray& encoding) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UConverter, Closer> converter(ucnv_open(encoding.constData(), &status));
    if (U_FAILURE(status) || bytes.size() > std::size_t(std::numeric_limits<int32_t>::max())) {
        return std::nullopt;
    }
    ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr,
                        &status);
    const auto size = static_cast<int32_t>(bytes.size());
    // No encoding makes more than two units of a byte.
    QString text(qsizetype{2} * size + 1, Qt::Uninitialized);
    const int32_t length = ucnv_toUChars(
        converter.get(), reinterpret_cast<UChar*>(text.data()),
        static_cast<int32_t>(std::min<qsizetype>(text.size(), std::numeric_limits<int32_t>::max())),
        bytes.data(), size, &status);
    if (U_FAILURE(status)) {
        return std::nullopt;
    }
    text.truncate(length);
    constexpr QChar kByteOrderMark(0xFEFF);
    return (text.startsWith(kByteOrderMark) ? text.sliced(1) : text).toUtf8();
}

} // namespace navrel::propertylist
