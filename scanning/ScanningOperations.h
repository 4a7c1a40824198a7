#pragma once

namespace navrel {

class CDObject;
class ManagedObjectContext;
class SourceFindings;

/// The data manager's scanning operations: store the findings of a scan of a record's file. The
/// caller must have deleted the older records of the file, and must save. Records for which the
/// context has no room are left out. Main thread.

/// Sets the record's `subclassOf` to the superclass that was found. If none was, it keeps its
/// value.
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
