#pragma once

#include <QByteArray>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace navrel {

/// A folder for the files of one test, removed with it.
class ScratchFolder {
public:
    QByteArray path(const QByteArray& name) const {
        return folder_.filePath(QFile::decodeName(name)).toUtf8();
    }

    /// Writes a file and returns its path.
    QByteArray write(const QByteArray& name, const QByteArray& content) const {
        QFile file(QFile::decodeName(path(name)));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write(content), content.size());
        return path(name);
    }

    void append(const QByteArray& name, const QByteArray& content) const {
        QFile file(QFile::decodeName(path(name)));
        EXPECT_TRUE(file.open(QIODevice::Append));
        EXPECT_EQ(file.write(content), content.size());
    }

    void truncate(const QByteArray& name, qint64 size) const {
        EXPECT_TRUE(QFile::resize(QFile::decodeName(path(name)), size));
    }

private:
    QTemporaryDir folder_;
};

} // namespace navrel
