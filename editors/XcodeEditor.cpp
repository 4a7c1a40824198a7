#include "editors/XcodeEditor.h"

#include "support/Log.h"
#include "support/ToolRunner.h"
#include "support/text/FilePath.h"
#include "support/text/UTF8.h"

#include <QDeadlineTimer>
#include <QStringList>

#include <atomic>
#include <initializer_list>
#include <thread>
#include <utility>

namespace navrel {

namespace {

/// A person taps a few times a second and a request lasts less than one; a device that asks without
/// end must not fill the machine with threads and processes.
constexpr int kMaximumRunningTools = 512;

std::atomic<int> runningTools = 0;

QString script(std::initializer_list<QString> lines) {
    QString text;
    for (const QString& line : lines) {
        text += QStringLiteral("        ") + line + QLatin1Char('\n');
    }
    return text;
}

QString queryScript(const QString& tell, const QString& question) {
    return script({
        QStringLiteral("set appName to \"Xcode\""),
        QStringLiteral("if application appName is running then"),
        QStringLiteral("delay 0.1"),
        QStringLiteral("with timeout of 0.5 seconds"),
        tell,
        question,
        QStringLiteral("end tell"),
        QStringLiteral("end timeout"),
        QStringLiteral("end if"),
    });
}

QString activeProjectScript() {
    return queryScript(QStringLiteral("tell application \"Xcode\""),
                       QStringLiteral("return path of active workspace document"));
}

QString activeFileScript() {
    return queryScript(QStringLiteral("tell application id (id of application appName)"),
                       QStringLiteral("return name of first window"));
}

QString jumpScript(int line) {
    // The first delay gives the opening, which begins after the jump, the time to bring the file to
    // the front.
    return script({
                      QStringLiteral("delay 0.1"),
                      QStringLiteral("tell application \"Xcode\""),
                      QStringLiteral("set activeFile to name of first window"),
                      QStringLiteral("tell document named activeFile"),
                      QStringLiteral("set selected paragraph range to {LINE, LINE}"),
                      QStringLiteral("delay 0.1"),
                      QStringLiteral("tell application \"System Events\""),
                      QStringLiteral("keystroke \"l\" using {command down, shift down}"),
                      QStringLiteral("end tell"),
                      QStringLiteral("end tell"),
                      QStringLiteral("end tell"),
                  })
        .replace(QStringLiteral("LINE"), QString::number(line));
}

/// Runs a tool on a thread of its own, which nobody waits for; what it writes is dropped.
void runOnNewThread(const QString& tool, const QStringList& arguments,
                    std::chrono::milliseconds atMost) {
    if (runningTools.fetch_add(1) >= kMaximumRunningTools) {
        --runningTools;
        log(QStringLiteral("Too many requests to Xcode at a time: one was dropped"));
        return;
    }
    std::thread([tool, arguments, atMost] {
        outputOfTool(tool, arguments, atMost);
        --runningTools;
    }).detach();
}

} // namespace

XcodeEditor::XcodeEditor() : XcodeEditor(Tools()) {}

XcodeEditor::XcodeEditor(Tools tools) : tools_(std::move(tools)), silent_(tools_.leftAloneFor) {}

std::optional<QString> XcodeEditor::activeProjectPath() {
    const auto document = answerOf(activeProjectScript());
    if (!document) {
        return std::nullopt;
    }
    return QString::fromUtf8(deletingLastPathComponent(document->toUtf8()));
}

std::optional<QString> XcodeEditor::activeFileName() {
    return answerOf(activeFileScript());
}

void XcodeEditor::openFile(const QString& path, std::optional<int> line) {
    if (path.contains(QChar(u'\0'))) {
        return; // names no file, and its beginning might name another one
    }
    if (line) {
        // Before the opening, deliberately: the script waits for that by itself.
        performJumpScript(*line);
    }
    performOpenScriptWithPath(path);
}

/// What a script prints, without line feeds; nil when nothing could be read.
std::optional<QString> XcodeEditor::answerOf(const QString& script) {
    if (silent_.contains("")) {
        return std::nullopt;
    }
    const QDeadlineTimer deadline(tools_.queryAtMost);
    const auto output =
        outputOfTool(tools_.osascript, {QStringLiteral("-e"), script}, tools_.queryAtMost);
    if (!output) {
        if (deadline.hasExpired()) {
            silent_.add("");
        }
        return std::nullopt;
    }
    auto text = decodeUTF8(*output);
    return text ? std::optional(text->remove(QLatin1Char('\n'))) : std::nullopt;
}

void XcodeEditor::performJumpScript(int line) const {
    runOnNewThread(tools_.osascript, {QStringLiteral("-e"), jumpScript(line)},
                   tools_.requestAtMost);
}

void XcodeEditor::performOpenScriptWithPath(const QString& path) const {
    const bool looksLikeAnOption = path.startsWith(QLatin1Char('-'));
    runOnNewThread(tools_.xed, {looksLikeAnOption ? QStringLiteral("./") + path : path},
                   tools_.requestAtMost);
}

} // namespace navrel
