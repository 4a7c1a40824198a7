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

QString scriptOf(std::initializer_list<QString> lines) {
    QString text;
    for (const QString& line : lines) {
        text += QStringLiteral("        ") + line + QLatin1Char('\n');
    }
    return text;
}

QString queryScript(const QString& tell, const QString& question) {
    return scriptOf({
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
    // The request to open the file starts after this script: the first delay gives it time to bring
    // the file to the front.
    return scriptOf({
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

// Each of these runs on a thread of its own, and ignores the tool's output.

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
    // The tool decides what an empty path means. A path that can name no file (it holds a NUL byte,
    // say) must not reach the tool: cut off there, it would name another file.
    if (!path.isEmpty() && !canNameAFile(path)) {
        return;
    }
    const auto open = [tools = tools_, path] { performOpenScriptWithPath(tools, path); };
    if (line) {
        // The jump starts first, deliberately: its script waits for the file to open.
        requests_.start({[tools = tools_, line] { performJumpScript(tools, *line); }, open});
    } else {
        requests_.start({open});
    }
}

void XcodeEditor::selectLine(int line) {
    requests_.start({[tools = tools_, line] { performJumpScript(tools, line); }});
}

/// The output of a script without its line feeds; nil if it failed. While the script runs for
/// longer than `queryAtMost`, the last answer stands: nil would make the data manager empty the
/// store.
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
