// Documents on disk.  The schema is told in Docs/document-format.md.
//
// Invariants.  The test that guards each stands in brackets.
//
//   (F1) Whenever a save ends or is cut short, the file opens as the document before or after it,
//        field for field.  [DocumentFileFaultTests, the tests of failing calls;
//        Tools/crash-save]
//   (F2) A document that couldn't be saved goes on: it can be saved to another file, or to the same
//        one once the cause is gone.  [DocumentFileFaultTests, the same]
//   (F3) What was saved is loaded field for field, with the ids.  [DocumentFileTests,
//        EveryKindOfMemberComesBack; the round trip of random documents]
//   (F4) Saving again writes rows of what changed and no others.  [DocumentFileTests,
//        SavingAgainWritesOnlyWhatChanged]
//   (F5) No file, whatever its bytes, makes `load` or `check` do more than fail with a reason.
//        [DocumentFileDamageTests; Tools/fuzz]
//   (F6) A file that another program has changed since isn't written to.  [DocumentFileTests,
//        AFileThatAnotherProgramChangedIsntWrittenTo]
//   (F7) What a save wrote, a load reads: a document whose entities own each other in a circle, or
//        whose parents lead in one, isn't written, and can be once the circle is gone.
//        [DocumentFileCirclesTests; ManagedEntityTests, ParentsThatLeadInACircleAreNotSaved]
//   (F8) Opening a document changes no file but the document, and removes none but its own journal.
//        Saving one removes nothing besides that could be the only copy of something, and what lies
//        beside its name never changes what is in the new file.  [DocumentFileRemainsTests;
//        Tools/crash-save]
//   (F9) A save whose numbers would leave their ranges is refused, and the old file stays.
//        [DocumentFileRangeTests]
//   (F10) What a save writes refers only to what the file then holds, however it was stored.  A
//        reference to an entity that isn't alive, but may be again, is written as null and stays in
//        memory.  Its owner is written again by the save after which the target is alive again, and
//        so is an owner in the file whose target isn't alive any more.  A target that is alive and
//        not in the file is written too.  A reference into another document fails the save.
//        [SaveAndUndoTests, the tests of stored references]
//   (F11) What constructors and hooks make, change or delete during a load differs from the file:
//        the document is dirty, and the next save writes and erases it.  Ids that the file used
//        aren't given out again.  [LoadingHooksTests]

#ifndef VN_PLATFORM_DATAMODEL_DOCUMENTFILE_H
#define VN_PLATFORM_DATAMODEL_DOCUMENTFILE_H

#include <filesystem>
#include <string>
#include <vector>

#include "Platform/Base/RefCounted.h"
#include "Platform/Base/Status.h"
#include "Platform/DataModel/Asset.h"
#include "Platform/DataModel/Export.h"

namespace Vn {

// Saves and loads documents.  Every failure is a Status with the operation, the file and the cause.
class VN_DATAMODEL_API DocumentFile {
public:
    // The version of the schema that is written.  Older ones are read, newer ones refused.
    static constexpr int c_schemaVersion = 1;

    // Writes the document to the file that it was last loaded from or saved to; only what changed
    // since.  After a crash or a failure at any moment the file holds the document as it was before
    // or after the save.  Refused if another program has changed or replaced the file since, within
    // a transaction, for a document without a file, once its history isn't usable, and for one in
    // which an entity owns itself by way of others, is its own ancestor, or refers to an entity of
    // another document: the status names it.
    static Status save(Asset & asset);
    // Writes the whole document to a file, in place of one that is there, and makes that the
    // document's file.  It is written beside its final name, with ".saving" after it, and given
    // that name once it is complete and on the disk.  After a failure the document has the file
    // that it had.  Refused within a transaction, once the document's history isn't usable, for a
    // circle of entities, and for a reference into another document; and with StatusBusy while
    // another program uses the file or saves under its name.
    //
    // A crash may have left something beside the name that could be the only copy of something: a
    // journal that brings a document back which was moved away, or a document that was complete and
    // not yet given its name.  It isn't removed, and doesn't get in the way of the new file: it
    // gets ".kept" after its name, or ".kept.2" and so on.
    static Status saveAs(Asset & asset, std::filesystem::path const & file);
    // The same, and gives the new names of what was kept; none after a failure.
    static Status saveAsKeeping(Asset & asset, std::filesystem::path const & file,
                                std::vector<std::filesystem::path> & kept);
    // Opens a document.  After a failure `asset` is null.  `type` as in Asset::make.  If a crash
    // cut a save short, the file is first brought back to what it was before, by the journal beside
    // it.  No other file is touched: a journal that names another file is refused, and stays.
    // StatusUnsupported if it has entities of classes that this program doesn't know.
    // StatusCancelled once the user wishes to end it, see OS::NotedInterruptions.
    static Status load(std::filesystem::path const & file, AssetType const * type,
                       StrongRef<Asset> & asset);

    // What is wrong with a file, in lines for a person; empty if nothing is.  It looks at the
    // database, the schema, and every reference and value, and knows nothing of the classes.  The
    // status says whether the file could be looked at.  Cancelled as `load` is.
    static Status check(std::filesystem::path const & file, std::vector<std::string> & findings);
    // The same, and which classes of entities in the file this program doesn't know, as "Name (id)"
    // in the order of the file.  The file isn't damaged for that: add-ins of another program may
    // have brought them.
    static Status check(std::filesystem::path const & file, std::vector<std::string> & findings,
                        std::vector<std::string> & unknownTypes);

    // Reads and writes through a virtual file system that was registered with the database engine
    // under that name; empty for its own.  For the tests of failing devices.
    static void fileSystem(std::string name);

private:
    class Reader;
    class Writer;
};

} // namespace Vn

#endif
