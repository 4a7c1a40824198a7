#pragma once

#include "project/SourceScanner.h"
#include "scanning/SourceFileBuffer.h"
#include "scanning/SourceFindings.h"
#include "scanning/SuperclassBudget.h"

#include <QByteArray>

#include <optional>

namespace navrel {

/// Reads source files for their records. Loading calls the operations for one record after the
/// other, each in the order superclass, shortcuts, elements: called so, they share one reading and
/// one scan of the file, which is the state that all of them then tell of. An operation out of that
/// order reads the file by itself. All headers share one `SuperclassBudget`, so that no project
/// keeps the scanner busy with names that are patterns. What the context has no room for is left
/// out. Main thread.
class SourceFileScanner final : public SourceScanner {
public:
    void setSuperclassForManagedObject(CDObject& object) override;

    /// The records tell identifier, path and line of the shortcut and its text; their `name` is
    /// deliberately left nil.
    void generateShortcutsForManagedObject(const CDObject& object,
                                           ManagedObjectContext& context) override;

    /// Inserts all classes first, then all methods, marks and warnings, shortcuts, properties.
    void generateElementsForManagedObject(const CDObject& object,
                                          ManagedObjectContext& context) override;

private:
    enum class Operation { Superclass, Shortcuts, Elements };

    const SourceFindings* findingsFor(const CDObject& object, Operation operation);
    void scan(const std::optional<QByteArray>& path);

    SourceFileBuffer buffer_;
    SourceFindings findings_;
    SuperclassBudget superclassBudget_;
    bool isReadable_ = false;

    // What the next operation must be for to go on with the findings.
    std::optional<QByteArray> path_;
    Operation lastOperation_ = Operation::Elements;
};

} // namespace navrel
