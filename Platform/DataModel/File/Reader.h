#ifndef VN_PLATFORM_DATAMODEL_FILE_READER_H
#define VN_PLATFORM_DATAMODEL_FILE_READER_H

#include <cstddef>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "Platform/DataModel/DocumentFile.h"
#include "Platform/DataModel/File/Database.h"
#include "Platform/DataModel/File/Schema.h"
#include "Platform/DataModel/File/Values.h"

namespace Vn {

class UniqueString;

// Reads one document.  Failures are thrown as FileFailure; the half of a document that was made
// until then goes with the reader.
class DocumentFile::Reader {
public:
    Reader(std::filesystem::path file, AssetType const * type, std::string operation,
           std::string fileSystem);
    ~Reader();

    StrongRef<Asset> read();

private:
    using Database = DataModel::Database;
    using FileHead = DataModel::FileHead;
    using FileMember = DataModel::FileMember;
    using FileSchema = DataModel::FileSchema;
    using Statement = DataModel::Statement;

    struct Target;
    struct Column;
    struct List;
    struct Plan;
    struct Class;
    struct Home;

    // A reference to an entity that wasn't there yet.
    struct FixUp {
        void * field;
        unsigned long long id;
        Entity * entity;
        Column * column;
    };

    void resolveTypes();
    void readSegments();
    void readEntities(Class & of);
    void readColumns(Plan & plan, Statement & row, Entity & entity);
    void resolveFixUps();
    void readLists();
    void readChunk(List & list, Entity & entity, std::string_view items);
    void readRoots();
    void refuseCircles() const;
    void complete();
    void settleOwners();
    void runHooks();
    void uninitializeHelpers() noexcept;
    void migrateValues();
    void migrateValues(MemberSet const & set, char * object, Entity const & entity);
    void migrateValue(ValueMetaType & type, char * value, Entity const & entity);

    Plan & planFor(Class & of, Entity & entity);
    std::unique_ptr<Plan> makePlan(Class & of, std::vector<unsigned> versions);
    std::vector<Home> homes(Class & of, Plan & plan);
    bool isOlder(Class const & of, FileMember const & member) const;
    void * placeOf(Entity & entity, std::ptrdiff_t offset, EntityMetaType const * helper) const;

    // An entity of the file; null if it isn't there.  What hooks made meanwhile isn't of the file.
    Entity * loaded(unsigned long long id) const noexcept;
    // Gives a reference its target.  False if that isn't loaded yet, unless this is the last
    // chance.
    bool resolve(EMemberKind kind, void * field, unsigned long long id, Target & target,
                 Entity & from, FileMember const & member, bool isLast);
    bool isFit(Target & target, Entity & entity) const;
    [[noreturn]] void damaged(Entity const & entity, FileMember const & member,
                              std::string_view why) const;

    AssetType const * const m_pType;
    Database m_database;
    FileSchema m_schema;
    FileHead m_head;
    StrongRef<Asset> m_rAsset;
    std::vector<Segment *> m_segments;
    std::vector<StrongRef<Entity>> m_loaded;
    std::vector<std::unique_ptr<Class>> m_classes;
    std::unordered_map<EntityMetaType const *, Class *> m_classByType;
    std::vector<FixUp> m_fixUps;
    // From entities that own others to what they own, as far as that may own something too.
    std::vector<std::pair<unsigned long long, unsigned long long>> m_ownerships;
    std::vector<std::pair<ValueMetaType *, unsigned>> m_olderValues;
    bool m_bRootsChanged = false; // by a hook
    DataModel::ValueReader m_values;
};

} // namespace Vn

#endif
