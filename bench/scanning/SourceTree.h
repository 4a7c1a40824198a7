#pragma once

#include <QByteArray>
#include <QTemporaryDir>

#include <vector>

namespace navrel::bench {

/// Source files to read: those of the folder that NAVREL_BENCH_SOURCES names, or 45 MB of synthetic
/// ones, with the density of comments, declarations and marks that large projects have.
class SourceTree {
public:
    SourceTree();

    const std::vector<QByteArray>& paths() const { return paths_; }
    qint64 size() const { return size_; }

private:
    void addFolder(const QString& folder);
    void makeUp();
    void write(const QByteArray& name, const QByteArray& text);

    QTemporaryDir folder_;
    std::vector<QByteArray> paths_;
    qint64 size_ = 0;
};

} // namespace navrel::bench
