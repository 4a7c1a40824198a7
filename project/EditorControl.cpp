#include "project/EditorControl.h"

#include "project/Editor.h"
#include "project/ProjectStore.h"
#include "project/views/NavigatorViews.h"
#include "support/core/MainThread.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace navrel {

namespace {

constexpr qint64 kSmallest = std::numeric_limits<qint32>::min();
constexpr qint64 kLargest = std::numeric_limits<qint32>::max();

bool isDigit(QChar character) {
    return character >= QLatin1Char('0') && character <= QLatin1Char('9');
}

/// The decimal number at the beginning of a text, after any blanks; 0 if there is none. A number
/// out of range becomes the nearest value in range.
int integerValueOfText(QStringView text) {
    const auto* at =
        std::find_if_not(text.begin(), text.end(), [](QChar c) { return c.isSpace(); });
    const bool isSigned = at != text.end() && (*at == QLatin1Char('-') || *at == QLatin1Char('+'));
    const qint64 sign = isSigned && *at == QLatin1Char('-') ? -1 : 1;
    qint64 value = 0;
    for (at += isSigned ? 1 : 0; at != text.end() && isDigit(*at); ++at) {
        // Capped just outside the range, so that the next step does not overflow.
        value = std::min(value * 10 + at->digitValue(), kLargest + 1);
    }
    return static_cast<int>(std::clamp(sign * value, kSmallest, kLargest));
}

int integerValueOfReal(double value) {
    if (std::isnan(value)) {
        return 0;
    }
    const auto smallest = static_cast<double>(kSmallest);
    const auto largest = static_cast<double>(kLargest);
    return static_cast<int>(std::clamp(value, smallest, largest));
}

/// The line number that a device sent; nil for a value of any type but number and text. Deliberate:
/// an integer that is too large keeps its low 32 bits, but other numbers and text are clamped.
std::optional<int> lineNumber(const QVariant& line) {
    switch (line.typeId()) {
    case QMetaType::QString:
        return integerValueOfText(line.toString());
    case QMetaType::Double:
    case QMetaType::Float:
        return integerValueOfReal(line.toDouble());
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
        return static_cast<qint32>(line.toULongLong());
    default:
        return std::nullopt;
    }
}

} // namespace

std::optional<QString> EditorControl::objectIDForActiveFile() {
    NAVREL_ASSERT_MAIN_THREAD();
    const auto fileName = editor_.activeFileName();
    const ManagedObjectContext* context = store_.context();
    // By name only, deliberately: an editor's window title holds no more.
    return fileName ? views::objectIDForFileName(context, *fileName) : std::nullopt;
}

void EditorControl::openFile(const std::optional<QString>& path, const QVariant& line) {
    NAVREL_ASSERT_MAIN_THREAD();
    const auto number = lineNumber(line);
    if (path) {
        editor_.openFile(*path, number);
    } else if (number) {
        editor_.selectLine(*number);
    }
}

} // namespace navrel
