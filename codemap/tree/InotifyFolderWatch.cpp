// Linux only: see BlindFolderWatch.cpp for other systems.

#include "codemap/tree/FolderWatch.h"
#include "support/files/OwnedDescriptor.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <unistd.h>
#include <unordered_map>

namespace navrel {

namespace {

constexpr std::uint32_t kContent = IN_MODIFY | IN_CLOSE_WRITE | IN_ATTRIB;
constexpr std::uint32_t kNames = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;
constexpr std::uint32_t kSelf = IN_DELETE_SELF | IN_MOVE_SELF;
constexpr std::uint32_t kGone = kSelf | IN_UNMOUNT;
// Enough for hundreds of events a reading.
constexpr std::size_t kBufferSize = 64 * 1024;

class InotifyFolderWatch final : public FolderWatch {
public:
    InotifyFolderWatch()
        : inotify_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)),
          waker_(::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {}

    bool add(const std::string& folder) override {
        if (watches_.contains(folder)) {
            return true;
        }
        const int watch = ::inotify_add_watch(inotify_.value(), folder.c_str(),
                                              kContent | kNames | kSelf | IN_ONLYDIR);
        if (watch < 0) {
            // A folder that is not there yet is noticed through the one around it.
            return errno == ENOENT || errno == ENOTDIR || errno == EACCES || errno == ELOOP ||
                   errno == ENAMETOOLONG;
        }
        watches_.emplace(folder, watch);
        folders_[watch].push_back(folder);
        return true;
    }

    void remove(const std::string& folder) override {
        const auto found = watches_.find(folder);
        if (found == watches_.end()) {
            return;
        }
        // Several paths may lead to one folder, which the system watches once.
        std::vector<std::string>& sharing = folders_[found->second];
        std::erase(sharing, folder);
        if (sharing.empty()) {
            ::inotify_rm_watch(inotify_.value(), found->second);
            folders_.erase(found->second);
        }
        watches_.erase(found);
    }

    std::vector<FolderEvent> wait(std::chrono::milliseconds timeout) override {
        std::array<struct pollfd, 2> descriptors{
            {{inotify_.value(), POLLIN, 0}, {waker_.value(), POLLIN, 0}}};
        ::poll(descriptors.data(), descriptors.size(), static_cast<int>(timeout.count()));
        std::uint64_t count = 0;
        [[maybe_unused]] const ssize_t ignored = ::read(waker_.value(), &count, sizeof count);
        return readEvents();
    }

    void wake() override {
        const std::uint64_t one = 1;
        [[maybe_unused]] const ssize_t ignored = ::write(waker_.value(), &one, sizeof one);
    }

private:
    std::vector<FolderEvent> readEvents() {
        std::vector<FolderEvent> events;
        alignas(struct inotify_event) std::array<char, kBufferSize> buffer;
        for (;;) {
            const ssize_t size = ::read(inotify_.value(), buffer.data(), buffer.size());
            if (size <= 0) {
                return events;
            }
            std::size_t place = 0;
            while (place < static_cast<std::size_t>(size)) {
                struct inotify_event event = {};
                std::memcpy(&event, buffer.data() + place, sizeof event);
                take(event, event.len > 0 ? buffer.data() + place + sizeof event : "", events);
                place += sizeof event + event.len;
            }
        }
    }

    void take(const struct inotify_event& event, const char* name,
              std::vector<FolderEvent>& events) {
        if ((event.mask & IN_Q_OVERFLOW) != 0) {
            events.push_back({FolderEvent::Kind::overflow, {}, {}});
            return;
        }
        const auto found = folders_.find(event.wd);
        if (found == folders_.end()) {
            return;
        }
        const std::vector<std::string> folders = found->second;
        for (const std::string& folder : folders) {
            if ((event.mask & (kGone | IN_IGNORED)) != 0) {
                events.push_back({FolderEvent::Kind::isGone, folder, {}});
            } else if (event.len > 0) {
                const bool isName = (event.mask & kNames) != 0;
                events.push_back(
                    {isName ? FolderEvent::Kind::names : FolderEvent::Kind::content, folder, name});
            }
        }
        if ((event.mask & IN_IGNORED) != 0) {
            for (const std::string& folder : folders) {
                watches_.erase(folder);
            }
            folders_.erase(event.wd);
        }
    }

    OwnedDescriptor inotify_;
    OwnedDescriptor waker_;
    std::unordered_map<std::string, int> watches_;
    std::unordered_map<int, std::vector<std::string>> folders_;
};

} // namespace

std::unique_ptr<FolderWatch> makeFolderWatch() {
    return std::make_unique<InotifyFolderWatch>();
}

} // namespace navrel
