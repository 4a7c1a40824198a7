#include "support/core/Error.h"

#include <QString>

#include <system_error>
#include <utility>

namespace navrel {

const QString kPOSIXErrorDomain = QStringLiteral("NSPOSIXErrorDomain");

Error::Error(QString domain, qint64 code) : domain_(std::move(domain)), code_(code) {}

Error::Error(QString domain, qint64 code, QString localizedDescription)
    : domain_(std::move(domain)), code_(code),
      localizedDescription_(std::move(localizedDescription)) {}

Error Error::posix(int errnoValue) {
    return {kPOSIXErrorDomain, errnoValue,
            QString::fromStdString(std::generic_category().message(errnoValue))};
}

void Error::setUnderlyingError(Error cause) {
    underlying_ = std::make_shared<const Error>(std::move(cause));
}

bool Error::isPOSIX(int errnoValue) const {
    return domain_ == kPOSIXErrorDomain && code_ == errnoValue;
}

QString Error::description() const {
    QString text = QStringLiteral("Error Domain=%1 Code=%2").arg(domain_).arg(code_);
    if (localizedDescription_) {
        text += QStringLiteral(" \"%1\"").arg(*localizedDescription_);
    }
    if (failureReason_) {
        text += QStringLiteral(" Reason=\"%1\"").arg(*failureReason_);
    }
    if (underlying_) {
        text += QStringLiteral(" Underlying={%1}").arg(underlying_->description());
    }
    return text;
}

bool operator==(const Error& left, const Error& right) {
    return left.code() == right.code() && left.domain() == right.domain();
}

std::optional<Error> errorFromErrno(int errnoValue) {
    if (errnoValue == 0) {
        return std::nullopt;
    }
    return Error::posix(errnoValue);
}

} // namespace navrel
