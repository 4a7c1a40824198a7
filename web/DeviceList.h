#pragma once

#include "web/BrowserAccess.h"

#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace navrel {

/// The devices that were paired. Kept in a file that holds no secret: of each cookie, its digest.
/// Any thread; a change is on the disk when a function returns, but for when a device was last
/// seen, which is written now and then.
class DeviceList {
public:
    using Time = PairedDevice::Time;
    using Clock = std::function<Time()>;

    static constexpr std::chrono::hours kCookieLife{24 * 90};
    static constexpr std::chrono::hours kRenewAfter{24 * 7};
    /// Where more are paired, the one that was not seen for longest is forgotten.
    static constexpr std::size_t kMaximumDevices = 100;
    /// Characters of a label.
    static constexpr std::size_t kLabelLength = 64;

    /// Reads the file. A damaged one is set aside, with a word in the log, and nothing is paired.
    DeviceList(std::string path, Clock clock);

    /// Names this installation in its cookies, whose scope leaves out the port.
    const std::string& instance() const { return instance_; }

    struct Pairing {
        int number = 0;
        std::string token; ///< the cookie's value; kept nowhere
        std::string label; ///< as kept
    };
    /// Takes in a device that calls itself `label`, of which what can be shown is kept.
    Pairing add(std::string_view label);

    struct Visitor {
        int number = 0;
        bool readOnly = false;
        bool isCookieDue = false; ///< the same cookie is to be set again, with a new life
    };
    /// The device of a cookie's value, which counts as seen; nothing for an unknown, forgotten or
    /// expired one.
    std::optional<Visitor> recognize(std::string_view token);

    bool knows(int number) const;
    bool isReadOnly(int number) const;
    /// False where there is no such device.
    bool forget(int number);
    bool setReadOnly(int number, bool readOnly);

    std::vector<PairedDevice> devices() const;
    std::size_t count() const;

    /// How many event streams a device has changes by so many.
    void streamsChanged(int number, int difference);

    /// Writes what is not written yet.
    void save();

private:
    struct Record {
        PairedDevice device;
        std::string digest;
        Time renewed;
        int streams = 0;
    };

    void load();
    bool read(std::string_view text);
    void write();
    void dropExpired();
    void dropOldest();

    const std::string path_;
    const Clock clock_;
    std::string instance_;
    mutable std::mutex mutex_;
    std::map<int, Record> records_;
    int lastNumber_ = 0;
    Time written_;
};

/// Text of a client, made harmless to show: valid UTF-8 without control characters, and not long.
std::string harmlessLabel(std::string_view text);

/// "2026-11-21T20:00:00Z".
std::string textOfTime(std::chrono::system_clock::time_point time);

} // namespace navrel
