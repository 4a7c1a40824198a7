#pragma once

#include <QByteArray>
#include <QString>

#include <chrono>

namespace navrel {

/// Whether the session bus greets who connects to it, within a limit. Qt and its platform plugins
/// wait for it for half a minute each, several times, and nothing can interrupt them: a bus that
/// accepts and never answers would hold up the start for more than a minute.
///
/// Asks at an address as the environment has it ("unix:path=…" or "unix:abstract=…"; of several,
/// the first). An address of any other kind is not asked at, and counts as one that greets.
bool greetsOnBus(const QByteArray& address, std::chrono::milliseconds atMost);

/// The environment's variable for the bus's address.
inline constexpr char kSessionBusVariable[] = "DBUS_SESSION_BUS_ADDRESS";

/// The address at which programs of this session find its bus; empty where there is none.
QByteArray sessionBusAddress();

} // namespace navrel
