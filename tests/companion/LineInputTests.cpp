#include "companion/terminal/LineInput.h"

#include <QTemporaryFile>
#include <gtest/gtest.h>

#include <array>
#include <unistd.h>

namespace navrel {
namespace {

/// A pipe whose writing end is closed once the text is in it.
class Pipe {
public:
    explicit Pipe(const QByteArray& text) {
        EXPECT_EQ(::pipe(ends_.data()), 0);
        EXPECT_EQ(::write(ends_[1], text.constData(), static_cast<size_t>(text.size())),
                  text.size());
        ::close(ends_[1]);
    }
    ~Pipe() { ::close(ends_[0]); }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    int readingEnd() const { return ends_[0]; }

private:
    std::array<int, 2> ends_ = {};
};

TEST(LineInput, linesComeOneByOneAndTheLastNeedsNoLineFeed) {
    const Pipe pipe("tree\n\nls ID");
    LineInput input(pipe.readingEnd());

    EXPECT_EQ(input.next(), QStringLiteral("tree"));
    EXPECT_EQ(input.next(), QStringLiteral(""));
    EXPECT_EQ(input.next(), QStringLiteral("ls ID"));
    EXPECT_EQ(input.next(), std::nullopt);
    EXPECT_EQ(input.next(), std::nullopt);
}

TEST(LineInput, anEmptyInputEndsAtOnce) {
    const Pipe pipe("");
    EXPECT_EQ(LineInput(pipe.readingEnd()).next(), std::nullopt);
}

TEST(LineInput, aPlainFileIsReadLikeAPipe) {
    QTemporaryFile file;
    ASSERT_TRUE(file.open());
    file.write("types\nquit\n");
    file.seek(0);
    LineInput input(file.handle());

    EXPECT_EQ(input.next(), QStringLiteral("types"));
    EXPECT_EQ(input.next(), QStringLiteral("quit"));
    EXPECT_EQ(input.next(), std::nullopt);
}

TEST(LineInput, aLineWithoutEndIsCut) {
    QTemporaryFile file;
    ASSERT_TRUE(file.open());
    file.write(QByteArray(1'000'000, 'x'));
    file.seek(0);
    LineInput input(file.handle());

    const auto line = input.next();
    ASSERT_TRUE(line.has_value());
    EXPECT_LT(line->size(), 100'000);
}

} // namespace
} // namespace navrel
