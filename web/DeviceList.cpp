#include "web/DeviceList.h"

#include "support/core/Log.h"
#include "web/PrivateFile.h"
#include "web/Secrets.h"

#include <QList>
#include <QString>

#include <algorithm>
#include <boost/json.hpp>
#include <cstdio>
#include <ctime>

namespace navrel {

namespace {

namespace json = boost::json;

constexpr std::size_t kTokenBytes = 32;
constexpr std::size_t kInstanceBytes = 4;
constexpr std::size_t kDigestLength = 64;
/// A hundred devices are 40 kB.
constexpr std::size_t kMaximumFile = std::size_t{1024} * 1024;
/// When a device was last seen is worth no more writing.
constexpr std::chrono::hours kWriteSeenAfter{1};

std::int64_t secondsOf(DeviceList::Time time) {
    return std::chrono::duration_cast<std::chrono::seconds>(time.time_since_epoch()).count();
}

DeviceList::Time timeOf(const json::value& seconds) {
    return DeviceList::Time(std::chrono::seconds(seconds.as_int64()));
}

json::parse_options shallow() {
    constexpr std::size_t kDepth = 4;
    json::parse_options options;
    options.max_depth = kDepth;
    return options;
}

bool isHexadecimal(std::string_view text) {
    return text.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

} // namespace

DeviceList::DeviceList(std::string path, Clock clock)
    : path_(std::move(path)), clock_(std::move(clock)) {
    load();
    if (instance_.empty()) {
        instance_ = randomHex(kInstanceBytes);
    }
    written_ = clock_();
}

void DeviceList::load() {
    const auto text = readSmallFile(path_, kMaximumFile);
    if (text && !read(*text)) {
        records_.clear();
        lastNumber_ = 0;
        instance_.clear();
        const std::string aside = path_ + ".damaged";
        std::rename(path_.c_str(), aside.c_str());
        log(QStringLiteral("the list of paired devices is damaged: it was set aside as %1, and no "
                           "device is paired now")
                .arg(QString::fromStdString(aside)));
    }
    dropExpired();
}

bool DeviceList::read(std::string_view text) try {
    const json::object file = json::parse(text, {}, shallow()).as_object();
    instance_ = file.at("instance").as_string();
    lastNumber_ = json::value_to<int>(file.at("lastNumber"));
    for (const json::value& item : file.at("devices").as_array()) {
        const json::object& object = item.as_object();
        Record record;
        record.device.number = json::value_to<int>(object.at("number"));
        record.device.label = harmlessLabel(object.at("label").as_string());
        record.device.paired = timeOf(object.at("paired"));
        record.device.seen = timeOf(object.at("seen"));
        record.device.readOnly = object.at("readOnly").as_bool();
        record.renewed = timeOf(object.at("renewed"));
        record.digest = object.at("digest").as_string();
        if (record.device.number < 1 || record.digest.size() != kDigestLength) {
            return false;
        }
        lastNumber_ = std::max(lastNumber_, record.device.number);
        records_[record.device.number] = std::move(record);
    }
    return instance_.size() == 2 * kInstanceBytes && isHexadecimal(instance_) && lastNumber_ >= 0 &&
           records_.size() <= kMaximumDevices;
} catch (const std::exception&) {
    return false; // no JSON, or of another shape
}

void DeviceList::write() {
    json::array items;
    for (const auto& [number, record] : records_) {
        items.push_back({{"number", number},
                         {"label", record.device.label},
                         {"digest", record.digest},
                         {"paired", secondsOf(record.device.paired)},
                         {"seen", secondsOf(record.device.seen)},
                         {"renewed", secondsOf(record.renewed)},
                         {"readOnly", record.device.readOnly}});
    }
    const json::object file = {
        {"instance", instance_}, {"lastNumber", lastNumber_}, {"devices", std::move(items)}};
    written_ = clock_();
    if (const auto error = replacePrivateFile(path_, json::serialize(file) + '\n')) {
        log(QStringLiteral("the list of paired devices cannot be kept in %1: %2")
                .arg(QString::fromStdString(path_), error->description()));
    }
}

void DeviceList::dropExpired() {
    std::erase_if(records_, [now = clock_()](const auto& entry) {
        return entry.second.renewed + kCookieLife <= now;
    });
}

void DeviceList::dropOldest() {
    const auto oldest =
        std::min_element(records_.begin(), records_.end(), [](const auto& left, const auto& right) {
            return left.second.device.seen < right.second.device.seen;
        });
    records_.erase(oldest);
}

DeviceList::Pairing DeviceList::add(std::string_view label) {
    const std::lock_guard lock(mutex_);
    dropExpired();
    if (records_.size() >= kMaximumDevices) {
        dropOldest();
    }
    Pairing pairing = {++lastNumber_, randomText(kTokenBytes), harmlessLabel(label)};
    const Time now = clock_();
    Record& record = records_[pairing.number];
    record.device = {pairing.number, pairing.label, now, now, false, false};
    record.digest = digestOf(pairing.token);
    record.renewed = now;
    write();
    return pairing;
}

std::optional<DeviceList::Visitor> DeviceList::recognize(std::string_view token) {
    const std::string digest = digestOf(token);
    const std::lock_guard lock(mutex_);
    const Time now = clock_();
    for (auto& [number, record] : records_) {
        if (!isSameSecret(digest, record.digest) || record.renewed + kCookieLife <= now) {
            continue;
        }
        const bool isDue = record.renewed + kRenewAfter <= now;
        record.device.seen = now;
        record.renewed = isDue ? now : record.renewed;
        if (isDue || written_ + kWriteSeenAfter <= now) {
            write();
        }
        return Visitor{number, record.device.readOnly, isDue};
    }
    return std::nullopt;
}

bool DeviceList::knows(int number) const {
    const std::lock_guard lock(mutex_);
    return records_.contains(number);
}

bool DeviceList::isReadOnly(int number) const {
    const std::lock_guard lock(mutex_);
    const auto record = records_.find(number);
    return record != records_.end() && record->second.device.readOnly;
}

bool DeviceList::forget(int number) {
    const std::lock_guard lock(mutex_);
    const bool wasThere = records_.erase(number) > 0;
    if (wasThere) {
        write();
    }
    return wasThere;
}

bool DeviceList::setReadOnly(int number, bool readOnly) {
    const std::lock_guard lock(mutex_);
    const auto record = records_.find(number);
    if (record == records_.end()) {
        return false;
    }
    record->second.device.readOnly = readOnly;
    write();
    return true;
}

std::vector<PairedDevice> DeviceList::devices() const {
    const std::lock_guard lock(mutex_);
    std::vector<PairedDevice> devices;
    for (const auto& [number, record] : records_) {
        devices.push_back(record.device);
        devices.back().connected = record.streams > 0;
    }
    return devices;
}

std::size_t DeviceList::count() const {
    const std::lock_guard lock(mutex_);
    return records_.size();
}

void DeviceList::streamsChanged(int number, int difference) {
    const std::lock_guard lock(mutex_);
    const auto record = records_.find(number);
    if (record != records_.end()) {
        record->second.streams += difference;
        record->second.device.seen = clock_();
    }
}

void DeviceList::save() {
    const std::lock_guard lock(mutex_);
    if (!records_.empty()) {
        write();
    }
}

std::string harmlessLabel(std::string_view text) {
    QString label;
    const QString decoded =
        QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())).simplified();
    for (const char32_t character : decoded.toUcs4()) {
        const auto category = QChar::category(character);
        const bool isShown = category != QChar::Other_Control && category != QChar::Other_Format &&
                             category != QChar::Other_Surrogate &&
                             category != QChar::Separator_Line &&
                             category != QChar::Separator_Paragraph;
        if (isShown && label.size() < static_cast<qsizetype>(DeviceList::kLabelLength)) {
            label += QString::fromUcs4(&character, 1);
        }
    }
    return label.isEmpty() ? std::string("Unnamed") : label.toStdString();
}

std::string textOfTime(std::chrono::system_clock::time_point time) {
    const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
    std::tm parts = {};
    ::gmtime_r(&seconds, &parts);
    char text[] = "2026-11-21T20:00:00Z+";
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &parts);
    return text;
}

} // namespace navrel
