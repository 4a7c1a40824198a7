#pragma once

#include "codemap/cfamily/Head.h"

#include <cstddef>
#include <string>

namespace navrel::cfamily {

/// The selector of a method's head, which begins with "-" or "+": "-move:by:". Empty for what is
/// no method. `first` becomes the index of its first word or colon.
std::string readSelector(const Head& head, std::size_t& first);

} // namespace navrel::cfamily
