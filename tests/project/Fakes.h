#pragma once

#include "project/ProjectDialogs.h"
#include "project/SourceScanner.h"
#include "project/store/CDObject.h"
#include "project/store/ManagedObjectContext.h"
#include "support/Error.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <map>
#include <optional>
#include <string>
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

/// Records which file was scanned for what, and stores one shortcut and one element a file.
class RecordingScanner final : public SourceScanner {
public:
    void setSuperclassForManagedObject(CDObject& object) override {
        note("superclass", object);
        const auto found = superclasses.find(fileNameOf(object));
        if (found != superclasses.end()) {
            object.setSubclassOf(QByteArray::fromStdString(found->second));
        }
    }
    void generateShortcutsForManagedObject(const CDObject& object,
                                           ManagedObjectContext& context) override {
        note("shortcuts", object);
        elementsKept = context.elementsWithIdentifier(*object.identifier()).size();
        shortcutsLeft += context.shortcutsWithIdentifier(*object.identifier()).size();
        context.insertShortcut().setIdentifier(object.identifier());
    }
    void generateElementsForManagedObject(const CDObject& object,
                                          ManagedObjectContext& context) override {
        note("elements", object);
        elementsLeft += context.elementsWithIdentifier(*object.identifier()).size();
        context.insertElement().setIdentifier(object.identifier());
    }

    /// The scans since the last call, in order.
    std::vector<std::string> takeScans() { return std::exchange(scans_, {}); }

    /// By file name.
    std::map<std::string, std::string> superclasses;
    /// Records that were still there when the file's scan began; there are to be none.
    std::size_t shortcutsLeft = 0;
    std::size_t elementsLeft = 0;
    /// Elements of the file that were still there during the last scan for shortcuts.
    std::size_t elementsKept = 0;

private:
    static std::string fileNameOf(const CDObject& object) {
        const QByteArray path = object.path().value_or("");
        return path.mid(path.lastIndexOf('/') + 1).toStdString();
    }
    void note(const char* scan, const CDObject& object) {
        scans_.push_back(std::string(scan) + ' ' + fileNameOf(object));
    }

    std::vector<std::string> scans_;
};

} // namespace navrel
