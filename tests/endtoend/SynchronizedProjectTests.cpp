// The real program on a project that names folders instead of files, seen by a device.

#include "tests/SmallProject.h"
#include "tests/TestDevice.h"
#include "tests/WaitUntil.h"
#include "tests/endtoend/NavrelProcess.h"

#include <QDir>
#include <QStringList>
#include <QVariantList>
#include <gtest/gtest.h>

namespace navrel {
namespace {

class SynchronizedProjectTest : public ::testing::Test {
protected:
    void SetUp() override {
        QDir(project_.folder()).mkpath(QStringLiteral("App/Views/Deep"));
        project_.writeFile(QStringLiteral("App/Tide.h"), "@interface Tide : Base\n@end\n");
        project_.writeFile(QStringLiteral("App/Tide.m"),
                           "// navrel: high water\n- (void)rise {\n}\n");
        project_.writeFile(QStringLiteral("App/Views/Deep/Ebb.swift"), "class Ebb {}\n");
        project_.writeFile(QStringLiteral("App.xcodeproj/project.pbxproj"),
                           "// !$*UTF8*$!\n{ objects = {\n"
                           "  PROJ = {isa = PBXProject; mainGroup = MAIN; };\n"
                           "  MAIN = {isa = PBXGroup; name = App; children = (SYNC); };\n"
                           "  SYNC = {isa = PBXFileSystemSynchronizedRootGroup; path = App;"
                           " sourceTree = \"<group>\"; };\n"
                           "}; rootObject = PROJ; }\n");
        navrel_.setLastKnownProject(project_.bundle());
        ASSERT_TRUE(device_.listen());
        ASSERT_TRUE(navrel_.start());
        ASSERT_TRUE(device_.waitForConnection());
        ASSERT_TRUE(device_.waitUntilServed());
        ASSERT_TRUE(waitUntil([this] { return device_.ask(202).has_value(); }));
    }

    static QString textIn(const QVariant& item, const char* key) {
        return item.toMap().value(QLatin1String(key)).toString();
    }

    QVariantList items(quint32 request, const QVariantMap& dictionary = {}) {
        return device_.ask(request, dictionary)
            .value_or(QVariantMap())
            .value(QStringLiteral("items"))
            .toList();
    }

    /// What the device shows below a group, as it opens one group after the other.
    QStringList tree(const QVariantList& group, const QString& before = {}) {
        QStringList lines;
        for (const QVariant& item : group) {
            const QString line = before + textIn(item, "name");
            lines.append(line);
            if (item.toMap().value(QStringLiteral("isGroup")).toInt() == 1) {
                lines +=
                    tree(items(200, {{QStringLiteral("identifier"), textIn(item, "identifier")}}),
                         line + u'/');
            }
        }
        return lines;
    }

    bool waitForTree(const QStringList& wanted) {
        return waitUntil([&] { return tree(items(202)) == wanted; });
    }

    /// One text of each item of a view.
    QStringList texts(quint32 request, const char* key) {
        QStringList found;
        for (const QVariant& item : items(request)) {
            found.append(textIn(item, key));
        }
        return found;
    }

    SmallProject project_;
    NavrelProcess navrel_;
    TestDevice device_;
};

TEST_F(SynchronizedProjectTest, theDeviceShowsItWhole) {
    EXPECT_TRUE(waitForTree({QStringLiteral("App"), QStringLiteral("App/Tide.h"),
                             QStringLiteral("App/Tide.m"), QStringLiteral("App/Views"),
                             QStringLiteral("App/Views/Deep"),
                             QStringLiteral("App/Views/Deep/Ebb.swift")}));
    EXPECT_EQ(texts(205, "extension"),
              (QStringList{QStringLiteral("h"), QStringLiteral("m"), QStringLiteral("swift")}));
    EXPECT_TRUE(waitUntil([&] { return items(203).size() == 1; }));
}

TEST_F(SynchronizedProjectTest, aFileInItHasItsElements) {
    const auto elements = [this] {
        const QVariantList root = items(202);
        const QString folder = root.isEmpty() ? QString() : textIn(root.first(), "identifier");
        const QVariantList files = items(200, {{QStringLiteral("identifier"), folder}});
        const QString file = files.size() > 1 ? textIn(files[1], "identifier") : QString();
        return items(204, {{QStringLiteral("identifier"), file}});
    };
    ASSERT_TRUE(waitUntil([&] { return elements().size() == 2; }));
    EXPECT_EQ(textIn(elements().last(), "name"), QStringLiteral("-rise"));
}

TEST_F(SynchronizedProjectTest, aSwitchedOffTypeIsHiddenInItsFolders) {
    device_.ask(
        206, {{QStringLiteral("extension"), QStringLiteral("m")}, {QStringLiteral("allowed"), 0}});
    EXPECT_TRUE(waitForTree({QStringLiteral("App"), QStringLiteral("App/Tide.h"),
                             QStringLiteral("App/Views"), QStringLiteral("App/Views/Deep"),
                             QStringLiteral("App/Views/Deep/Ebb.swift")}));
}

TEST_F(SynchronizedProjectTest, filesOnDiskComeAndGo) {
    project_.writeFile(QStringLiteral("App/Views/Flood.swift"), "class Flood {}\n");
    project_.removeFile(QStringLiteral("App/Tide.m"));
    EXPECT_TRUE(waitForTree({QStringLiteral("App"), QStringLiteral("App/Tide.h"),
                             QStringLiteral("App/Views"), QStringLiteral("App/Views/Deep"),
                             QStringLiteral("App/Views/Deep/Ebb.swift"),
                             QStringLiteral("App/Views/Flood.swift")}));
}

} // namespace
} // namespace navrel
