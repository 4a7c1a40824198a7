#pragma once

#include "bench/Ratio.h"
#include "tests/WaitUntil.h"

#include <QDeadlineTimer>
#include <QString>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

namespace navrel::bench {

using Milliseconds = std::chrono::duration<double, std::milli>;

/// Runs the event loop for so long.
inline void pauseFor(std::chrono::milliseconds pause) {
    const QDeadlineTimer end(pause);
    waitUntil([&] { return end.hasExpired(); });
}

/// Prints the middle and the end of times in milliseconds, and their ratio to a goal; 0 for none.
inline void reportLatencies(const QString& name, const char* what, std::vector<double> values,
                            double goal) {
    if (values.empty()) {
        std::printf("LATENCY | %s | %s | none was measured\n", qPrintable(name), what);
        return;
    }
    std::sort(values.begin(), values.end());
    const auto at = [&](double share) {
        return values[static_cast<std::size_t>(double(values.size() - 1) * share)];
    };
    std::printf("LATENCY | %s | %s | %zu | median %.1f ms | 95 %% %.1f ms | worst %.1f ms\n",
                qPrintable(name), what, values.size(), at(0.5), at(0.95), values.back());
    if (goal > 0) {
        printRatio(name.toStdString() + ": " + what + ", median, in " +
                       std::to_string(static_cast<int>(goal)) + " ms",
                   at(0.5) / goal, 1);
    }
}

} // namespace navrel::bench
