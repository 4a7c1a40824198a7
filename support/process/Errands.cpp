#include "support/process/Errands.h"

#include "support/core/Log.h"

#include <system_error>
#include <thread>
#include <utility>

namespace navrel {

Errands::Errands(QString name, int atMost) : name_(std::move(name)), atMost_(atMost) {}

bool Errands::start(std::initializer_list<Job> jobs) const {
    const int count = static_cast<int>(jobs.size());
    if (running_->fetch_add(count) > atMost_ - count) {
        *running_ -= count;
        log(QStringLiteral("Too many %1 at a time: one was refused").arg(name_));
        return false;
    }
    int started = 0;
    try {
        for (const Job& job : jobs) {
            std::thread([job, running = running_] {
                job();
                --*running;
            }).detach();
            ++started;
        }
    } catch (const std::system_error& error) {
        *running_ -= count - started;
        log(QStringLiteral("No thread for %1: %2").arg(name_, QString::fromUtf8(error.what())));
        return false;
    }
    return true;
}

} // namespace navrel
