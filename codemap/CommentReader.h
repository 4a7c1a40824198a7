#pragma once

#include <cstddef>
#include <string_view>

namespace navrel {

class LineCounter;
class OutlineBuilder;

/// What a comment says to readers, line by line:
/// - at the beginning of a line, in any letter case: "MARK:", a heading, which "-" makes a
///   separator; "TODO:", "FIXME:", "HACK:", "XXX:" and "WARNING:", notes. All but the first and the
///   last may name an author ("TODO(mia):"), and stand without the colon where they are in
///   capitals;
/// - anywhere in a line: the same notes in capitals and with their colon; and shortcuts, which are
///   "//", blanks, and "navrel:" in any letter case.
///
/// `comment` is the text with its signs ("//", "/*" and "*/"), `offset` its place in the counted
/// text: lines are counted only for what says something. Each recogniser gives its comments here,
/// in their order.
void readComment(std::string_view comment, std::size_t offset, LineCounter& lines,
                 OutlineBuilder& builder);

} // namespace navrel
