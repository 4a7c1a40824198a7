#pragma once

#include "codemap/Outline.h"

#include <string>

namespace navrel {

/// An outline in plain text, one line a symbol, indented by its depth:
///
///     class TideView 3-20 public : UIView, TideObserving
///         method move(to:by:) 5-9
///
/// Behind the symbols stand headings ("heading 11 - View", where "-" means a separator) and notes
/// ("note 20 todo Ask the harbour").
std::string textOf(const Outline& outline);

} // namespace navrel
