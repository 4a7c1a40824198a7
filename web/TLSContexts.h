#pragma once

#include "web/ByteStream.h"
#include "web/Certificate.h"

namespace navrel {

/// What TLS connections are made with: TLS 1.2 or later, forward secrecy, authenticated ciphers.
/// Null where the certificate cannot be used.
TLSContext tlsContext(const Certificate& certificate);

} // namespace navrel
