#include "codemap/TextForm.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace navrel {

namespace {

/// Sixteen bytes at a time, which the compiler turns into the processor's own instructions.
constexpr std::size_t kFormLanes = 16;
using FormLanes [[gnu::vector_size(kFormLanes)]] = unsigned char;

FormLanes formLanesAt(const char* bytes) {
    FormLanes lanes;
    std::memcpy(&lanes, bytes, kFormLanes);
    return lanes;
}

/// The bits that are set in any lane of one half or the other.
std::uint64_t bitsOf(const FormLanes& lanes) {
    std::uint64_t halves[2];
    std::memcpy(halves, &lanes, sizeof halves);
    return halves[0] | halves[1];
}

/// Sixteen places of a text, the byte behind them included.
class FormPass {
public:
    void add(const char* bytes) {
        const FormLanes lanes = formLanesAt(bytes);
        const FormLanes next = formLanesAt(bytes + 1);
        const auto isOdd = (lanes <= ' ') & ((lanes != ' ') | (next == ' '));
        odd_ |= reinterpret_cast<FormLanes>(isOdd);
        all_ |= lanes;
    }

    TextForm form() const {
        constexpr std::uint64_t kHighBits = 0x8080808080808080;
        return {(bitsOf(all_) & kHighBits) == 0, bitsOf(odd_) == 0};
    }

private:
    FormLanes odd_{};
    FormLanes all_{};
};

/// Fills up with a byte that changes nothing.
TextForm formOfShort(std::string_view text) {
    char padded[kFormLanes + 1];
    std::memset(padded, 'a', sizeof padded);
    std::copy(text.begin(), text.end(), padded);
    FormPass pass;
    pass.add(padded);
    return pass.form();
}

} // namespace

TextForm formOf(std::string_view text) {
    if (text.empty()) {
        return {};
    }
    TextForm form;
    if (text.size() <= kFormLanes) {
        form = formOfShort(text);
    } else {
        FormPass pass;
        // The last byte is only looked at as one behind: it decides by itself below.
        const std::size_t last = text.size() - 1 - kFormLanes;
        for (std::size_t place = 0; place < last; place += kFormLanes) {
            pass.add(text.data() + place);
        }
        pass.add(text.data() + last);
        form = pass.form();
    }
    const auto first = static_cast<unsigned char>(text.front());
    const auto final = static_cast<unsigned char>(text.back());
    form.isASCII = form.isASCII && final < 0x80;
    form.isOneLine = form.isOneLine && first > ' ' && final > ' ';
    return form;
}

} // namespace navrel
