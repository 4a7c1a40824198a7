#pragma once

#include <QByteArray>
#include <QString>

#include <chrono>

namespace navrel {

/// Whether the session bus answers a client's greeting within a time limit. Blocks until then. Qt
/// and its platform plugins wait for half a minute each, several times, and cannot be interrupted:
/// a bus that accepts connections and never answers would delay the start by more than a minute.
///
/// The address is one as the environment has it: "unix:path=…" or "unix:abstract=…"; of several,
/// the first is tried. An address of any other kind is not tried, and counts as one that answers.
bool greetsOnBus(const QByteArray& address, std::chrono::milliseconds atMost);

/// The environment variable with the bus's address.
inline constexpr char kSessionBusVariable[] = "DBUS_SESSION_BUS_ADDRESS";

/// The address of the session's bus; empty if there is none.
QByteArray sessionBusAddress();

} // namespace navrel
