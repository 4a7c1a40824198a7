#include "project/store/ManagedObjectModel.h"

#include "project/store/StoreTables.h"

#include <optional>
#include <tuple>

namespace navrel {

namespace {

template <typename Record>
constexpr AttributeType typeOf(Attribute<Record, QByteArray>) {
    return AttributeType::kText;
}

template <typename Record>
constexpr AttributeType typeOf(Attribute<Record, bool>) {
    return AttributeType::kBoolean;
}

template <typename Record>
constexpr AttributeType typeOf(Attribute<Record, qint32>) {
    return AttributeType::kInteger32;
}

template <typename Record>
constexpr AttributeType typeOf(Attribute<Record, qint64>) {
    return AttributeType::kInteger64;
}

template <typename Record>
EntityDescription descriptionOf() {
    return std::apply(
        [](auto... attribute) {
            return EntityDescription{Record::kEntityName, {{attribute.name, typeOf(attribute)}...}};
        },
        Record::attributes());
}

} // namespace

ManagedObjectModel::ManagedObjectModel()
    : entities_{descriptionOf<CDObject>(), descriptionOf<CDFiletype>(), descriptionOf<CDShortcut>(),
                descriptionOf<CDElement>()} {}

} // namespace navrel
