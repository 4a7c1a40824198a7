#include "web/Certificate.h"

#include "support/core/Assertion.h"
#include "support/core/Log.h"
#include "web/PrivateFile.h"

#include <QString>

#include <algorithm>
#include <array>
#include <memory>
#include <openssl/bio.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

namespace navrel {

namespace {

template <auto Free>
struct Freed {
    template <typename Value>
    void operator()(Value* value) const {
        Free(value);
    }
};
using OwnedX509 = std::unique_ptr<X509, Freed<X509_free>>;
using OwnedKey = std::unique_ptr<EVP_PKEY, Freed<EVP_PKEY_free>>;
using OwnedBIO = std::unique_ptr<BIO, Freed<BIO_free_all>>;
using OwnedExtension = std::unique_ptr<X509_EXTENSION, Freed<X509_EXTENSION_free>>;
using OwnedNumber = std::unique_ptr<BIGNUM, Freed<BN_free>>;

/// A chain of four large certificates is 8 kB.
constexpr std::size_t kMaximumPEM = std::size_t{256} * 1024;
/// Bits of a serial number: enough never to meet again, and positive in 20 bytes.
constexpr int kSerialBits = 152;
/// A phone's clock may be slow.
constexpr std::chrono::hours kBackdated{24};

OwnedBIO reading(std::string_view text) {
    return OwnedBIO(BIO_new_mem_buf(text.data(), static_cast<int>(text.size())));
}

OwnedX509 parsedChain(std::string_view pem) {
    return OwnedX509(PEM_read_bio_X509(reading(pem).get(), nullptr, nullptr, nullptr));
}

/// Keys under a passphrase are not taken: there would be nobody to ask.
int noPassphrase(char*, int, int, void*) {
    return -1;
}

OwnedKey parsedKey(std::string_view pem) {
    return OwnedKey(PEM_read_bio_PrivateKey(reading(pem).get(), nullptr, noPassphrase, nullptr));
}

std::string written(const OwnedBIO& bio) {
    char* bytes = nullptr;
    const long size = BIO_get_mem_data(bio.get(), &bytes);
    return {bytes, static_cast<std::size_t>(size)};
}

std::string_view withoutZone(std::string_view address) {
    return address.substr(0, address.find('%'));
}

std::string alternativeNames(const std::vector<std::string>& names,
                             const std::vector<std::string>& addresses) {
    std::string text;
    for (const std::string& name : names) {
        text.append(text.empty() ? "DNS:" : ",DNS:").append(name);
    }
    for (const std::string& address : addresses) {
        text.append(text.empty() ? "IP:" : ",IP:").append(withoutZone(address));
    }
    return text;
}

void addExtension(X509* certificate, int kind, const std::string& value) {
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, certificate, certificate, nullptr, nullptr, 0);
    const OwnedExtension extension(X509V3_EXT_conf_nid(nullptr, &context, kind, value.c_str()));
    NAVREL_ASSERT(extension != nullptr);
    X509_add_ext(certificate, extension.get(), -1);
}

void setSerial(X509* certificate) {
    const OwnedNumber number(BN_new());
    NAVREL_ASSERT(BN_rand(number.get(), kSerialBits, BN_RAND_TOP_ANY, BN_RAND_BOTTOM_ANY) == 1);
    BN_to_ASN1_INTEGER(number.get(), X509_get_serialNumber(certificate));
}

void setTimes(X509* certificate, std::chrono::system_clock::time_point now) {
    using Clock = std::chrono::system_clock;
    const std::time_t from = Clock::to_time_t(now - kBackdated);
    const std::time_t to = Clock::to_time_t(now - kBackdated + kCertificateLife);
    ASN1_TIME_set(X509_getm_notBefore(certificate), from);
    ASN1_TIME_set(X509_getm_notAfter(certificate), to);
}

void setNames(X509* certificate) {
    X509_NAME* const name = X509_get_subject_name(certificate);
    const auto* const text = reinterpret_cast<const unsigned char*>("Navrel on this machine");
    X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_UTF8, text, -1, -1, 0);
    X509_set_issuer_name(certificate, name);
}

bool isValidAt(const X509* certificate, std::chrono::system_clock::time_point time) {
    std::time_t seconds = std::chrono::system_clock::to_time_t(time);
    return X509_cmp_time(X509_get0_notBefore(certificate), &seconds) < 0 &&
           X509_cmp_time(X509_get0_notAfter(certificate), &seconds) > 0;
}

} // namespace

Certificate makeCertificate(const std::vector<std::string>& names,
                            const std::vector<std::string>& addresses,
                            std::chrono::system_clock::time_point now) {
    const OwnedKey key(EVP_PKEY_Q_keygen(nullptr, nullptr, "EC", "P-256"));
    const OwnedX509 certificate(X509_new());
    NAVREL_ASSERT(key != nullptr && certificate != nullptr);
    X509_set_version(certificate.get(), X509_VERSION_3);
    setSerial(certificate.get());
    setTimes(certificate.get(), now);
    setNames(certificate.get());
    X509_set_pubkey(certificate.get(), key.get());
    addExtension(certificate.get(), NID_basic_constraints, "critical,CA:FALSE");
    addExtension(certificate.get(), NID_key_usage, "critical,digitalSignature");
    addExtension(certificate.get(), NID_ext_key_usage, "serverAuth");
    addExtension(certificate.get(), NID_subject_key_identifier, "hash");
    addExtension(certificate.get(), NID_subject_alt_name, alternativeNames(names, addresses));
    NAVREL_ASSERT(X509_sign(certificate.get(), key.get(), EVP_sha256()) > 0);

    const OwnedBIO chainText(BIO_new(BIO_s_mem()));
    const OwnedBIO keyText(BIO_new(BIO_s_mem()));
    NAVREL_ASSERT(PEM_write_bio_X509(chainText.get(), certificate.get()) == 1 &&
                  PEM_write_bio_PKCS8PrivateKey(keyText.get(), key.get(), nullptr, nullptr, 0,
                                                nullptr, nullptr) == 1);
    return {written(chainText), written(keyText)};
}

bool covers(const Certificate& certificate, const std::vector<std::string>& names,
            const std::vector<std::string>& addresses, std::chrono::system_clock::time_point now) {
    const OwnedX509 parsed = parsedChain(certificate.chain);
    if (parsed == nullptr || !isUsable(certificate) || !isValidAt(parsed.get(), now) ||
        !isValidAt(parsed.get(), now + kCertificateSpare)) {
        return false;
    }
    const auto hasName = [&](const std::string& name) {
        return X509_check_host(parsed.get(), name.data(), name.size(), 0, nullptr) == 1;
    };
    const auto hasAddress = [&](const std::string& address) {
        const std::string plain(withoutZone(address));
        return X509_check_ip_asc(parsed.get(), plain.c_str(), 0) == 1;
    };
    return std::all_of(names.begin(), names.end(), hasName) &&
           std::all_of(addresses.begin(), addresses.end(), hasAddress);
}

std::string fingerprintOf(const Certificate& certificate) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    const OwnedX509 parsed = parsedChain(certificate.chain);
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest = {};
    unsigned int size = 0;
    if (parsed == nullptr || X509_digest(parsed.get(), EVP_sha256(), digest.data(), &size) != 1) {
        return {};
    }
    std::string text;
    for (unsigned int index = 0; index < size; ++index) {
        text.append(text.empty() ? "" : ":");
        text += kDigits[digest.at(index) >> 4U];
        text += kDigits[digest.at(index) & 15U];
    }
    return text;
}

bool isUsable(const Certificate& certificate) {
    const OwnedX509 chain = parsedChain(certificate.chain);
    const OwnedKey key = parsedKey(certificate.key);
    const bool fits =
        chain != nullptr && key != nullptr && X509_check_private_key(chain.get(), key.get()) == 1;
    ERR_clear_error(); // what is no PEM leaves its complaint behind
    return fits;
}

Certificate keptCertificate(const std::string& folder, const std::vector<std::string>& names,
                            const std::vector<std::string>& addresses,
                            std::chrono::system_clock::time_point now) {
    const std::string path = folder + "/browser-certificate.pem"; // chain and key in one file
    if (const auto text = readSmallFile(path, kMaximumPEM)) {
        const Certificate kept = {*text, *text};
        if (covers(kept, names, addresses, now)) {
            return kept;
        }
    }
    const Certificate made = makeCertificate(names, addresses, now);
    if (const auto error = replacePrivateFile(path, made.chain + made.key)) {
        log(QStringLiteral("the certificate for browsers cannot be kept in %1: %2")
                .arg(QString::fromStdString(path), error->description()));
    }
    return made;
}

std::optional<Certificate> userCertificate(const std::string& chainFile,
                                           const std::string& keyFile) {
    auto chain = readSmallFile(chainFile, kMaximumPEM);
    auto key = readSmallFile(keyFile, kMaximumPEM);
    if (!chain || !key) {
        return std::nullopt;
    }
    Certificate certificate = {std::move(*chain), std::move(*key)};
    return isUsable(certificate) ? std::optional(std::move(certificate)) : std::nullopt;
}

} // namespace navrel
