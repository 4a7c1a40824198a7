#pragma once

#include <QString>

#include <utility>

namespace navrel {

/// An object that can be attached to another one, and that the log can name. Some owners compare
/// such objects by identity: pass them on as shared pointers, never as copies.
class Described {
public:
    virtual ~Described() = default;

    /// Text for the log.
    virtual QString description() const = 0;

protected:
    Described() = default;
    Described(const Described&) = default;
    Described& operator=(const Described&) = default;
};

/// A text to attach to an object.
class DescribedText final : public Described {
public:
    explicit DescribedText(QString text) : text_(std::move(text)) {}
    QString description() const override { return text_; }

private:
    QString text_;
};

} // namespace navrel
