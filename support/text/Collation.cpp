#include "support/text/Collation.h"

#include "support/core/Assertion.h"

#include <unicode/ucol.h>
#include <unicode/uloc.h>

#include <memory>
#include <string_view>

namespace navrel {

namespace {

struct CollatorCloser {
    void operator()(UCollator* collator) const { ucol_close(collator); }
};
using CollatorOwner = std::unique_ptr<UCollator, CollatorCloser>;

/// ICU's locale for the environment "C" sorts every capital before every small letter at the first
/// level, which no strength undoes; the root locale stands in for it.
const char* collationLocale() {
    const char* locale = uloc_getDefault();
    return std::string_view(locale) == "en_US_POSIX" ? "" : locale;
}

CollatorOwner makeCollator() {
    UErrorCode status = U_ZERO_ERROR;
    CollatorOwner collator(ucol_open(collationLocale(), &status));
    NAVREL_ASSERT(U_SUCCESS(status));
    // Base letters and accents count, letter case does not.
    ucol_setStrength(collator.get(), UCOL_SECONDARY);
    return collator;
}

} // namespace

int localizedCaseInsensitiveCompare(QByteArrayView left, QByteArrayView right) {
    static const CollatorOwner collator = makeCollator(); // read only afterwards
    UErrorCode status = U_ZERO_ERROR;
    return ucol_strcollUTF8(collator.get(), left.data(), static_cast<int32_t>(left.size()),
                            right.data(), static_cast<int32_t>(right.size()), &status);
}

} // namespace navrel
