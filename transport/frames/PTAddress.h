#pragma once

#include "support/core/Described.h"

#include <QString>

#include <optional>
#include <sys/socket.h>

namespace navrel {

/// A socket address as a value, with a text for the log.
class PTAddress final : public Described {
public:
    /// Copies the address, as many bytes as its family has; an address of no family (AF_UNSPEC) is
    /// the empty one. A null pointer stops the program.
    explicit PTAddress(const sockaddr* addr);

    bool isEmpty() const { return sockaddr_.ss_family == AF_UNSPEC; }

    /// The numeric text of the address. Nil for an empty address, for one that is neither IPv4 nor
    /// IPv6, and, deliberately, for an IPv4 address of 15 characters.
    std::optional<QString> name() const;

    /// In host byte order; 0 for an empty address.
    quint16 port() const;

    /// "127.0.0.1:2345"; "(?)" for an empty address.
    QString description() const override;

private:
    sockaddr_storage sockaddr_ = {};
};

} // namespace navrel
