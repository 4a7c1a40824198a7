#pragma once

#include "project/ProjectDialogs.h"
#include "support/core/Error.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>
#include <vector>

namespace navrel {

/// Answers as told and records what was shown.
class FakeDialogs final : public ProjectDialogs {
public:
    std::optional<QString> runOpenPanel(const QString& title,
                                        const QStringList& allowedFileTypes) override {
        ++panels;
        panelTitle = title;
        panelFileTypes = allowedFileTypes;
        if (whileOpen) {
            whileOpen();
        }
        return pickedPath;
    }
    bool presentError(const Error& error) override {
        errors.push_back(error);
        if (whileErrorShown) {
            whileErrorShown();
        }
        return dealsWithErrors;
    }
    int runAlert(const QString& message, const QString& informativeText,
                 const QStringList& buttons) override {
        ++alerts;
        alertTexts = QStringList{message, informativeText} + buttons;
        return alertAnswer;
    }

    std::optional<QString> pickedPath;
    std::function<void()> whileOpen;
    int panels = 0;
    QString panelTitle;
    QStringList panelFileTypes;
    std::vector<Error> errors;
    std::function<void()> whileErrorShown;
    bool dealsWithErrors = false;
    int alerts = 0;
    QStringList alertTexts;
    int alertAnswer = 0;
};

} // namespace navrel
