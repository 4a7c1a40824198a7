#pragma once

#include <QByteArray>

namespace navrel::bench {

/// A made-up project.pbxproj of about the given size, the same on every run. Its objects, names,
/// comments and the proportions between them are those of a large application's.
QByteArray makeProjectFile(qsizetype size);

} // namespace navrel::bench
