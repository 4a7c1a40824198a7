#pragma once

#include "project/store/CDElement.h"
#include "project/store/CDFiletype.h"
#include "project/store/CDObject.h"
#include "project/store/CDShortcut.h"
#include "project/store/RecordTable.h"

namespace navrel {

/// The records of all entities.
struct StoreTables {
    RecordTable<CDObject> objects;
    RecordTable<CDFiletype> filetypes;
    RecordTable<CDShortcut> shortcuts;
    RecordTable<CDElement> elements;

    /// Calls `visit(table)` for each table until a result converts to true, and returns the last
    /// one.
    template <typename Visit>
    auto visitUntil(Visit visit) {
        auto result = visit(objects);
        if (!result) {
            result = visit(filetypes);
        }
        if (!result) {
            result = visit(shortcuts);
        }
        if (!result) {
            result = visit(elements);
        }
        return result;
    }
};

} // namespace navrel
