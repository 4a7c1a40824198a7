#pragma once

namespace navrel {

class CDObject;
class ManagedObjectContext;

/// The operations that read a source file for its record. Project loading fixes when and in which
/// order they run, and deletes a file's older records first; the bodies live a layer above. They
/// read the record's `path`, save nothing, and ignore a file that cannot be read. Main thread.
class SourceScanner {
public:
    virtual ~SourceScanner() = default;

    /// Sets the record's `subclassOf` to the superclass that the header declares; leaves it alone
    /// where none is found.
    virtual void setSuperclassForManagedObject(CDObject& object) = 0;

    /// Inserts a CDShortcut for each shortcut comment of the file.
    virtual void generateShortcutsForManagedObject(const CDObject& object,
                                                   ManagedObjectContext& context) = 0;

    /// Inserts a CDElement for each code element of the file.
    virtual void generateElementsForManagedObject(const CDObject& object,
                                                  ManagedObjectContext& context) = 0;

protected:
    SourceScanner() = default;
    SourceScanner(const SourceScanner&) = default;
    SourceScanner& operator=(const SourceScanner&) = default;
};

} // namespace navrel
