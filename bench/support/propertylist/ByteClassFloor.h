#pragma once

#include <QByteArray>

namespace navrel::bench {

/// One pass over the bytes through a table of 256 byte classes: the least that a reader which looks
/// at every byte on its own must do. Returns the sum of the classes.
unsigned sumOfByteClasses(const QByteArray& bytes);

} // namespace navrel::bench
