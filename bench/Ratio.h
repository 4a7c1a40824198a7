#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <string>
#include <vector>

// Speed as a multiple of a floor: the least that any program must do for the same job. A machine's
// own speed and its noise stand in both, so that the ratio can be compared and held to a goal.
namespace navrel::bench {

/// Rounds of one measurement. Enough for a median that a busy neighbour does not move.
inline constexpr int kRounds = 41;

enum class Bound {
    atMost,  ///< of times: the ratio is to stay at or below the goal
    atLeast, ///< of rates: at or above
};

/// What passes for a person.
struct WallTime {
    static double now() {
        return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
            .count();
    }
};

/// What the calling thread takes of its processor: for jobs that wait for nothing and of which one
/// is much longer than the other, so that a busy neighbour would mostly interrupt that one.
struct ProcessorTime {
    static double now() {
        struct timespec time = {};
        ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return double(time.tv_sec) + double(time.tv_nsec) / 1e9;
    }
};

template <typename Time = WallTime, typename Job>
double secondsOf(Job& job) {
    const double start = Time::now();
    job();
    return Time::now() - start;
}

inline double medianOf(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// The time of a subject as a multiple of its floor's: medians over rounds in which the two take
/// turns. Both run once before, so that neither pays for cold memory. The jobs keep their results
/// from being optimized away themselves.
template <typename Time = WallTime, typename Floor, typename Subject>
double timeRatio(Floor floor, Subject subject, int rounds = kRounds) {
    std::vector<double> floorTimes;
    std::vector<double> subjectTimes;
    floor();
    subject();
    for (int round = 0; round < rounds; ++round) {
        floorTimes.push_back(secondsOf<Time>(floor));
        subjectTimes.push_back(secondsOf<Time>(subject));
    }
    return medianOf(floorTimes) > 0 ? medianOf(subjectTimes) / medianOf(floorTimes) : 0;
}

/// Prints one line that scripts gather: "RATIO | what | measured | goal | met or missed".
inline void printRatio(const std::string& what, double measured, double goal,
                       Bound bound = Bound::atMost) {
    const bool isMet = bound == Bound::atMost ? measured <= goal : measured >= goal;
    std::printf("RATIO | %s | %.2f | %s %.2f | %s\n", what.c_str(), measured,
                bound == Bound::atMost ? "at most" : "at least", goal, isMet ? "met" : "missed");
    std::fflush(stdout);
}

/// The same for what is measured without a goal.
inline void printRatio(const std::string& what, double measured) {
    std::printf("RATIO | %s | %.2f | |\n", what.c_str(), measured);
    std::fflush(stdout);
}

} // namespace navrel::bench
