#include "project/ProjectFile.h"
#include "tests/WaitUntil.h"
#include "tests/project/ProjectText.h"

#include <QFile>
#include <QTemporaryDir>
#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/stat.h>

namespace navrel {
namespace {

TEST(ProjectFile, aFileDatedInTheFutureIsNotReadAgainWhileItStays) {
    constexpr time_t kYear2100 = 4'102'444'800;
    const QTemporaryDir folder;
    const QByteArray path = folder.filePath(QStringLiteral("project.pbxproj")).toUtf8();
    QFile file(QString::fromUtf8(path));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(ProjectText().group("MAIN", {}).text());
    file.close();
    const struct timespec times[2]{{kYear2100, 0}, {kYear2100, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, path.constData(), times, 0), 0);

    ProjectFile project;
    EXPECT_TRUE(waitUntil([&] {
        project.read(path);
        const quint64 generation = project.generation();
        project.read(path);
        return project.generation() == generation;
    }));
    EXPECT_EQ(project.rootID(), "MAIN");
}

TEST(ProjectFile, itSaysWhyThereIsNothingToShow) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("project.pbxproj"));
    const auto problemOf = [&](const QByteArray& text) {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        file.close();
        ProjectFile project;
        project.read(path.toUtf8());
        return project.problem().value_or(QStringLiteral("none")).toStdString();
    };
    ProjectFile project;
    project.read(path.toUtf8());
    EXPECT_EQ(project.problem(), QStringLiteral("No such file or directory"));
    project.read(folder.path().toUtf8());
    EXPECT_EQ(project.problem(), QStringLiteral("it is not a regular file"));
    EXPECT_EQ(problemOf(ProjectText().group("MAIN", {}).text()), "none");
    EXPECT_THAT(problemOf(""), ::testing::StartsWith("line 1, column 1: expected"));
    EXPECT_THAT(problemOf("{\n<<<<<<< HEAD"), ::testing::StartsWith("line 2"));
    EXPECT_EQ(problemOf("{ objects = {}; }"), "it names no main group");
}

} // namespace
} // namespace navrel
