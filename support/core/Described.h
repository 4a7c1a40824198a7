#pragma once

#include <QString>

#include <utility>

namespace navrel {

/// An object that people attach to another one and that the log can name. Compared by identity
/// where the owner says so, which is why it travels as a shared pointer and never as a copy.
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

/// A text as an object.
class DescribedText final : public Described {
public:
    explicit DescribedText(QString text) : text_(std::move(text)) {}
    QString description() const override { return text_; }

private:
    QString text_;
};

} // namespace navrel
