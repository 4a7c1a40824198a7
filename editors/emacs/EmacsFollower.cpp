#include "editors/emacs/EmacsFollower.h"

#include "editors/emacs/EmacsClient.h"
#include "editors/emacs/EmacsExpressions.h"
#include "support/core/MainThread.h"
#include "support/process/ToolRunner.h"

#include <chrono>
#include <utility>

namespace navrel {

namespace {

constexpr std::chrono::milliseconds kEmacsInterval{500};

} // namespace

std::optional<EditorPlace> emacsPlaceFrom(const QByteArray& printed) {
    QByteArray text = printed.trimmed();
    if (text.size() < 2 || !text.startsWith('"') || !text.endsWith('"')) {
        return std::nullopt;
    }
    text = text.mid(1, text.size() - 2);
    const QByteArrayList values = text.split(' ');
    constexpr qsizetype kValues = 4;
    if (values.size() != kValues) {
        return std::nullopt;
    }
    const auto path =
        QByteArray::fromBase64Encoding(values[3], QByteArray::AbortOnBase64DecodingErrors);
    if (!path) {
        return std::nullopt;
    }
    return EditorPlace{*path, values[0].toInt(), values[1].toInt(), values[2] == "1"};
}

EmacsFollower::EmacsFollower(RunningEditor::PlaceObserver observer)
    : observer_(std::move(observer)) {
    client_.setStandardInputFile(QProcess::nullDevice());
    client_.setStandardErrorFile(QProcess::nullDevice());
    QObject::connect(&client_, &QProcess::finished, &timer_, [this] { hear(); });
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { ask(); });
    timer_.start(kEmacsInterval);
    ask();
}

EmacsFollower::~EmacsFollower() {
    client_.disconnect();
    client_.kill();
    client_.waitForFinished();
}

void EmacsFollower::ask() {
    NAVREL_ASSERT_MAIN_THREAD();
    if (client_.state() != QProcess::NotRunning) {
        return;
    }
    if (const auto client = emacsClientFor(emacsPlaceExpression())) {
        client_.start(client->tool, client->arguments, QIODevice::ReadOnly);
    } else {
        isFirstAnswer_ = false;
    }
}

void EmacsFollower::hear() {
    NAVREL_ASSERT_MAIN_THREAD();
    const QByteArray printed = client_.read(kMaximumToolOutput);
    const auto place = emacsPlaceFrom(printed);
    // An Emacs that answers for the first time later was just started, and its user is in it.
    const auto news = std::exchange(isFirstAnswer_, false) ? RunningEditor::PlaceNews::isThere
                                                           : RunningEditor::PlaceNews::cameThere;
    if (place && place != last_) {
        last_ = place;
        observer_(*place, news);
    }
}

} // namespace navrel
