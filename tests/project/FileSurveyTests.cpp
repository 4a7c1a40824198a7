#include "project/FileSurvey.h"
#include "support/files/FileDates.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <climits>
#include <fcntl.h>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace navrel {
namespace {

class FileSurveyTest : public ::testing::Test {
protected:
    QByteArray path(const char* name) const {
        return (folder_.path() + QLatin1Char('/')).toUtf8() + name;
    }

    QByteArray make(const char* name) const {
        const QByteArray result = path(name);
        QDir().mkpath(QString::fromUtf8(result.first(result.lastIndexOf('/'))));
        QFile file(QString::fromUtf8(result));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.close();
        setDate(result, 1'600'000'000);
        return result;
    }

    static void setDate(const QByteArray& file, qint64 seconds) {
        const struct timespec times[2]{{seconds, 5}, {seconds, 5}};
        ASSERT_EQ(::utimensat(AT_FDCWD, file.constData(), times, 0), 0);
    }

    QTemporaryDir folder_;
    FileSurvey survey_;
};

TEST_F(FileSurveyTest, datesAreExactAndMissingFilesHaveNone) {
    EXPECT_EQ(survey_.modificationDate(make("a")), 1'600'000'000'000'000'005);
    EXPECT_EQ(survey_.modificationDate(path("missing")), std::nullopt);
    EXPECT_EQ(survey_.modificationDate(path("a/below a file")), std::nullopt);
    EXPECT_TRUE(survey_.exists(path("a")));
    EXPECT_FALSE(survey_.exists(path("missing")));
}

TEST_F(FileSurveyTest, datesCenturiesAwayAreToldApart) {
    struct stat status = {};
    status.st_mtim.tv_sec = std::numeric_limits<time_t>::max();
    const qint64 latest = modificationDateIn(status);
    status.st_mtim.tv_sec -= 1;
    EXPECT_NE(modificationDateIn(status), latest);
}

TEST(FileDates, aDateOfWholeSecondsMayStandForTwoOfThem) {
    EXPECT_EQ(longestStepOfDate(1'600'000'000'010'000'000), 10'000'000);
    EXPECT_EQ(longestStepOfDate(1'600'000'000'000'000'001), 10'000'000);
    EXPECT_EQ(longestStepOfDate(1'600'000'000'000'000'000), 2'000'000'000);
    EXPECT_EQ(longestStepOfDate(0), 2'000'000'000);
}

TEST_F(FileSurveyTest, pathsThatCanNameNoFileAreMissing) {
    make("a");
    for (const QByteArray& impossible :
         {QByteArray(""), path("a") + '\0' + "b", path("") + QByteArray(PATH_MAX, 'a')}) {
        EXPECT_FALSE(survey_.exists(impossible));
    }
    EXPECT_EQ(survey_.size(), 0U);
    EXPECT_TRUE(survey_.stillHolds());
}

TEST_F(FileSurveyTest, eachPathIsAskedAboutOnce) {
    const QByteArray file = make("a");
    EXPECT_TRUE(survey_.exists(file));
    QFile::remove(QString::fromUtf8(file));
    EXPECT_TRUE(survey_.exists(file));
    survey_.clear();
    EXPECT_FALSE(survey_.exists(file));
}

TEST_F(FileSurveyTest, itHoldsUntilAnyOneAnswerIsAnother) {
    std::vector<QByteArray> files;
    for (const char* name : {"a", "b/c", "b/d/e", "b/f", "g/h/i", "j"}) {
        files.push_back(make(name));
        EXPECT_TRUE(survey_.exists(files.back()));
    }
    for (const char* folder : {"b", "g/h"}) {
        files.push_back(path(folder));
        EXPECT_TRUE(survey_.exists(files.back()));
    }
    EXPECT_FALSE(survey_.exists(path("b/missing")));
    EXPECT_FALSE(survey_.exists(path("nowhere/missing")));
    ASSERT_TRUE(survey_.stillHolds());

    for (const QByteArray& file : files) {
        SCOPED_TRACE(file.toStdString());
        const qint64 before = *survey_.modificationDate(file) / 1'000'000'000;
        setDate(file, 1'500'000'000);
        EXPECT_FALSE(survey_.stillHolds());
        const qint64 date = *survey_.modificationDate(file);
        const struct timespec times[2]{{before, date % 1'000'000'000},
                                       {before, date % 1'000'000'000}};
        ASSERT_EQ(::utimensat(AT_FDCWD, file.constData(), times, 0), 0);
        EXPECT_TRUE(survey_.stillHolds());
    }
}

TEST_F(FileSurveyTest, itNoticesWhatAppearsAndWhatGoes) {
    const QByteArray file = make("a/b");
    EXPECT_TRUE(survey_.exists(file));
    EXPECT_FALSE(survey_.exists(path("c/d")));
    ASSERT_TRUE(survey_.stillHolds());

    make("c/d");
    EXPECT_FALSE(survey_.stillHolds());
    ASSERT_TRUE(QDir(QString::fromUtf8(path("c"))).removeRecursively());
    EXPECT_TRUE(survey_.stillHolds());

    ASSERT_TRUE(QDir(QString::fromUtf8(path("a"))).removeRecursively());
    EXPECT_FALSE(survey_.stillHolds());
}

TEST_F(FileSurveyTest, itNoticesAFileInPlaceOfAFolderAndTheReverse) {
    const QByteArray below = make("a/b");
    const QByteArray folder = path("a");
    EXPECT_TRUE(survey_.exists(folder));
    EXPECT_TRUE(survey_.exists(below));
    setDate(folder, 1'600'000'000);
    survey_.clear();
    EXPECT_TRUE(survey_.exists(folder));
    EXPECT_FALSE(survey_.exists(path("a/missing")));
    ASSERT_TRUE(survey_.stillHolds());
    ASSERT_TRUE(QDir(QString::fromUtf8(folder)).removeRecursively());
    EXPECT_FALSE(survey_.stillHolds());
    // The same date, and still nothing below.
    make("a");
    EXPECT_TRUE(survey_.stillHolds());
}

TEST_F(FileSurveyTest, aQuestionAfterARepetitionIsRepeatedToo) {
    const QByteArray first = make("a");
    const QByteArray second = make("b");
    EXPECT_TRUE(survey_.exists(first));
    ASSERT_TRUE(survey_.stillHolds());
    EXPECT_TRUE(survey_.exists(second));
    ASSERT_TRUE(survey_.stillHolds());
    setDate(second, 1);
    EXPECT_FALSE(survey_.stillHolds());
}

TEST_F(FileSurveyTest, oddPathsAreResolvedAsTheSystemDoes) {
    make("a/b");
    make("a/c/d");
    ASSERT_EQ(::symlink("a", path("link").constData()), 0);
    // A path from the working directory, too.
    const QByteArray relative = "../../../../../../../../../.." + path("a/b");
    for (const QByteArray& odd :
         {path("a/../a/b"), path("a//b"), path("a//c/d"), path("a/"), path("a/."), path("a/.."),
          path("link"), path("link/b"), path("link/c/d"), QByteArray("/"), QByteArray("."),
          relative, path("a")}) {
        SCOPED_TRACE(odd.toStdString());
        struct stat status = {};
        ASSERT_EQ(::stat(odd.constData(), &status), 0);
        EXPECT_EQ(survey_.modificationDate(odd), modificationDateIn(status));
    }
    EXPECT_TRUE(survey_.stillHolds());
    setDate(path("a/c/d"), 1);
    EXPECT_FALSE(survey_.stillHolds());
}

TEST_F(FileSurveyTest, aRepetitionLeavesNoDescriptorOpen) {
    QByteArray deep;
    for (int level = 0; level < 100; ++level) {
        deep += "d/";
        EXPECT_TRUE(survey_.exists(make((deep + "file").constData())));
    }
    const int before = ::dup(STDERR_FILENO);
    ::close(before);
    ASSERT_TRUE(survey_.stillHolds());
    const int after = ::dup(STDERR_FILENO);
    ::close(after);
    EXPECT_EQ(after, before);
}

} // namespace
} // namespace navrel
