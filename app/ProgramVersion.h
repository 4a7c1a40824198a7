#pragma once

#include <QString>

namespace navrel {

/// The program's version, as released: "1.4.2".
QString programVersion();

/// The first two components of a version: "1.4" for "1.4.2". Further components are dropped
/// deliberately: the device compares only these. A version of one component is given as it is.
QString majorMinorVersion(const QString& version);

} // namespace navrel
