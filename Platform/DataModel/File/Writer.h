#ifndef VN_PLATFORM_DATAMODEL_FILE_WRITER_H
#define VN_PLATFORM_DATAMODEL_FILE_WRITER_H

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "Platform/DataModel/DocumentFile.h"
#include "Platform/DataModel/File/Database.h"
#include "Platform/DataModel/File/Lists.h"
#include "Platform/DataModel/File/Schema.h"
#include "Platform/DataModel/File/Values.h"

namespace Vn {

// What a document remembers of its file: which document it is, and as which save left it.
struct DocumentFileStamp {
    std::string m_id;
    long long m_generation = 0;
    std::string m_stamp;
    // What the file has if a save took effect although it was reported as failed.
    std::string m_doubtful;

    static DocumentFileStamp parse(std::string const & text);
    std::string toString() const;
};

// Writes one document.  Failures are thrown as FileFailure.
class DocumentFile::Writer : private DataModel::ValueWriter {
public:
    // `operation` is for messages.
    Writer(Asset & asset, std::string operation, std::string fileSystem);
    ~Writer() override;

    // Writes a new file beside the old one, which it replaces once it is complete and flushed: at
    // each moment the name leads to the old document or to the new one.  `kept` gets the new names
    // of what lay beside the file and was kept.
    void saveWhole(std::filesystem::path const & file, std::vector<std::filesystem::path> & kept);
    // Writes the rows of what changed into the document's own file, in one transaction of the
    // database.  A file that isn't as the last save left it is refused, and stays.
    void saveChanges();
    // Has the next save of changes write the entities whose rows don't tell any more what they
    // refer to, since a target came or went, although they themselves didn't change.
    void noteStale();

private:
    struct Class;

    // The statements of one database.  They are gone before it is closed.
    void begin(DataModel::Database & database, DataModel::FileSchema & schema);
    void end() noexcept;

    static bool isCurrent(DataModel::Database const & database, DataModel::FileSchema & schema);
    void writeSegments();
    void writeRoots();
    // Each entity that this save writes; of a save of changes those from a place on.  `visit` may
    // make, change and delete entities.
    template <class Visit>
    void forEachToWrite(Visit && visit, std::size_t first = 0) const;
    // Tells the hooks, which may still change the document, and refuses what a load would refuse;
    // nothing is written before.
    void prepare(std::filesystem::path const & file);
    // Refuses references that can't be written, has targets that aren't in the file written too,
    // and collects the gaps.
    void checkReferences(std::filesystem::path const & file);
    unsigned long long idOnCircle(std::vector<unsigned long long> const & ids) const;
    void writeEntities();
    void eraseDeleted();
    void write(Entity & entity);
    void writeRows(Class & target);
    void bindColumns(Class & target, Entity const & entity, DataModel::Statement & rows,
                     std::size_t row);
    void writeLists(Class & target, Entity & entity);
    Class & classOf(Entity & entity);
    enum class EFate { Null, Written, Gap, Foreign };
    // What becomes of a reference in the file.
    EFate fateOf(Entity const * target) const noexcept;
    EFate fateOf(PassiveRef<Entity> const & reference) const noexcept;
    unsigned long long onIdOf(Entity const * target) const noexcept override;
    unsigned long long onIdOf(PassiveRef<Entity> const & reference) const noexcept override;
    static bool isWritten(Entity const & entity) noexcept;
    bool isOurs(Entity const & entity) const noexcept;

    void saveWhole(std::filesystem::path const & file, DataModel::FileHead const * expected);
    static void refuseChanged(DataModel::Database & old, DataModel::FileHead const & expected);
    void refuseUnnoted() const;
    // What the document knows of its file once that is saved.
    struct Saved {
        std::filesystem::path file;
        std::string stamp;
    };
    static Saved makeSaved(std::filesystem::path const & file, DataModel::FileHead const & head);
    // Both only after the file is complete, and without anything that could fail: a save that was
    // reported as good is the one that the document remembers.
    void finish(Saved saved) noexcept;
    void markSaved();

    Asset & m_asset;
    std::string const m_operation;
    std::string const m_fileSystem;
    DataModel::Database * m_pDatabase = nullptr;
    DataModel::FileSchema * m_pSchema = nullptr;
    std::vector<std::filesystem::path> * m_pKept = nullptr;
    bool m_bWhole = true; // not only what changed
    bool m_bPrepared = false;
    std::unordered_map<unsigned long long, std::vector<unsigned long long>> m_gaps; // once prepared
    std::unordered_map<EntityMetaType const *, std::unique_ptr<Class>> m_classes;
    Class * m_pLastClass = nullptr;
    std::unique_ptr<DataModel::ListWriter> m_pLists;
    DataModel::ChunkCutter m_cutter;
};

} // namespace Vn

#endif
