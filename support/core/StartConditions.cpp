#include "support/core/StartConditions.h"

#include <QByteArray>

#include <array>
#include <condition_variable>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <pwd.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <vector>

namespace navrel {

namespace {

bool isAbsolutePath(const char* variable) {
    return qgetenv(variable).startsWith('/');
}

/// The user's folder, as the user database has it; empty where it has none.
QByteArray folderInUserDatabase() {
    constexpr std::size_t kLongestEntry = 65536;
    const auto memory = std::make_unique<std::array<char, kLongestEntry>>();
    struct passwd entry = {};
    struct passwd* found = nullptr;
    ::getpwuid_r(::getuid(), &entry, memory->data(), memory->size(), &found);
    return found != nullptr && found->pw_dir != nullptr ? QByteArray(found->pw_dir) : QByteArray();
}

bool hasHomeFolder() {
    if (isAbsolutePath("HOME")) {
        return true;
    }
    const QByteArray folder = folderInUserDatabase();
    if (folder.startsWith('/')) {
        qputenv("HOME", folder);
        return true;
    }
    return isAbsolutePath("XDG_DATA_HOME") && isAbsolutePath("XDG_CONFIG_HOME");
}

/// Whether so many threads can run at a time.
bool hasThreads() {
    std::mutex mutex;
    std::condition_variable isOver;
    bool mayEnd = false;
    std::vector<std::thread> threads;
    bool isEnough = true;
    try {
        for (int count = 0; count < kThreadsNeeded; ++count) {
            threads.emplace_back([&] {
                std::unique_lock lock(mutex);
                isOver.wait(lock, [&] { return mayEnd; });
            });
        }
    } catch (const std::system_error&) {
        isEnough = false;
    }
    {
        const std::lock_guard lock(mutex);
        mayEnd = true;
    }
    isOver.notify_all();
    for (std::thread& thread : threads) {
        thread.join();
    }
    return isEnough;
}

bool hasMemory() {
    void* const memory = std::malloc(kMemoryNeeded);
    // Read after it was written, lest the compiler leaves all of it out.
    const volatile void* const seen = memory;
    std::free(memory);
    return seen != nullptr;
}

} // namespace

std::optional<QString> missingToStart() {
    if (!hasHomeFolder()) {
        return QStringLiteral(
            "HOME is not set, and the user database knows no folder of this user");
    }
    if (!hasMemory()) {
        return QStringLiteral("there is too little memory: %1 MB are needed")
            .arg(kMemoryNeeded / 1024 / 1024);
    }
    if (!hasThreads()) {
        return QStringLiteral("the system allows too few threads: %1 are needed")
            .arg(kThreadsNeeded);
    }
    return std::nullopt;
}

} // namespace navrel
