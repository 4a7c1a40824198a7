#pragma once

#include <QString>

#include <memory>
#include <optional>

namespace navrel {

/// Domain of the errors whose code is an errno value.
extern const QString kPOSIXErrorDomain;

/// What went wrong: a domain that names the vocabulary, a code within it, and texts for people.
/// A value; "no error" is an empty optional.
class Error {
public:
    Error(QString domain, qint64 code);
    Error(QString domain, qint64 code, QString localizedDescription);

    /// An error of the POSIX domain; the system's text of the errno value is its description.
    static Error posix(int errnoValue);

    const QString& domain() const { return domain_; }
    qint64 code() const { return code_; }

    /// Text for people; none for errors that carry only a code.
    const std::optional<QString>& localizedDescription() const { return localizedDescription_; }

    const std::optional<QString>& localizedFailureReason() const { return failureReason_; }
    void setLocalizedFailureReason(QString reason) { failureReason_ = std::move(reason); }

    /// What the user can do about it. For windows: the log goes without.
    const std::optional<QString>& localizedRecoverySuggestion() const { return suggestion_; }
    void setLocalizedRecoverySuggestion(QString suggestion) { suggestion_ = std::move(suggestion); }

    /// The error that caused this one, or null.
    const Error* underlyingError() const { return underlying_.get(); }
    void setUnderlyingError(Error cause);

    bool isPOSIX(int errnoValue) const;

    /// One line with everything, for the log: `Error Domain=D Code=N "text"`.
    QString description() const;

private:
    QString domain_;
    qint64 code_;
    std::optional<QString> localizedDescription_;
    std::optional<QString> failureReason_;
    std::optional<QString> suggestion_;
    std::shared_ptr<const Error> underlying_;
};

/// Same domain and same code: texts and causes do not count.
bool operator==(const Error& left, const Error& right);

/// The outcome of a system call: nothing for 0, else the POSIX error of the errno value.
std::optional<Error> errorFromErrno(int errnoValue);

} // namespace navrel
