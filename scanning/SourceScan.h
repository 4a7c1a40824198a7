#pragma once

#include "scanning/SourceFindings.h"
#include "scanning/SuperclassBudget.h"
#include "scanning/search/CandidateSearch.h"

#include <QByteArrayView>

namespace navrel {

/// Finds the superclass, the shortcut comments and the code elements of a source file in one pass
/// over its text: what a search by ICU for each pattern (tests/scanning/plain/ScanPatterns.h) finds
/// wherever ICU comes to an end, and elsewhere what the patterns mean. Takes time in proportion to
/// the length of the text, whatever it holds.
///
/// A text that is not UTF-8 has no elements; superclass and shortcuts are those of the lines before
/// the first one that is not. A header has no superclass where its base name is a pattern that the
/// budget does not suffice for. `findings` is cleared first; it holds parts of `text`.
void scanSource(QByteArrayView text, const SourceName& name, SourceFindings& findings,
                SuperclassBudget& budget);

/// The same for a text by itself, with a full budget.
void scanSource(QByteArrayView text, const SourceName& name, SourceFindings& findings);

/// The same by a search for candidates of the caller's choice.
void scanSource(QByteArrayView text, const SourceName& name, SourceFindings& findings,
                SuperclassBudget& budget, CandidateSearch search);

} // namespace navrel
