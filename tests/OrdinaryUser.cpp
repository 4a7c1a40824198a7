#include "tests/OrdinaryUser.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

#include <unistd.h>

namespace navrel {

namespace {

constexpr uid_t kNobody = 65534;

void give(const QString& path) {
    EXPECT_EQ(::chown(QFile::encodeName(path).constData(), kNobody, static_cast<gid_t>(-1)), 0);
}

} // namespace

OrdinaryUser::OrdinaryUser(const QString& folder) : wasSuperuser_(::geteuid() == 0) {
    if (wasSuperuser_) {
        give(folder);
        const QDir files(folder);
        for (const QString& name : files.entryList(QDir::Files)) {
            give(files.filePath(name));
        }
        EXPECT_EQ(::seteuid(kNobody), 0);
    }
}

OrdinaryUser::~OrdinaryUser() {
    if (wasSuperuser_) {
        EXPECT_EQ(::seteuid(0), 0);
    }
}

} // namespace navrel
