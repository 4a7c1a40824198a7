#pragma once

#include "support/core/TransitionTable.h"

#include <QtGlobal>

namespace navrel {

/// How far the device link is.
enum class LinkState : quint8 {
    idle,                 ///< no channel and no wanted device; the simulator is polled
    reachingDevice,       ///< no channel; an attempt for the wanted device is under way or due
    connectedToDevice,    ///< the channel is that of a device on USB
    connectedToSimulator, ///< the channel is that of no device that is still known
};

/// What may happen to the link.
enum class LinkEvent : quint8 {
    deviceWanted,       ///< an attempt to reach the wanted device was enqueued
    wantedDeviceGone,   ///< the device that was wanted is detached
    deviceConnected,    ///< a device's channel has become the connected one
    simulatorConnected, ///< a channel of no device has become the connected one
    deviceForgotten,    ///< the connected device is gone; its channel still stands
    channelGone,        ///< there is no connected channel
};

namespace detail {

using enum LinkState;

// clang-format off
inline constexpr TransitionTable<LinkState, 4, 6> kLinkTransitions = {{
    // deviceWanted         wantedDeviceGone      deviceConnected    simulatorConnected    deviceForgotten       channelGone
    {{reachingDevice,       idle,                 connectedToDevice, connectedToSimulator, idle,                 idle}},
    {{reachingDevice,       idle,                 connectedToDevice, connectedToSimulator, reachingDevice,       reachingDevice}},
    {{connectedToDevice,    connectedToDevice,    connectedToDevice, connectedToSimulator, connectedToSimulator, idle}},
    {{connectedToSimulator, connectedToSimulator, connectedToDevice, connectedToSimulator, connectedToSimulator, idle}},
}};
// clang-format on

} // namespace detail

/// The state after an event. Every event may come in every state. An end leads to `idle`; where a
/// device is still wanted, `deviceWanted` follows at once.
constexpr LinkState nextLinkState(LinkState state, LinkEvent event) {
    return stateAfter(detail::kLinkTransitions, state, event);
}

/// Whether a channel stands. The connection queue is suspended in these states, and in no other.
constexpr bool isConnected(LinkState state) {
    return state == LinkState::connectedToDevice || state == LinkState::connectedToSimulator;
}

} // namespace navrel
