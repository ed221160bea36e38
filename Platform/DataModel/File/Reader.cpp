#include "Platform/DataModel/File/Reader.h"

#include <algorithm>
#include <new>
#include <set>
#include <system_error>

#include "Platform/Base/LocalizedText.h"
#include "Platform/Base/OS.h"
#include "Platform/Base/UniqueString.h"
#include "Platform/DataModel/EntityTableInternal.h"
#include "Platform/DataModel/File/Circles.h"
#include "Platform/DataModel/File/Lists.h"
#include "Platform/DataModel/File/Writer.h"
#include "Platform/DataModel/Limits.h"
#include "Platform/DataModel/MigrationHelper.h"
#include "Platform/DataModel/Segment.h"

namespace Vn {

using DataModel::FileType;
using DataModel::isReference;
using DataModel::JsonReader;
using DataModel::Leaf;
using DataModel::memberKind;

// The class that a reference leads to, as far as the member tells.
struct DocumentFile::Reader::Target {
    std::string className;                    // with namespaces; empty if any will do
    EntityMetaType const * lastFit = nullptr; // which was found fit the last time
};

// What happens to a column of the class's table.
struct DocumentFile::Reader::Column {
    FileMember const * member;
    int place;
    bool isDropped; // an older version had it, and nobody wants it
    std::ptrdiff_t offset = 0;
    EntityMetaType const * helper = nullptr; // whose migration helper has the field
    Target target;
};

// What happens to a list.
struct DocumentFile::Reader::List {
    struct Part {
        FileMember const * member;
        std::string head; // what stands in front of the part's value
        bool isDropped;
        std::ptrdiff_t offset = 0;
        Target target;
    };
    FileMember const * member;
    bool isDropped;
    Leaf const * leaf = nullptr;
    EntityMetaType const * helper = nullptr;
    Target target;
    std::vector<Part> parts;
};

// How the entities of a class are read that come from the same versions of it and its bases.
struct DocumentFile::Reader::Plan {
    std::vector<unsigned> versions;
    std::vector<Leaf> older; // of versions before the present one
    std::vector<Column> columns;
    std::vector<List> lists;
    std::vector<int> listOfMember; // by the number of the member; -1 for one that isn't a list
};

// A class with a table.
struct DocumentFile::Reader::Class {
    FileType * file;
    EntityMetaType * type;
    std::vector<EntityMetaType const *> chain; // the class and its bases
    std::vector<std::unique_ptr<Plan>> plans;
    Plan * lastPlan = nullptr;
};

// A field for a member of the file.
struct DocumentFile::Reader::Home {
    Leaf const * leaf;
    EntityMetaType const * helper;
    bool isOlder; // of a version before the present one
    bool isTaken = false;
};

namespace {

// The class after "StrongRef<" or "PassiveRef<" in the name of a field's type; empty if it names
// none.
std::string targetClass(std::string const & typeName) {
    std::string const name = OS::className(typeName.c_str());
    std::size_t begin = name.find("StrongRef<");
    if (begin == std::string::npos) begin = name.find("PassiveRef<");
    if (begin == std::string::npos) return {};
    begin = name.find('<', begin) + 1;
    std::size_t end = begin;
    for (int depth = 1; end < name.size(); ++end) {
        if (name[end] == '<') ++depth;
        if (name[end] == '>' && --depth == 0) break;
    }
    std::string found = name.substr(begin, end - begin);
    while (!found.empty() && found.back() == ' ') found.pop_back();
    return found == "Vn::Entity" ? std::string() : found;
}

} // namespace

DocumentFile::Reader::Reader(std::filesystem::path file, AssetType const * type,
                             std::string operation, std::string fileSystem)
    : m_pType(type), m_database(std::move(operation), std::move(file), std::move(fileSystem)),
      m_schema(m_database) {
    m_database.endsWhenInterrupted();
}

DocumentFile::Reader::~Reader() {
    if (!m_rAsset) return;
    // Only after a failure.  The asset ends its entities, as it would those of a whole document.
    uninitializeHelpers();
    for (StrongRef<Entity> & entity : m_loaded) {
        try {
            entity->segment()->m_unowned.push_back(std::move(entity));
        } catch (std::bad_alloc const &) { // it ends with m_loaded, after the asset
        }
    }
    m_rAsset.reset();
}

void DocumentFile::Reader::uninitializeHelpers() noexcept {
    m_rAsset->m_pTable->forEach([](Entity & entity) {
        if (!entity.isMarkedMigrating()) return;
        StrongRef<Entity> const held(&entity);
        try {
            entity.uninitializeMigrationHelpers();
        } catch (...) { // a hook of an entity that is about to go
        }
    });
}

StrongRef<Asset> DocumentFile::Reader::read() {
    std::error_code error;
    auto const status = std::filesystem::status(m_database.file(), error);
    m_database.refuseUnseen(error);
    if (!std::filesystem::exists(status))
        m_database.fail(StatusNotFound, localized("there is no such file"));
    if (std::filesystem::is_directory(status))
        m_database.fail(StatusInvalidArgument, localized("it is a directory"));
    if (!std::filesystem::is_regular_file(status))
        m_database.fail(StatusInvalidArgument, localized("it isn't a file"));

    m_database.open(m_database.file());
    m_schema.checkHeader();
    m_database.run("PRAGMA cell_size_check=ON; PRAGMA cache_size=-16384; BEGIN");
    m_schema.read();
    m_head = m_schema.readHead();

    m_rAsset = Asset::make(m_pType);
    m_rAsset->m_bLoading = true;
    resolveTypes();
    readSegments();
    for (auto const & of : m_classes) readEntities(*of);
    resolveFixUps();
    readLists();
    readRoots();
    refuseCircles();
    complete();
    return std::exchange(m_rAsset, nullptr);
}

// --- Types -------------------------------------------------------------------------------------

void DocumentFile::Reader::resolveTypes() {
    for (FileType & type : m_schema.types()) {
        MetaType * const present = MetaTypeMgr::get()->metaType(type.id);
        if (present && type.version > present->version())
            m_database.fail(
                StatusNewerFormat,
                localized("the type %1% (%2%) has version %3%, and %4% is the latest that is "
                          "known",
                          type.name, type.id, type.version, present->version()));
        auto * const entityType = dynamic_cast<EntityMetaType *>(present);
        if (present && type.isEntity != (entityType != nullptr))
            m_database.damaged(localized("the type %1% isn't what the file says it is", type.id));
        if (present && type.version < present->version()) {
            m_rAsset->m_upgraded.emplace_back(present, type.version);
            if (auto * const value = dynamic_cast<ValueMetaType *>(present))
                m_olderValues.emplace_back(value, type.version);
            else
                m_rAsset->m_bMigrating = true;
        }
        if (present) m_rAsset->m_persistedVersions.emplace(present, type.version);
        if (type.table.empty()) continue;
        auto made = std::make_unique<Class>();
        made->file = &type;
        made->type = entityType;
        for (EntityMetaType const * i = entityType; i; i = i->base()) made->chain.push_back(i);
        if (entityType) m_classByType.emplace(entityType, made.get());
        m_classes.push_back(std::move(made));
    }
}

bool DocumentFile::Reader::isOlder(Class const & of, FileMember const & member) const {
    if (!m_olderValues.empty() &&
        (member.m_list >= 0 || member.m_name.find('.') != std::string::npos))
        return true;
    for (EntityMetaType const * const type : of.chain)
        if (type->memberSet(c_latestVersion)->className() == member.m_class) {
            auto const i = m_rAsset->m_persistedVersions.find(type);
            return i != m_rAsset->m_persistedVersions.end() && i->second < type->version();
        }
    return m_rAsset->m_bMigrating; // of a base that the class no longer has
}

std::vector<DocumentFile::Reader::Home> DocumentFile::Reader::homes(Class & of, Plan & plan) {
    std::vector<Home> homes;
    for (Leaf const & leaf : of.type->layout().leaves()) {
        if (!leaf.isPersisted || leaf.isInHelper) continue;
        bool isPresent = true;
        for (std::size_t i = 0; i < of.chain.size(); ++i)
            if (leaf.set->metaType() == of.chain[i])
                isPresent = plan.versions[i] >= of.chain[i]->version();
        if (isPresent) homes.push_back({&leaf, nullptr, false});
    }
    std::vector<EntityMetaType const *> owners;
    for (std::size_t i = 0; i < of.chain.size(); ++i) {
        EntityMetaType const * const type = of.chain[i];
        if (plan.versions[i] >= type->version()) continue;
        MemberSet const * const set = type->memberSet(plan.versions[i]);
        if (set && set->initialized()) DataModel::appendLeaves(*set, plan.older);
        owners.resize(plan.older.size(), type);
    }
    for (std::size_t i = 0; i < plan.older.size(); ++i) {
        Leaf const & leaf = plan.older[i];
        if (leaf.isPersisted) homes.push_back({&leaf, leaf.isInHelper ? owners[i] : nullptr, true});
    }
    return homes;
}

std::unique_ptr<DocumentFile::Reader::Plan>
DocumentFile::Reader::makePlan(Class & of, std::vector<unsigned> versions) {
    auto plan = std::make_unique<Plan>();
    plan->versions = std::move(versions);
    std::vector<Home> all = homes(of, *plan);
    std::string const & table = of.file->table;
    auto const disagree = [&](FileMember const & member) {
        m_database.damaged(
            localized("the member %1% of %2% isn't what the class has", member.path(), table));
    };

    std::vector<FileMember> const & members = of.file->members;
    plan->listOfMember.assign(members.size(), -1);
    int place = 2;
    for (std::size_t i = 0; i < members.size(); ++i) {
        FileMember const & member = members[i];
        bool const mayDrop = isOlder(of, member);
        if (member.m_list >= 0) {
            List & list = plan->lists[static_cast<std::size_t>(
                plan->listOfMember[static_cast<std::size_t>(member.m_list)])];
            List::Part part{&member, std::string(1, list.parts.empty() ? '{' : ','), true, 0, {}};
            DataModel::appendJsonText(part.head, member.m_name, true);
            part.head += ':';
            if (!list.isDropped)
                for (Leaf const & leaf : *list.leaf->elementLeaves) {
                    if (nameOf(leaf) != member.m_name) continue;
                    if (leaf.kind != member.m_kind) disagree(member);
                    part.isDropped = false;
                    part.offset = leaf.offset;
                    if (isReference(leaf.kind))
                        if (Member const * const itself = leaf.member)
                            part.target.className = targetClass(itself->typeName());
                }
            if (part.isDropped && !list.isDropped && !mayDrop) disagree(member);
            list.parts.push_back(std::move(part));
            continue;
        }
        Home * home = nullptr;
        for (Home & candidate : all)
            if (candidate.leaf->path == member.path()) home = &candidate;
        if (!home && !mayDrop) disagree(member);
        if (home) {
            Leaf const & leaf = *home->leaf;
            bool const isVector = leaf.kind == EMemberKind::Vector;
            if (leaf.kind != member.m_kind || home->isTaken ||
                (isVector && leaf.elementKind != member.m_element))
                disagree(member);
            home->isTaken = true;
        }
        Target target;
        if (home && (isReference(member.m_kind) || member.isListOfReferences()))
            if (Member const * const itself = home->leaf->member)
                target.className = targetClass(itself->typeName());
        if (member.m_kind == EMemberKind::Vector) {
            plan->listOfMember[i] = static_cast<int>(plan->lists.size());
            plan->lists.push_back({&member,
                                   !home,
                                   home ? home->leaf : nullptr,
                                   home ? home->helper : nullptr,
                                   std::move(target),
                                   {}});
        } else {
            plan->columns.push_back({&member, place, !home, home ? home->leaf->offset : 0,
                                     home ? home->helper : nullptr, std::move(target)});
            place += memberKind(member.m_kind).columns;
        }
    }
    for (Home const & home : all) {
        if (home.isTaken || home.isOlder) continue;
        FileMember member;
        member.m_class = classNameOf(*home.leaf);
        member.m_name = nameOf(*home.leaf);
        if (!isOlder(of, member))
            m_database.damaged(
                localized("the member %1% of %2% is missing", home.leaf->path, table));
    }
    return plan;
}

DocumentFile::Reader::Plan & DocumentFile::Reader::planFor(Class & of, Entity & entity) {
    if (!m_rAsset->m_bMigrating && of.lastPlan) return *of.lastPlan;
    std::vector<unsigned> versions;
    for (EntityMetaType const * const type : of.chain)
        versions.push_back(entity.migratingVersion(type));
    if (of.lastPlan && of.lastPlan->versions == versions) return *of.lastPlan;
    auto const found = std::find_if(of.plans.begin(), of.plans.end(),
                                    [&](auto const & plan) { return plan->versions == versions; });
    if (found != of.plans.end())
        of.lastPlan = found->get();
    else {
        of.plans.push_back(makePlan(of, std::move(versions)));
        of.lastPlan = of.plans.back().get();
    }
    return *of.lastPlan;
}

// --- Entities ----------------------------------------------------------------------------------

void DocumentFile::Reader::readSegments() {
    // What constructors and hooks make from now on has an id that the file never used.
    m_rAsset->m_nextId = std::max(m_rAsset->m_nextId, m_head.nextEntity);
    Statement row(m_database, "SELECT kind, place, name FROM segments ORDER BY place");
    while (row.step()) {
        long long const kind = row.integer(0);
        SegmentType * const type = DataModel::storedSegment(kind);
        if (!type) m_database.damaged(localized("there is no segment of kind %1% to load", kind));
        m_segments.push_back(Segment::create(m_rAsset.get(), type, false));
    }
}

void DocumentFile::Reader::readEntities(Class & of) {
    FileType const & file = *of.file;
    std::string sql = "SELECT id, segment";
    for (std::string const & column : DataModel::columnsOf(file.members))
        sql += ", " + DataModel::sqlName(column);
    Statement row(m_database, sql + " FROM " + DataModel::sqlName(file.table) + " ORDER BY id");
    while (row.step()) {
        if (!of.type)
            m_database.fail(
                StatusUnsupported,
                localized("the type %1% (%2%) isn't known to this program", file.name, file.id));
        if (of.type->type() != EntityMetaType::TypeConcrete)
            m_database.damaged(localized("the type %1% has entities and is abstract", file.id));
        long long const id = row.integer(0);
        auto const refuse = [&](std::string const & why) {
            m_database.damaged(localized("entity %1% (%2%): %3%", id, file.table, why));
        };
        if (id < 1 || static_cast<unsigned long long>(id) >= m_head.nextEntity)
            refuse(localized("its id is out of range"));
        if (m_rAsset->m_pTable->find(static_cast<unsigned long long>(id)))
            refuse(localized("its id is that of another entity"));
        long long const kind = row.type(1) == SQLITE_INTEGER ? row.integer(1) : 0;
        Segment * segment = nullptr;
        for (Segment * const present : m_segments)
            if (static_cast<long long>(present->segmentType()->type()) == kind) segment = present;
        if (!segment) refuse(localized("its segment isn't in the file"));
        StrongRef<Entity> entity =
            of.type->createEntity(segment, static_cast<unsigned long long>(id));
        if (!entity) refuse(localized("its class refuses to make it"));
        m_loaded.push_back(std::move(entity));
        Entity & made = *m_loaded.back();
        made.m_state.set(DataModel::EntityState::Stored);
        of.type->onPreLoad(&made);
        if (made.isMarkedMigrating()) made.initializeMigrationHelpers();
        readColumns(planFor(of, made), row, made);
    }
}

void * DocumentFile::Reader::placeOf(Entity & entity, std::ptrdiff_t offset,
                                     EntityMetaType const * helper) const {
    void * base = &entity;
    if (helper) base = entity.segment()->migrationHelper(&entity, helper);
    return base ? static_cast<char *>(base) + offset : nullptr;
}

void DocumentFile::Reader::readColumns(Plan & plan, Statement & row, Entity & entity) {
    unsigned long long reference = 0;
    for (Column & column : plan.columns) {
        FileMember const & member = *column.member;
        void * const field =
            column.isDropped ? nullptr : placeOf(entity, column.offset, column.helper);
        if (char const * const wrong =
                m_values.column(row, column.place, member.m_kind, field, reference))
            damaged(entity, member, localized(wrong));
        if (!field) continue;
        if (!reference) {
            // Nor is what it puts into a reference.
            if (member.m_kind == EMemberKind::StrongRef)
                static_cast<StrongRef<Entity> *>(field)->reset();
            if (member.m_kind == EMemberKind::PassiveRef)
                static_cast<PassiveRef<Entity> *>(field)->reset();
            continue;
        }
        if (!resolve(member.m_kind, field, reference, column.target, entity, member, false))
            m_fixUps.push_back({field, reference, &entity, &column});
    }
    // What a constructor puts into a list isn't in the file.
    for (List const & list : plan.lists) {
        if (list.isDropped) continue;
        void * const field = placeOf(entity, list.leaf->offset, list.helper);
        if (!field) continue;
        if (std::size_t const count = list.leaf->functions->elementCount(field))
            list.leaf->functions->eraseElements(field, 0, count);
    }
}

void DocumentFile::Reader::resolveFixUps() {
    for (FixUp const & fixUp : m_fixUps) {
        Column & column = *fixUp.column;
        resolve(column.member->m_kind, fixUp.field, fixUp.id, column.target, *fixUp.entity,
                *column.member, true);
    }
    m_fixUps = {};
}

bool DocumentFile::Reader::isFit(Target & target, Entity & entity) const {
    EntityMetaType const * const type = entity.metaType();
    if (target.className.empty() || type == target.lastFit) return true;
    // To ask for the last id of the chain has every class of it intern its own.
    entity.queryInterface(Entity::interfaceId());
    if (UniqueString const * const id = UniqueString::find(target.className, false)) {
        if (!entity.queryInterface(id)) return false;
    } else {
        // A class without an id of its own is known by its name.
        std::size_t const scope = target.className.rfind("::");
        std::string const name =
            scope == std::string::npos ? target.className : target.className.substr(scope + 2);
        EntityMetaType const * i = type;
        while (i && i->memberSet(c_latestVersion)->className() != name) i = i->base();
        if (!i) return false;
    }
    target.lastFit = type;
    return true;
}

Entity * DocumentFile::Reader::loaded(unsigned long long id) const noexcept {
    return id < m_head.nextEntity ? m_rAsset->m_pTable->find(id) : nullptr;
}

bool DocumentFile::Reader::resolve(EMemberKind kind, void * field, unsigned long long id,
                                   Target & target, Entity & from, FileMember const & member,
                                   bool isLast) {
    Entity * const to = loaded(id);
    if (!to) {
        if (!isLast) return false;
        // A target that was deleted after the reference was written is what a passive one allows
        // for.
        if (kind == EMemberKind::PassiveRef && id < m_head.nextEntity) return true;
        damaged(from, member, localized("there is no entity %1%", id));
    }
    if (!isFit(target, *to)) damaged(from, member, localized("entity %1% is of another class", id));
    if (kind == EMemberKind::PassiveRef) {
        *static_cast<PassiveRef<Entity> *>(field) = PassiveRef<Entity>(to);
        return true;
    }
    *static_cast<StrongRef<Entity> *>(field) = StrongRef<Entity>(to);
    if (to->metaType()->layout().hasStrong()) m_ownerships.emplace_back(from.id(), id);
    return true;
}

void DocumentFile::Reader::damaged(Entity const & entity, FileMember const & member,
                                   std::string_view why) const {
    m_database.damaged(localized("entity %1%, member %2%: %3%", entity.id(), member.path(), why));
}

// --- Lists -------------------------------------------------------------------------------------

void DocumentFile::Reader::readLists() {
    m_bRootsChanged = m_rAsset->m_bRootsDirty;
    Statement row(m_database,
                  "SELECT entity, member, chunk, items FROM lists ORDER BY entity, member, chunk");
    while (row.step()) {
        long long const id = row.integer(0);
        auto const refuse = [&](std::string const & why) {
            m_database.damaged(localized("a list of entity %1%: %2%", id, why));
        };
        for (int i = 0; i < 3; ++i)
            if (row.type(i) != SQLITE_INTEGER) refuse(localized("its key isn't one"));
        Entity * const entity = id > 0 ? loaded(static_cast<unsigned long long>(id)) : nullptr;
        if (!entity) refuse(localized("there is no such entity"));
        Class & of = *m_classByType.at(entity->metaType());
        Plan & plan = planFor(of, *entity);
        long long const member = row.integer(1);
        if (member < 0 || member >= static_cast<long long>(plan.listOfMember.size()) ||
            plan.listOfMember[static_cast<std::size_t>(member)] < 0)
            refuse(localized("there is no such member"));
        if (row.integer(2) <= -Limits::c_chunkNumber || row.integer(2) >= Limits::c_chunkNumber)
            refuse(localized("the number of a chunk is out of range"));
        if (row.type(3) != SQLITE_TEXT) refuse(localized("its items aren't a text"));
        int const list = plan.listOfMember[static_cast<std::size_t>(member)];
        readChunk(plan.lists[static_cast<std::size_t>(list)], *entity, row.bytes(3));
    }
}

void DocumentFile::Reader::readChunk(List & list, Entity & entity, std::string_view items) {
    FileMember const & member = *list.member;
    void * const field = list.isDropped ? nullptr : placeOf(entity, list.leaf->offset, list.helper);
    TemplatizedFunctions const * const functions = field ? list.leaf->functions : nullptr;
    std::size_t const stride = functions ? functions->memberBytes(1) : 0;
    std::size_t place = functions ? functions->elementCount(field) : 0;

    // Room is made at once where commas tell how much, and else as the elements come.
    bool const isCountable =
        member.m_element < EMemberKind::String || isReference(member.m_element);
    if (functions && isCountable)
        functions->appendElements(
            field, static_cast<std::size_t>(std::count(items.begin(), items.end(), ',')) + 1);
    auto * element = functions && isCountable
                         ? static_cast<char *>(functions->firstElement(field)) + place * stride
                         : nullptr;

    JsonReader json(items);
    unsigned long long reference = 0;
    auto const readOne = [&](EMemberKind kind, void * into, Target & target,
                             FileMember const & what) {
        if (char const * const wrong = m_values.element(json, kind, into, reference))
            damaged(entity, what, localized(wrong));
        if (reference && into) resolve(kind, into, reference, target, entity, what, true);
    };
    bool isGood = json.skip('[');
    do {
        if (functions && !isCountable) {
            functions->appendElements(field, 1);
            element = static_cast<char *>(functions->firstElement(field)) + place * stride;
        }
        if (member.m_element != EMemberKind::Value)
            readOne(member.m_element, element, list.target, member);
        else {
            if (list.parts.empty()) isGood = isGood && json.skip('{');
            for (List::Part & part : list.parts) {
                isGood = isGood && json.skip(part.head);
                if (!isGood) break;
                readOne(part.member->m_kind,
                        element && !part.isDropped ? element + part.offset : nullptr, part.target,
                        *part.member);
            }
            isGood = isGood && json.skip('}');
        }
        if (element) element += stride;
        ++place;
    } while (isGood && json.skip(','));
    if (!isGood || !json.skip(']') || !json.atEnd())
        damaged(entity, member, localized("its items aren't a list of that kind"));
}

// --- The whole ---------------------------------------------------------------------------------

void DocumentFile::Reader::readRoots() {
    Statement row(m_database,
                  "SELECT segment, place, key, entity FROM roots ORDER BY segment, place");
    std::set<std::pair<long long, std::string>> keys;
    while (row.step()) {
        for (int const i : {0, 1, 3})
            if (row.type(i) != SQLITE_INTEGER) m_database.damaged(localized("a root has no place"));
        int const keyType = row.type(2);
        std::string key(row.bytes(2));
        if (keyType != SQLITE_BLOB && (keyType != SQLITE_TEXT || !DataModel::isText(key)))
            m_database.damaged(localized("the key of a root isn't a text"));
        auto const refuse = [&](std::string const & why) {
            m_database.damaged(
                localized("the root %1%: %2%", keyType == SQLITE_TEXT ? key : "", why));
        };
        long long const id = row.integer(3);
        Entity * const entity =
            id > 0 ? m_rAsset->m_pTable->find(static_cast<unsigned long long>(id)) : nullptr;
        if (!entity) refuse(localized("there is no such entity"));
        if (static_cast<long long>(entity->segment()->segmentType()->type()) != row.integer(0))
            refuse(localized("its entity is in another segment"));
        if (!keys.emplace(row.integer(0), key).second) refuse(localized("there are two of them"));
        Segment & segment = *entity->segment();
        segment.placeRoot(StrongRef<Entity>(entity), key, segment.rootPlace(key));
    }
}

void DocumentFile::Reader::refuseCircles() const {
    if (unsigned long long const id = DataModel::idOnCircle(m_ownerships))
        m_database.damaged(DataModel::circleText(id));
    DataModel::ParentWalk parents;
    for (StrongRef<Entity> const & entity : m_loaded)
        if (Entity const * const found = parents.onCircle(*entity))
            m_database.damaged(DataModel::parentCircleText(found->id()));
}

void DocumentFile::Reader::migrateValues() {
    for (StrongRef<Entity> const & entity : m_loaded)
        for (MemberSet const * set = entity->metaType()->memberSet(c_latestVersion); set;
             set = set->base())
            migrateValues(*set, reinterpret_cast<char *>(entity.get()), *entity);
}

// Those among the members of an entity, or of a value inside it.
void DocumentFile::Reader::migrateValues(MemberSet const & set, char * object,
                                         Entity const & entity) {
    for (unsigned i = 0; i < set.members(); ++i) {
        Member const & member = set.member(i);
        if (member.inHelper() || !member.test(Member::OptionPersisted)) continue;
        TemplatizedFunctions const * const functions = member.functions();
        MemberMetaType * const kind = functions ? functions->elementType() : member.type();
        if (kind->kind() != EMemberKind::Value) continue;
        void * const field = object + member.offset();
        std::size_t const count = functions ? functions->elementCount(field) : 1;
        auto * value =
            static_cast<char *>(functions && count ? functions->firstElement(field) : field);
        for (std::size_t n = 0; n < count; ++n) {
            migrateValue(static_cast<ValueMetaType &>(*kind), value, entity);
            if (functions) value += functions->memberBytes(1);
        }
    }
}

// What is inside comes first.
void DocumentFile::Reader::migrateValue(ValueMetaType & type, char * value, Entity const & entity) {
    migrateValues(*type.memberSetOf(value), value, entity);
    auto const older =
        std::find_if(m_olderValues.begin(), m_olderValues.end(),
                     [&](auto const & candidate) { return candidate.first == &type; });
    if (older == m_olderValues.end()) return;
    type.migratingVersion(value, older->second);
    if (type.postMigrate(value, older->second) != MigrationDone)
        m_database.fail(StatusFailed,
                        localized("a value of entity %1% can't be migrated", entity.id()));
}

// What nothing in the file owns is kept, so that opening a document loses nothing.  All else is
// left to its owners before the hooks run: an entity that a hook takes out of the document is gone.
void DocumentFile::Reader::settleOwners() {
    for (StrongRef<Entity> & entity : m_loaded)
        if (entity->refCount() == 1)
            entity->segment()->m_unowned.push_back(std::move(entity));
        else
            entity.reset();
    m_loaded.clear();
}

// In the order of ids.  What hooks make meanwhile wasn't loaded, and isn't told.
void DocumentFile::Reader::runHooks() {
    m_rAsset->m_pTable->forEach([](Entity & entity) {
        if (entity.isCreating()) return;
        StrongRef<Entity> const held(&entity); // a hook may end the entity
        entity.metaType()->onPostLoad(&entity);
    });
    if (!m_rAsset->m_bMigrating) return;
    m_rAsset->m_pTable->forEach([](Entity & entity) {
        if (!entity.isMarkedMigrating()) return;
        StrongRef<Entity> const held(&entity);
        entity.postMigrate();
        entity.metaType()->onPostMigrate(&entity);
        entity.uninitializeMigrationHelpers();
        entity.m_state.clear(DataModel::EntityState::Migrating);
    });
}

void DocumentFile::Reader::complete() {
    Asset & asset = *m_rAsset;
    asset.m_bRootsDirty = m_bRootsChanged;
    if (!m_olderValues.empty()) migrateValues();
    settleOwners();
    runHooks();

    asset.m_history.clear();
    asset.m_history.markClean();
    // What constructors and hooks made, changed and ended differs from the file.
    std::erase_if(asset.m_dirty, [&](unsigned long long id) { return !asset.m_pTable->find(id); });
    if (!asset.m_dirty.empty() || !asset.m_deleted.empty() || asset.m_bRootsDirty ||
        asset.m_bUnnoted)
        asset.m_history.markModified();
    asset.m_persistedVersions.clear();
    asset.m_bMigrating = false;
    asset.m_bLoading = false;

    std::error_code error;
    std::filesystem::path const absolute = std::filesystem::absolute(m_database.file(), error);
    asset.m_file = error ? m_database.file() : absolute;
    asset.m_fileStamp =
        DocumentFileStamp{m_head.id, m_head.generation, m_head.stamp, {}}.toString();
}

} // namespace Vn
