#include "support/files/FileDates.h"
#include "support/files/RegularFile.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <sys/stat.h>

namespace navrel {
namespace {

class RegularFileTest : public ::testing::Test {
protected:
    QByteArray path(const char* name) const {
        return folder_.filePath(QString::fromUtf8(name)).toUtf8();
    }
    QByteArray write(const char* name, const QByteArray& bytes,
                     QIODevice::OpenMode mode = QIODevice::WriteOnly) {
        QFile file(QString::fromUtf8(path(name)));
        EXPECT_TRUE(file.open(mode));
        EXPECT_EQ(file.write(bytes), bytes.size());
        return path(name);
    }

    QTemporaryDir folder_;
};

TEST_F(RegularFileTest, theContentOfAFileUpToALimit) {
    const QByteArray file = write("a", "12345");
    EXPECT_EQ(RegularFile::content(file, 5), "12345");
    EXPECT_EQ(RegularFile::content(file, 4), std::nullopt);
    EXPECT_EQ(RegularFile::content(write("empty", ""), 0), "");
}

TEST_F(RegularFileTest, whatIsNoRegularFileIsNotOpened) {
    ASSERT_EQ(::mkfifo(path("pipe").constData(), 0600), 0);
    const QByteArray file = write("a", "x");
    for (const QByteArray& other : {path("pipe"), path("missing"), path("."), QByteArray(),
                                    file + QByteArray(1, '\0'), file + "/"}) {
        EXPECT_EQ(RegularFile::content(other, 5), std::nullopt) << other.toStdString();
    }
}

TEST_F(RegularFileTest, aFileThatGrowsIsReadToItsEndWithinTheLimit) {
    const QByteArray more(20'000, 'y');
    const auto file = RegularFile::open(write("a", "x"));
    ASSERT_TRUE(file.has_value());
    write("a", more, QIODevice::Append);
    EXPECT_EQ(file->size(), 1U);
    EXPECT_EQ(file->readAll(20'001), "x" + more);
    EXPECT_EQ(file->readAll(20'000), std::nullopt);
}

TEST_F(RegularFileTest, aFileThatWasCutCannotBeRead) {
    const auto file = RegularFile::open(write("a", "12345"));
    ASSERT_TRUE(file.has_value());
    write("a", "123");
    EXPECT_EQ(file->readAll(10), std::nullopt);
    EXPECT_EQ(file->status().value().st_size, 3);
}

TEST(FileDates, aFileIsSettledTwoStepsOfItsDateLater) {
    constexpr qint64 kSecond = 1'000'000'000;
    constexpr qint64 kTick = 10'000'000;
    const qint64 fine = 1'600'000'000 * kSecond + 1;
    EXPECT_FALSE(isSettled(fine, fine + 2 * kTick));
    EXPECT_TRUE(isSettled(fine, fine + 2 * kTick + 1));
    const qint64 coarse = 1'600'000'000 * kSecond;
    EXPECT_FALSE(isSettled(coarse, coarse + 4 * kSecond));
    EXPECT_TRUE(isSettled(coarse, coarse + 4 * kSecond + 1));
    EXPECT_FALSE(isSettled(fine, fine - kSecond)); // a date in the future
}

} // namespace
} // namespace navrel
