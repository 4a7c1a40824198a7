#include "editors/xcode/XcodeEditor.h"

#include "support/process/ToolRunner.h"
#include "support/text/FilePath.h"
#include "support/text/UTF8.h"

#include <QDeadlineTimer>
#include <QStringList>

#include <initializer_list>
#include <utility>

namespace navrel {

namespace {

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

// On a thread of its own each; what the tools write is dropped.

void performJumpScript(const XcodeEditor::Tools& tools, int line) {
    outputOfTool(tools.osascript, {QStringLiteral("-e"), jumpScript(line)}, tools.requestAtMost);
}

void performOpenScriptWithPath(const XcodeEditor::Tools& tools, const QString& path) {
    const bool looksLikeAnOption = path.startsWith(QLatin1Char('-'));
    outputOfTool(tools.xed, {looksLikeAnOption ? QStringLiteral("./") + path : path},
                 tools.requestAtMost);
}

} // namespace

XcodeEditor::XcodeEditor() : XcodeEditor(Tools()) {}

XcodeEditor::XcodeEditor(Tools tools) : tools_(std::move(tools)) {}

std::optional<QString> XcodeEditor::activeProjectPath() {
    const auto document = answerOf(activeProjectScript(), project_);
    if (!document) {
        return std::nullopt;
    }
    return QString::fromUtf8(deletingLastPathComponent(document->toUtf8()));
}

std::optional<QString> XcodeEditor::activeFileName() {
    return answerOf(activeFileScript(), file_);
}

void XcodeEditor::openFile(const QString& path, std::optional<int> line) {
    // An empty path is left to the tool. What names no file might be taken for another one.
    if (!path.isEmpty() && !canNameAFile(path)) {
        return;
    }
    const auto open = [tools = tools_, path] { performOpenScriptWithPath(tools, path); };
    if (line) {
        // Before the opening, deliberately: the script waits for that by itself.
        requests_.start({[tools = tools_, line] { performJumpScript(tools, *line); }, open});
    } else {
        requests_.start({open});
    }
}

void XcodeEditor::selectLine(int line) {
    requests_.start({[tools = tools_, line] { performJumpScript(tools, line); }});
}

/// What a script prints, without line feeds; what it printed last while it runs for longer than a
/// question may wait, which would otherwise empty the store. Nil when nothing could be read.
std::optional<QString> XcodeEditor::answerOf(const QString& script, Question& question) {
    const auto answer = question.tool.ask(tools_.osascript, {QStringLiteral("-e"), script},
                                          QDeadlineTimer(tools_.queryAtMost));
    if (answer.kind == ToolQuestion::Answer::Kind::Late) {
        return question.lastAnswer;
    }
    const bool isThere = answer.kind == ToolQuestion::Answer::Kind::Output;
    auto text = isThere ? decodeUTF8(answer.output) : std::nullopt;
    question.lastAnswer = text ? std::optional(text->remove(QLatin1Char('\n'))) : std::nullopt;
    return question.lastAnswer;
}

} // namespace navrel
