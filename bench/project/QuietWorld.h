#pragma once

#include "project/Editor.h"
#include "project/ProjectDialogs.h"
#include "support/core/Error.h"

#include <cstdio>
#include <cstdlib>

/// What a data manager needs around it where nobody edits anything and nobody is asked.
namespace navrel::bench {

class NoEditor final : public Editor {
public:
    std::optional<QString> activeProjectPath() override { return std::nullopt; }
    std::optional<QString> activeFileName() override { return std::nullopt; }
    void openFile(const QString&, std::optional<int>) override {}
};

/// An error ends the program.
class NoDialogs final : public ProjectDialogs {
public:
    std::optional<QString> runOpenPanel(const QString&, const QStringList&) override {
        return std::nullopt;
    }
    bool presentError(const Error& error) override {
        std::fprintf(stderr, "%s\n", error.description().toUtf8().constData());
        std::exit(EXIT_FAILURE);
    }
    int runAlert(const QString&, const QString&, const QStringList&) override { return 0; }
};

} // namespace navrel::bench
