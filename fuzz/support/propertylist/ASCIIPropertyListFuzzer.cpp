#include "fuzz/support/propertylist/RoundTrip.h"
#include "support/propertylist/ASCIIPropertyList.h"
#include "support/propertylist/PropertyListDocument.h"
#include "support/propertylist/PropertyListIndex.h"

#include <QString>

namespace navrel {
namespace {

using propertylist::Node;
using propertylist::NodeArray;

void checkThatVectorsChangeNothing(std::string_view text) {
    NodeArray nodes;
    NodeArray portable;
    const auto failure = propertylist::parseASCII(text, nodes);
    const auto portableFailure = propertylist::parseASCIIPortably(text, portable);

    NAVREL_ASSERT(failure.has_value() == portableFailure.has_value());
    if (failure) {
        NAVREL_ASSERT(failure->position == portableFailure->position);
        NAVREL_ASSERT(failure->position <= text.size());
        return;
    }
    NAVREL_ASSERT(nodes.size() == portable.size());
    for (std::uint32_t i = 0; i < nodes.size(); ++i) {
        const Node& left = nodes.at(i);
        const Node& right = portable.at(i);
        NAVREL_ASSERT(left.kind() == right.kind() && left.position() == right.position() &&
                      left.size() == right.size());
    }
}

void checkIndex(PropertyListDocument::Value dictionary) {
    PropertyListIndex index;
    index.build(dictionary);
    NAVREL_ASSERT(index.size() <= dictionary.count());
    for (const auto [key, value] : dictionary.entries()) {
        NAVREL_ASSERT(
            QString::fromUtf8(key.utf8().data(), static_cast<qsizetype>(key.utf8().size()))
                .isValidUtf16());
        NAVREL_ASSERT(index.find(key.utf8()).toVariant() == dictionary[key.utf8()].toVariant());
    }
}

} // namespace
} // namespace navrel

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace navrel;
    const auto* const text = reinterpret_cast<const char*>(data);
    checkThatVectorsChangeNothing({text, size});

    PropertyListDocument document;
    std::optional<Error> error;
    const bool isRead = document.read(QByteArray(text, static_cast<qsizetype>(size)), &error);
    NAVREL_ASSERT(isRead != error.has_value());
    NAVREL_ASSERT(isRead == static_cast<bool>(document.root()));
    if (isRead && document.root().count() < 1000) {
        checkIndex(document.root());
        fuzz::checkRoundTrip(document.root().toVariant(), binaryDataWithPropertyList);
    }
    return 0;
}
