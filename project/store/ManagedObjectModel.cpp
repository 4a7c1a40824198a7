#include "project/store/ManagedObjectModel.h"

#include "project/store/StoreTables.h"

#include <tuple>
#include <type_traits>

namespace navrel {

namespace {

template <typename Record, typename Value>
AttributeDescription descriptionOf(Attribute<Record, Value> attribute) {
    return {attribute.name, std::is_same_v<Value, QByteArray>};
}

template <typename Record>
EntityDescription descriptionOf() {
    return std::apply(
        [](auto... attribute) {
            return EntityDescription{Record::kEntityName, {descriptionOf(attribute)...}};
        },
        Record::attributes());
}

} // namespace

const ManagedObjectModel& managedObjectModel() {
    static const ManagedObjectModel model{{descriptionOf<CDObject>(), descriptionOf<CDFiletype>(),
                                           descriptionOf<CDShortcut>(),
                                           descriptionOf<CDElement>()}};
    return model;
}

} // namespace navrel
