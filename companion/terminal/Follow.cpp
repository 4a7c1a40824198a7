#include "companion/terminal/Follow.h"

#include "companion/terminal/ViewAccess.h"

#include <algorithm>

namespace navrel {

namespace {

const QString kClearScreen = QStringLiteral("\x1B[H\x1B[2J");
/// Above the outline: the file and its path. Below it: how to end this.
constexpr int kOtherLines = 3;
constexpr int kHeightWhereUnknown = 24;

QString placeText(const boost::json::object& file) {
    const qint64 line = numberAt(file, "line");
    const QString path = textAt(file, "path");
    return line > 0 ? QStringLiteral("%1:%2").arg(path).arg(line) : path;
}

} // namespace

QStringList linesAround(const QStringList& lines, qsizetype lit, int height) {
    const qsizetype shown = std::max(height, 1);
    if (lines.size() <= shown) {
        return lines;
    }
    const qsizetype first = std::clamp<qsizetype>(lit - shown / 2, 0, lines.size() - shown);
    return lines.sliced(first, shown);
}

CommandResult Follow::run(int stopDescriptor) {
    world_.print(QStringLiteral("Following the editor; Enter ends it.\n"));
    const auto end = world_.link.readEvents(
        [this](std::string_view name, std::string_view data) {
            const auto event = objectIn(data);
            if (event && name == "hello") {
                show({{"file", objectAt(*event, "active")}});
            } else if (event && name == "active") {
                show(*event);
            } else if (name == "revision" || name == "resync") {
                file_.clear();
            }
            return true;
        },
        std::nullopt, stopDescriptor);
    return end == OwnerLink::End::stopped ? CommandResult::done : CommandResult::noNavrel;
}

void Follow::show(const View& active) {
    const View& file = objectAt(active, "file");
    if (file.empty()) {
        return;
    }
    if (world_.redraws) {
        showOutline(file, objectAt(active, "symbol"));
    } else {
        showPlace(file, objectAt(active, "symbol"));
    }
}

void Follow::showPlace(const View& file, const View& symbol) {
    const QString name = textAt(symbol, "name");
    const QString place =
        placeText(file) + (name.isEmpty() ? QString() : QStringLiteral("  ") + name) + u'\n';
    if (place != lastPlace_) {
        lastPlace_ = place;
        world_.print(place);
    }
}

void Follow::showOutline(const View& file, const View& symbol) {
    const std::string id = bytesAt(file, "id");
    if (id != file_) {
        const CodeAnswer answer = world_.source.outline(id);
        outline_ = answer.isView() ? answer.view : View();
        file_ = id;
    }
    const qint64 lit = numberAt(symbol, "line");
    QStringList lines;
    qsizetype litAt = -1;
    for (const auto& [line, text] : mapText_.outlineLines(outline_, lit)) {
        litAt = line == lit && litAt < 0 ? lines.size() : litAt;
        lines.append(text);
    }
    const int height = world_.traits.height > 0 ? world_.traits.height : kHeightWhereUnknown;
    world_.print(kClearScreen + world_.text.heading(placeText(file)) + u'\n' +
                 linesAround(lines, litAt, height - kOtherLines).join(u'\n') + u'\n' +
                 world_.text.faint(QStringLiteral("Enter ends this.")) + u'\n');
}

} // namespace navrel
