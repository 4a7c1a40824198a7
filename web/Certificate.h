#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace navrel {

/// A certificate and its key, both as PEM.
struct Certificate {
    std::string chain;
    std::string key;
    bool operator==(const Certificate&) const = default;
};

/// How long one that is made here is valid. Browsers take no more than 825 days.
inline constexpr std::chrono::hours kCertificateLife{24 * 730};
/// One that ends sooner is replaced.
inline constexpr std::chrono::hours kCertificateSpare{24 * 30};

/// A certificate that vouches for itself, with a fresh P-256 key, for these names and addresses.
Certificate makeCertificate(const std::vector<std::string>& names,
                            const std::vector<std::string>& addresses,
                            std::chrono::system_clock::time_point now);

/// Whether a certificate made here is still valid for long enough, and for all of these.
bool covers(const Certificate& certificate, const std::vector<std::string>& names,
            const std::vector<std::string>& addresses, std::chrono::system_clock::time_point now);

/// Its SHA-256 as browsers show it, "AB:CD:…"; empty for what is no certificate.
std::string fingerprintOf(const Certificate& certificate);

/// Whether the key belongs to the certificate; false also for what is neither.
bool isUsable(const Certificate& certificate);

/// The certificate that is kept in a folder; a new one, which takes its place there, where it is
/// missing, damaged, or no longer covers the names and addresses.
Certificate keptCertificate(const std::string& folder, const std::vector<std::string>& names,
                            const std::vector<std::string>& addresses,
                            std::chrono::system_clock::time_point now);

/// The user's own, from two files; nothing where they cannot be read or do not fit.
std::optional<Certificate> userCertificate(const std::string& chainFile,
                                           const std::string& keyFile);

} // namespace navrel
