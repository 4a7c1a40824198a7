#pragma once

namespace navrel {

class CDObject;
class ManagedObjectContext;
class SourceFindings;

/// The data manager's scanning operations: what a scan of a record's file has found goes into the
/// store. None of them deletes older records, which the caller must have done, or saves. What the
/// context has no room for is left out. Main thread.

/// Sets the record's `subclassOf` to the superclass that was found; without one the former value
/// stays.
void setSuperclassForManagedObject(CDObject& object, const SourceFindings& findings);

/// Inserts a CDShortcut for each shortcut comment, with identifier, path and line of the shortcut
/// and its text; `name` is deliberately left nil.
void generateShortcutsForManagedObject(const CDObject& object, const SourceFindings& findings,
                                       ManagedObjectContext& context);

/// Inserts a CDElement for each code element: all classes first, then all methods, marks and
/// warnings, shortcuts, properties.
void generateElementsForManagedObject(const CDObject& object, const SourceFindings& findings,
                                      ManagedObjectContext& context);

} // namespace navrel
