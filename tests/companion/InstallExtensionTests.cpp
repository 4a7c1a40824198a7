#include "companion/InstallExtension.h"
#include "tests/RecordingTool.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

namespace navrel {
namespace {

/// The extension where the build puts it, beside the folder of the programs; empty as none is
/// installed here.
class BuiltExtension {
public:
    BuiltExtension()
        : path_(QDir::cleanPath(QCoreApplication::applicationDirPath() +
                                QStringLiteral("/../navrel.vsix"))),
          wasThere_(QFile::exists(path_)) {
        QFile file(path_);
        EXPECT_TRUE(wasThere_ || file.open(QIODevice::WriteOnly));
    }
    ~BuiltExtension() {
        if (!wasThere_) {
            QFile::remove(path_);
        }
    }
    BuiltExtension(const BuiltExtension&) = delete;
    BuiltExtension& operator=(const BuiltExtension&) = delete;

    QByteArray path() const { return path_.toUtf8(); }

private:
    const QString path_;
    const bool wasThere_;
};

TEST(InstallExtension, theEditorsOwnInstallerIsGivenThePackage) {
    const BuiltExtension extension;
    const RecordingTool editor(QStringLiteral("codium"));
    EXPECT_EQ(runInstallExtension(), 0);
    EXPECT_EQ(editor.arguments(), QByteArrayList({"--install-extension", extension.path()}));
}

TEST(InstallExtension, withoutAnEditorItFails) {
    const BuiltExtension extension;
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", "/nonexistent");
    EXPECT_EQ(runInstallExtension(), 1);
    qputenv("PATH", path);
}

} // namespace
} // namespace navrel
