#pragma once

#include <QString>

#include <memory>
#include <optional>

namespace navrel {

/// Domain of the errors whose code is an errno value.
extern const QString kPOSIXErrorDomain;

/// What went wrong: a code, the domain in which that code has its meaning, and texts for users. A
/// value; "no error" is an empty optional.
class Error {
public:
    Error(QString domain, qint64 code);
    Error(QString domain, qint64 code, QString localizedDescription);

    /// An error of the POSIX domain, described by the system's text for the errno value.
    static Error posix(int errnoValue);

    const QString& domain() const { return domain_; }
    qint64 code() const { return code_; }

    /// Text for users; nil for errors that carry only a code.
    const std::optional<QString>& localizedDescription() const { return localizedDescription_; }

    const std::optional<QString>& localizedFailureReason() const { return failureReason_; }
    void setLocalizedFailureReason(QString reason) { failureReason_ = std::move(reason); }

    /// What the user can do about it. Windows show it; `description` leaves it out.
    const std::optional<QString>& localizedRecoverySuggestion() const { return suggestion_; }
    void setLocalizedRecoverySuggestion(QString suggestion) { suggestion_ = std::move(suggestion); }

    /// The error that caused this one, or null. Valid as long as this error.
    const Error* underlyingError() const { return underlying_.get(); }
    void setUnderlyingError(Error cause);

    bool isPOSIX(int errnoValue) const;

    /// One line for the log, with reason and cause: `Error Domain=D Code=N "text"`.
    QString description() const;

private:
    QString domain_;
    qint64 code_;
    std::optional<QString> localizedDescription_;
    std::optional<QString> failureReason_;
    std::optional<QString> suggestion_;
    std::shared_ptr<const Error> underlying_;
};

/// Whether domain and code are the same; texts and causes are not compared.
bool operator==(const Error& left, const Error& right);

/// The outcome of a system call: nil for 0, otherwise the POSIX error of the errno value.
std::optional<Error> errorFromErrno(int errnoValue);

} // namespace navrel
