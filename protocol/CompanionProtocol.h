#pragma once

#include <QtGlobal>

namespace navrel {

// The protocol between Navrel and the companion app, above the frames. docs/protocol.md describes
// each request and its reply.

/// Where the companion app listens: on the device, and on 127.0.0.1 in the simulator.
inline constexpr quint16 kCompanionPort = 2345;

// Frame types of requests.
inline constexpr quint32 kFrameNavigator = 200;
inline constexpr quint32 kFrameOpenFile = 201;
inline constexpr quint32 kFrameRootNavigator = 202;
inline constexpr quint32 kFrameShortcuts = 203;
inline constexpr quint32 kFrameElements = 204;
inline constexpr quint32 kFrameFileTypes = 205;
inline constexpr quint32 kFrameChangeFileType = 206;
inline constexpr quint32 kFrameSuperclasses = 207;
inline constexpr quint32 kFrameOpenWithDesktop = 208;
inline constexpr quint32 kFrameProject = 209;
inline constexpr quint32 kFramePickProject = 210;
inline constexpr quint32 kFrameVersion = 211;

/// Frame type of every reply; its tag is that of the request.
inline constexpr quint32 kFrameReply = 500;

} // namespace navrel
