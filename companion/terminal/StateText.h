#pragma once

#include "companion/terminal/TerminalText.h"

#include <QString>

#include <boost/json/object.hpp>

namespace navrel {

/// What the view of the state says, a sentence a line, and below it what to do. Pure.
QString stateText(const boost::json::object& state, const TerminalText& text);

/// The paired browsers of their view, one a line. Pure.
QString devicesText(const boost::json::object& devices);

} // namespace navrel
