#include "project/ProjectFile.h"
#include "tests/WaitUntil.h"
#include "tests/project/ProjectText.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

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

} // namespace
} // namespace navrel
