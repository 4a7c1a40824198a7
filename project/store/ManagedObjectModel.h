#pragma once

#include <vector>

namespace navrel {

/// The kinds of values that attributes have. Every attribute may also be nil.
enum class AttributeType {
    kText,
    kBoolean,
    kInteger32,
    /// Also dates, as nanoseconds since 1970.
    kInteger64,
};

struct AttributeDescription {
    const char* name;
    AttributeType type;
};

struct EntityDescription {
    const char* name;
    /// In alphabetical order.
    std::vector<AttributeDescription> attributes;
};

/// What the store holds: the entities CDObject, CDFiletype, CDShortcut and CDElement with their
/// attributes, as the record classes declare them.
class ManagedObjectModel {
public:
    ManagedObjectModel();

    const std::vector<EntityDescription>& entities() const { return entities_; }

private:
    std::vector<EntityDescription> entities_;
};

} // namespace navrel
