#include "bench/scanning/PlainPeer.h"

#include "scanning/ShortcutExpression.h"
#include "scanning/SuperclassExpression.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

namespace navrel::bench {

namespace {

[[noreturn]] void failToRead(const QByteArray& path) {
    std::fprintf(stderr, "cannot read %s\n", path.constData());
    std::exit(EXIT_FAILURE);
}

/// The lines of a file, each read from its beginning in pieces of ten bytes.
class LinesByPieces {
public:
    explicit LinesByPieces(const QByteArray& path)
        : descriptor_(::open(path.constData(), O_RDONLY | O_CLOEXEC)) {
        if (descriptor_ < 0) {
            failToRead(path);
        }
        totalLength_ = ::lseek(descriptor_, 0, SEEK_END);
    }
    ~LinesByPieces() { ::close(descriptor_); }
    LinesByPieces(const LinesByPieces&) = delete;
    LinesByPieces& operator=(const LinesByPieces&) = delete;

    /// The next line with its line feed, valid until the next call; nothing at the end.
    std::optional<QByteArrayView> next() {
        if (offset_ >= totalLength_) {
            return std::nullopt;
        }
        ::lseek(descriptor_, offset_, SEEK_SET);
        line_.clear();
        while (offset_ < totalLength_ && !line_.endsWith('\n')) {
            std::array<char, 10> piece;
            const ssize_t count = ::read(descriptor_, piece.data(), piece.size());
            if (count <= 0) {
                return std::nullopt;
            }
            const QByteArrayView bytes(piece.data(), count);
            const qsizetype lineFeed = bytes.indexOf('\n');
            const QByteArrayView taken = lineFeed < 0 ? bytes : bytes.first(lineFeed + 1);
            line_.append(taken);
            offset_ += taken.size();
        }
        return line_;
    }

private:
    const int descriptor_;
    off_t totalLength_ = 0;
    off_t offset_ = 0;
    QByteArray line_;
};

} // namespace

PlainPeer::PlainPeer(Way way) : way_(way) {
    if (way == Way::expressionsKept) {
        kept_.emplace();
    }
}

const SourceFindings& PlainPeer::scan(const QByteArray& path) {
    if (way_ == Way::stepByStep) {
        scanStepByStep(path);
    } else {
        std::optional<PlainScan> made;
        PlainScan& plain = kept_ ? *kept_ : made.emplace();
        plain.scan(textOf(path), SourceName(path), *findings_, std::nullopt);
    }
    return *findings_;
}

void PlainPeer::scanStepByStep(const QByteArray& path) {
    const SourceName name(path);
    findings_->clear();
    if (name.kind() == SourceKind::Header) {
        findSuperclass(path, name);
    }
    findShortcuts(path);
    PlainScan().addElements(textOf(path), name.kind(), *findings_);
}

void PlainPeer::findSuperclass(const QByteArray& path, const SourceName& name) {
    auto expression = SuperclassExpression::forBaseName(name.baseName());
    if (!expression) {
        return;
    }
    LinesByPieces lines(path);
    while (const auto line = lines.next()) {
        if (const auto superclass = expression->superclassOnLine(*line, std::nullopt)) {
            findings_->setSuperclass(findings_->keepText(*superclass));
            return;
        }
    }
}

void PlainPeer::findShortcuts(const QByteArray& path) {
    ShortcutExpression expression;
    LinesByPieces lines(path);
    quint32 number = 0;
    while (const auto line = lines.next()) {
        ++number;
        if (const auto shortcut = expression.shortcutOnLine(*line)) {
            findings_->addShortcut({number, findings_->keepText(*shortcut)});
        }
    }
}

QByteArrayView PlainPeer::textOf(const QByteArray& path) {
    const auto text = buffer_.read(path);
    if (!text) {
        failToRead(path);
    }
    return *text;
}

std::size_t countOf(const SourceFindings& findings) {
    std::size_t count = findings.shortcuts().size() + (findings.superclass() ? 1 : 0);
    findings.visitElements([&count](const SourceElement&) { ++count; });
    return count;
}

} // namespace navrel::bench
