#pragma once

#include "project/Editor.h"

#include <QString>

#include <optional>
#include <vector>

namespace navrel {

/// An editor that answers as it was told to, counts the questions for its project, and records what
/// it was asked to open.
class FakeEditor final : public Editor {
public:
    struct Opened {
        QString path;
        std::optional<int> line;
        bool operator==(const Opened&) const = default;
    };

    std::optional<QString> projectPath;
    std::optional<QString> fileName;
    int projectQueries = 0;
    std::vector<Opened> opened;
    std::vector<int> selectedLines; ///< without a file

    std::optional<QString> activeProjectPath() override {
        ++projectQueries;
        return projectPath;
    }
    std::optional<QString> activeFileName() override { return fileName; }
    void openFile(const QString& path, std::optional<int> line) override {
        opened.push_back({path, line});
    }
    void selectLine(int line) override { selectedLines.push_back(line); }
};

} // namespace navrel
