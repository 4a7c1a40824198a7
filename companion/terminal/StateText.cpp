#include "companion/terminal/StateText.h"

#include "companion/terminal/ViewAccess.h"

namespace navrel {

namespace json = boost::json;

namespace {

constexpr int kTitleWidth = 10;

QString coloured(const QString& sentence, const std::string& level, const TerminalText& text) {
    return level == "warning" || level == "error" ? text.warning(sentence) : sentence;
}

QString sentenceLines(const QString& title, const json::object& sentence,
                      const TerminalText& text) {
    QString lines = text.heading(title.leftJustified(kTitleWidth)) +
                    coloured(textAt(sentence, "text"), bytesAt(sentence, "level"), text) + u'\n';
    const QString hint = textAt(sentence, "hint");
    if (!hint.isEmpty()) {
        lines += QString(kTitleWidth, u' ') + text.faint(hint) + u'\n';
    }
    return lines;
}

} // namespace

QString stateText(const json::object& state, const TerminalText& text) {
    QString result;
    for (const json::value& sentence : arrayAt(state, "sentences")) {
        const json::object& object = objectOf(sentence);
        result += sentenceLines(textAt(object, "part"), object, text);
    }
    for (const json::value& message : arrayAt(state, "messages")) {
        result += sentenceLines(QStringLiteral("Note"), objectOf(message), text);
    }
    return result;
}

QString devicesText(const json::object& devices) {
    QString result;
    for (const json::value& item : arrayAt(devices, "items")) {
        const json::object& device = objectOf(item);
        result += QStringLiteral("%1  %2  %3%4\n")
                      .arg(textAt(device, "number"), textAt(device, "label"),
                           flagAt(device, "connected")
                               ? QStringLiteral("connected")
                               : QStringLiteral("last seen ") + textAt(device, "seen"),
                           flagAt(device, "readOnly") ? QStringLiteral(", read only") : QString());
    }
    return result;
}

} // namespace navrel
