#pragma once

#include "scanning/SourceFindings.h"
#include "scanning/SuperclassBudget.h"
#include "scanning/search/CandidateSearch.h"

#include <QByteArrayView>

namespace navrel {

/// Finds the superclass, the shortcut comments and the code elements of a source file in one pass
/// over its text. Finds what a search by ICU for each pattern (tests/scanning/plain/ScanPatterns.h)
/// would, also where ICU gives up. Takes time in proportion to the length of the text, whatever it
/// holds.
///
/// A text that is not UTF-8 has no elements; superclass and shortcuts are those of the lines before
/// the first one that is not. A header gets no superclass if its base name is a pattern for which
/// the budget does not suffice. `findings` is cleared first, and refers to parts of `text`, which
/// must outlive it. One thread at a time for the findings and the budget.
void scanSource(QByteArrayView text, const SourceName& name, SourceFindings& findings,
                SuperclassBudget& budget);

/// As above, with a full budget of its own.
void scanSource(QByteArrayView text, const SourceName& name, SourceFindings& findings);

/// As above, with a candidate search of the caller's choice.
void scanSource(QByteArrayView text, const SourceName& name, SourceFindings& findings,
                SuperclassBudget& budget, CandidateSearch search);

} // namespace navrel
