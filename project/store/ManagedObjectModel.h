#pragma once

#include <vector>

namespace navrel {

struct AttributeDescription {
    const char* name;
    /// Else an integer: booleans are 0 and 1, dates nanoseconds since 1970. Every attribute may be
    /// nil.
    bool isText;
};

struct EntityDescription {
    const char* name;
    /// In alphabetical order.
    std::vector<AttributeDescription> attributes;
};

struct ManagedObjectModel {
    std::vector<EntityDescription> entities;
};

/// What the store holds: the entities CDObject, CDFiletype, CDShortcut and CDElement with their
/// attributes, as the record classes declare them. The same object in every call.
const ManagedObjectModel& managedObjectModel();

} // namespace navrel
