#include "codemap/tree/FolderWatch.h"

#include <condition_variable>
#include <mutex>

namespace navrel {

namespace {

class BlindFolderWatch final : public FolderWatch {
public:
    bool add(const std::string&) override { return false; }
    void remove(const std::string&) override {}

    std::vector<FolderEvent> wait(std::chrono::milliseconds timeout) override {
        std::unique_lock lock(mutex_);
        condition_.wait_for(lock, timeout, [this] { return isAwake_; });
        isAwake_ = false;
        return {};
    }

    void wake() override {
        const std::lock_guard lock(mutex_);
        isAwake_ = true;
        condition_.notify_all();
    }

private:
    std::mutex mutex_;
    std::condition_variable condition_;
    bool isAwake_ = false;
};

} // namespace

std::unique_ptr<FolderWatch> makeBlindFolderWatch() {
    return std::make_unique<BlindFolderWatch>();
}

#ifndef __linux__
std::unique_ptr<FolderWatch> makeFolderWatch() {
    return makeBlindFolderWatch();
}
#endif

} // namespace navrel
