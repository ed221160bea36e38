#include "Platform/DataModel/File/Writer.h"

#include <algorithm>
#include <new>
#include <sstream>
#include <system_error>
#include <utility>

#include "Platform/Base/LocalizedText.h"
#include "Platform/Base/OS.h"
#include "Platform/DataModel/AssetAdapter.h"
#include "Platform/DataModel/Entity.h"
#include "Platform/DataModel/EntityTableInternal.h"
#include "Platform/DataModel/File/Circles.h"
#include "Platform/DataModel/File/Remains.h"
#include "Platform/DataModel/File/Text.h"
#include "Platform/DataModel/Limits.h"
#include "Platform/DataModel/Segment.h"
#include "Platform/Types/GlobalizedString.h"

namespace Vn {

using DataModel::Database;
using DataModel::FileFailure;
using DataModel::FileHead;
using DataModel::FileMember;
using DataModel::FileSchema;
using DataModel::FileType;
using DataModel::isReference;
using DataModel::Leaf;
using DataModel::memberKind;
using DataModel::pathText;
using DataModel::Statement;

namespace {

constexpr char const * c_changed = localizable("the file was changed by another program");

// Many rows that one statement inserts cost much less than as many statements.
constexpr int c_rowsTogether = 32;

// A member that is a column, with the buffers that its texts are bound from.
struct Column {
    DataModel::MemberKind const & kind;
    std::ptrdiff_t offset;
    int place;                      // counted from 0
    std::vector<std::string> texts; // of each row of a statement
};

// A member that is a list.
struct List {
    struct Part {
        std::string head; // what stands in front of the part's value
        Leaf const * leaf;
    };
    Leaf const * leaf;
    int member;
    std::vector<Part> parts;
};

template <class T>
T const & at(void const * field) noexcept {
    return *static_cast<T const *>(field);
}

// The entities of a list lie anywhere in memory.  They are fetched so many elements ahead: a list
// of a million that is in no order takes half the time.
constexpr std::size_t c_ahead = 16;

void fetch(Entity const * entity) noexcept {
    if (!entity) return;
    __builtin_prefetch(entity);
    __builtin_prefetch(entity + 1); // it needn't begin where a line of the cache does
}

// Calls `visit` with the kind, the field and the member of each reference that a file would have.
template <class Visit>
void forEachReference(Entity & entity, Visit && visit) {
    for (Leaf const & leaf : entity.metaType()->layout().leaves()) {
        if (!leaf.isPersisted || leaf.isInHelper) continue;
        void * const field = DataModel::field(entity, leaf);
        if (isReference(leaf.kind)) visit(leaf.kind, field, leaf);
        if (leaf.kind != EMemberKind::Vector) continue;
        auto const visitElements = [&](EMemberKind kind, std::ptrdiff_t offset) {
            std::size_t const count = leaf.functions->elementCount(field);
            std::size_t const stride = leaf.functions->memberBytes(1);
            auto const * element = static_cast<char const *>(leaf.functions->firstElement(field));
            for (std::size_t i = 0; i < count; ++i, element += stride) {
                if (kind == EMemberKind::StrongRef && i + c_ahead < count)
                    fetch(at<StrongRef<Entity>>(element + c_ahead * stride + offset).get());
                visit(kind, element + offset, leaf);
            }
        };
        if (isReference(leaf.elementKind)) visitElements(leaf.elementKind, 0);
        if (leaf.elementKind == EMemberKind::Value)
            for (Leaf const & part : *leaf.elementLeaves)
                if (part.isPersisted && isReference(part.kind))
                    visitElements(part.kind, part.offset);
    }
}

// The same with the target, which may be null, of each strong one.
template <class Visit>
void forEachOwned(Entity & entity, Visit && visit) {
    if (!entity.metaType()->layout().hasStrong()) return;
    forEachReference(entity, [&](EMemberKind kind, void const * field, Leaf const &) {
        if (kind == EMemberKind::StrongRef) visit(at<StrongRef<Entity>>(field).get());
    });
}

// "(?, ?), (?, ?)" and so on.
std::string rowsOfParameters(std::size_t rows, int width) {
    std::string row = "(?";
    for (int i = 1; i < width; ++i) row += ", ?";
    std::string all;
    for (std::size_t i = 0; i < rows; ++i) {
        if (i) all += ", ";
        (all += row) += ')';
    }
    return all;
}

std::filesystem::path besideName(std::filesystem::path const & file, char const * ending) {
    std::filesystem::path beside = file;
    beside += ending;
    return beside;
}

} // namespace

struct DocumentFile::Writer::Class {
    EntityMetaType * type;
    std::string insert; // the statement without its rows
    int width;          // the columns of the table
    std::size_t rowsTogether;
    Statement row;
    Statement rows;                      // of so many together; prepared when they are there
    std::vector<Entity const *> waiting; // whose rows are to be written
    std::vector<Column> columns;
    std::vector<List> lists;
};

DocumentFileStamp DocumentFileStamp::parse(std::string const & text) {
    DocumentFileStamp stamp;
    std::istringstream words(text);
    words >> stamp.m_id >> stamp.m_generation >> stamp.m_stamp >> stamp.m_doubtful;
    return stamp;
}

std::string DocumentFileStamp::toString() const {
    std::string text = m_id + ' ' + std::to_string(m_generation) + ' ' + m_stamp;
    if (!m_doubtful.empty()) text += ' ' + m_doubtful;
    return text;
}

DocumentFile::Writer::Writer(Asset & asset, std::string operation, std::string fileSystem)
    : m_asset(asset), m_operation(std::move(operation)), m_fileSystem(std::move(fileSystem)) {}

DocumentFile::Writer::~Writer() = default;

void DocumentFile::Writer::begin(Database & database, FileSchema & schema) {
    m_pDatabase = &database;
    m_pSchema = &schema;
    m_pLists = std::make_unique<DataModel::ListWriter>(database);
}

void DocumentFile::Writer::end() noexcept {
    m_pLists.reset();
    m_pLastClass = nullptr;
    m_classes.clear();
}

// --- The whole document ------------------------------------------------------------------------

void DocumentFile::Writer::saveWhole(std::filesystem::path const & file,
                                     std::vector<std::filesystem::path> & kept) {
    m_pKept = &kept;
    saveWhole(file, nullptr);
}

// `expected` is what the file that is replaced must have; null if any will do.
void DocumentFile::Writer::saveWhole(std::filesystem::path const & file,
                                     FileHead const * expected) {
    auto const refuse = [&](EStatus code, std::string_view cause) {
        throw FileFailure{Status(code, m_operation, pathText(file), cause)};
    };
    std::error_code error;
    // What a link leads to is replaced, not the link.
    std::filesystem::path target = file;
    if (std::filesystem::is_symlink(file, error)) target = std::filesystem::canonical(file, error);
    if (error) target = file;
    auto const status = std::filesystem::status(target, error);
    if (error == std::errc::filename_too_long)
        refuse(StatusInvalidArgument, localized("the name is longer than names may be"));
    bool const exists = std::filesystem::exists(status);
    if (std::filesystem::is_directory(status))
        refuse(StatusInvalidArgument, localized("it is a directory"));
    if (exists && !std::filesystem::is_regular_file(status))
        refuse(StatusInvalidArgument, localized("it isn't a file"));
    using std::filesystem::perms;
    constexpr perms c_writable = perms::owner_write | perms::group_write | perms::others_write;
    if (exists && (status.permissions() & c_writable) == perms::none)
        refuse(StatusAccessDenied, localized("the file is read-only"));

    m_bWhole = true;
    prepare(file);
    bool const wasUnnoted = std::exchange(m_asset.m_bUnnoted, false); // all is written
    DataModel::FileName name(m_operation, file, target, m_fileSystem);
    FileHead head;
    Saved saved;
    try {
        Database & database = name.makeSaving();
        // Only the ends of tables are written to, and pages that are used again are quicker than
        // new ones.
        database.run("PRAGMA cache_size=-4096");
        database.run("BEGIN EXCLUSIVE");
        FileSchema schema(database);
        schema.create();
        begin(database, schema);
        writeEntities();
        writeSegments();
        writeRoots();
        if (!m_asset.m_fileStamp.empty()) {
            DocumentFileStamp const stamp = DocumentFileStamp::parse(m_asset.m_fileStamp);
            // One that can't be saved again under its own id becomes another document.
            if (stamp.m_generation < Limits::c_generations) {
                head.id = stamp.m_id;
                head.generation = stamp.m_generation;
            }
        }
        head.nextEntity = m_asset.m_nextId;
        schema.writeHead(head);
        end();
        database.run("COMMIT");
        if (exists)
            std::filesystem::permissions(besideName(target, ".saving"), status.permissions(),
                                         error);
        saved = makeSaved(file, head);
        if (exists) {
            name.takeOld();
            if (expected) refuseChanged(name.old(), *expected);
        }
        name.keepRemains();
        name.renameSaving();
    } catch (...) {
        end();
        m_asset.m_bUnnoted = m_asset.m_bUnnoted || wasUnnoted;
        throw;
    }
    if (m_pKept) *m_pKept = std::move(name.kept());
    finish(std::move(saved));
    Status const synced = OS::syncDirectory(target.has_parent_path() ? target.parent_path()
                                                                     : std::filesystem::path("."));
    if (!synced) {
        // The file is there, and may be gone after a crash: the next save writes it whole.
        m_asset.m_fileStamp =
            DocumentFileStamp{head.id, head.generation, "-", head.stamp}.toString();
        refuse(synced.code(), synced.cause());
    }
    markSaved();
}

// Between the look at the file and the moment at which it is replaced another program may have
// saved.
void DocumentFile::Writer::refuseChanged(Database & old, FileHead const & expected) {
    FileSchema schema(old);
    schema.checkHeader();
    FileHead const found = schema.readHead();
    if (found.id != expected.id || found.stamp != expected.stamp)
        old.fail(StatusChanged, localized(c_changed));
}

// --- The changes -------------------------------------------------------------------------------

void DocumentFile::Writer::saveChanges() {
    std::filesystem::path const file = m_asset.m_file;
    auto stamp = DocumentFileStamp::parse(m_asset.m_fileStamp);
    auto const refuse = [&](EStatus code, std::string_view cause) {
        throw FileFailure{Status(code, m_operation, pathText(file), cause)};
    };
    std::error_code error;
    auto const status = std::filesystem::status(file, error);
    if (!std::filesystem::exists(status)) refuse(StatusNotFound, localized("the file is gone"));
    if (std::filesystem::is_directory(status))
        refuse(StatusInvalidArgument, localized("it is a directory"));
    if (!std::filesystem::is_regular_file(status))
        refuse(StatusInvalidArgument, localized("it isn't a file"));
    using std::filesystem::perms;
    constexpr perms c_writable = perms::owner_write | perms::group_write | perms::others_write;
    if ((status.permissions() & c_writable) == perms::none)
        refuse(StatusAccessDenied, localized("the file is read-only"));

    bool isWholeNeeded = false;
    FileHead head;
    {
        Database database(m_operation, file, m_fileSystem);
        FileSchema schema(database);
        try {
            database.open(file);
            schema.checkHeader();
            if (sqlite3_db_readonly(database.get(), "main") == 1)
                refuse(StatusAccessDenied, localized("the file is read-only"));
            database.run("PRAGMA synchronous=EXTRA");
            database.run("BEGIN IMMEDIATE");
            if (database.hasMoved()) database.fail(SQLITE_READONLY_DBMOVED);
            schema.read();
            head = schema.readHead();
            bool const isDoubtful = !stamp.m_doubtful.empty() && head.stamp == stamp.m_doubtful;
            if (head.id != stamp.m_id)
                refuse(StatusChanged,
                       localized("another program has put another document in its place"));
            if (head.stamp != stamp.m_stamp && !isDoubtful)
                refuse(StatusChanged, localized(c_changed));
            if (head.generation >= Limits::c_generations)
                refuse(StatusFailed,
                       localized("it can't be saved more often under its own name; save it under "
                                 "another"));
            isWholeNeeded = isDoubtful || m_asset.m_bUnnoted || !isCurrent(database, schema);
            if (!isWholeNeeded) {
                m_bWhole = false;
                begin(database, schema);
                if (!m_asset.m_dirty.empty() || !m_asset.m_deleted.empty() ||
                    m_asset.m_bRootsDirty) {
                    prepare(file);
                    refuseUnnoted();
                    writeEntities();
                    eraseDeleted();
                    writeSegments();
                    if (m_asset.m_bRootsDirty) writeRoots();
                    head.nextEntity = m_asset.m_nextId;
                    schema.writeHead(head);
                    // From here on it may take effect and still be said to have failed.
                    stamp.m_doubtful = head.stamp;
                    m_asset.m_fileStamp = stamp.toString();
                }
                end();
                database.run("COMMIT");
            }
        } catch (...) {
            end();
            database.restore();
            throw;
        }
    }
    if (isWholeNeeded) return saveWhole(file, &head);
    finish(makeSaved(file, head));
    markSaved();
}

bool DocumentFile::Writer::isCurrent(Database const & database, FileSchema & schema) {
    for (FileType const & type : schema.types()) {
        MetaType * const present = MetaTypeMgr::get()->metaType(type.id);
        if (!present || present->version() != type.version) return false;
        if (type.table.empty()) continue;
        auto * const entityType = dynamic_cast<EntityMetaType *>(present);
        if (!entityType) return false;
        // As long as there is no object of the class, nothing of it can have changed.
        if (entityType->memberSet(c_latestVersion)->initialized() &&
            DataModel::describe(database, *entityType).members != type.members)
            return false;
    }
    return true;
}

void DocumentFile::Writer::eraseDeleted() {
    if (m_asset.m_deleted.empty()) return;
    std::vector<Statement> erase;
    for (FileType const & type : m_pSchema->types())
        if (!type.table.empty())
            erase.emplace_back(*m_pDatabase,
                               "DELETE FROM " + DataModel::sqlName(type.table) + " WHERE id=?");
    std::size_t likely = 0; // entities that go together are often of one class
    for (unsigned long long const id : m_asset.m_deleted) {
        if (Entity const * const entity = m_asset.m_pTable->find(id); entity && isWritten(*entity))
            continue; // it came back
        for (std::size_t i = 0; i < erase.size(); ++i) {
            std::size_t const place = (likely + i) % erase.size();
            erase[place].bind(1, static_cast<long long>(id));
            erase[place].run();
            if (sqlite3_changes(m_pDatabase->get()) > 0) {
                likely = place;
                break;
            }
        }
        m_pLists->erase(id);
    }
}

// --- What both share ---------------------------------------------------------------------------

bool DocumentFile::Writer::isWritten(Entity const & entity) noexcept {
    return entity.segment() && !entity.segment()->isTransient();
}

bool DocumentFile::Writer::isOurs(Entity const & entity) const noexcept {
    return isWritten(entity) && entity.segment()->asset() == &m_asset;
}

unsigned long long DocumentFile::Writer::onIdOf(Entity const * target) const noexcept {
    return target && target->isAlive() && isOurs(*target) ? target->id() : 0;
}

unsigned long long
DocumentFile::Writer::onIdOf(PassiveRef<Entity> const & reference) const noexcept {
    return onIdOf(reference.get());
}

DocumentFile::Writer::EFate DocumentFile::Writer::fateOf(Entity const * target) const noexcept {
    if (!target) return EFate::Null;
    if (target->asset() != &m_asset) return EFate::Foreign;
    if (!target->isAlive()) return EFate::Gap;
    return isWritten(*target) ? EFate::Written : EFate::Null;
}

DocumentFile::Writer::EFate
DocumentFile::Writer::fateOf(PassiveRef<Entity> const & reference) const noexcept {
    Entity const * const target = reference.getKept();
    // One to what is gone tests null, whichever document it was in.
    if (!target || (!target->isAlive() && target->asset() != &m_asset)) return EFate::Null;
    return fateOf(target);
}

template <class Visit>
void DocumentFile::Writer::forEachToWrite(Visit && visit, std::size_t first) const {
    if (m_bWhole) {
        m_asset.m_pTable->forEach([&](Entity & entity) {
            if (isWritten(entity)) visit(entity);
        });
        return;
    }
    // By index, since there may be more of them meanwhile.
    for (std::size_t i = first; i < m_asset.m_dirty.size(); ++i)
        if (Entity * const entity = m_asset.m_pTable->find(m_asset.m_dirty[i]))
            if (isWritten(*entity)) visit(*entity);
}

// All of the hooks before anything is written: what one changes is written, whichever entity it is
// of.
void DocumentFile::Writer::prepare(std::filesystem::path const & file) {
    std::vector<unsigned long long> owners;
    std::size_t told = 0;
    do { // once, unless an entity that didn't change has to be written too
        forEachToWrite(
            [&](Entity & entity) {
                EntityMetaType & type = *entity.metaType();
                if (type.layout().hasStrong()) owners.push_back(entity.id());
                type.onPreSave(&entity);
            },
            told);
        told = m_asset.m_dirty.size();
        checkReferences(file);
    } while (!m_bWhole && told < m_asset.m_dirty.size());
    auto const refuse = [&](std::string_view cause) {
        throw FileFailure{Status(StatusCorrupt, m_operation, pathText(file), cause)};
    };
    if (unsigned long long const id = idOnCircle(owners)) refuse(DataModel::circleText(id));
    m_bPrepared = true;
    DataModel::ParentWalk parents;
    forEachToWrite([&](Entity & entity) {
        if (Entity const * const found = parents.onCircle(entity))
            refuse(DataModel::parentCircleText(found->id()));
    });
}

void DocumentFile::Writer::checkReferences(std::filesystem::path const & file) {
    m_gaps.clear();
    if (!m_bWhole) m_gaps = m_asset.m_gaps;
    std::vector<unsigned long long> gaps;
    auto const keepGaps = [&](unsigned long long id) {
        if (!gaps.empty())
            m_gaps[id] = std::exchange(gaps, {});
        else if (!m_gaps.empty())
            m_gaps.erase(id);
    };
    forEachToWrite([&](Entity & entity) {
        forEachReference(entity, [&](EMemberKind kind, void const * field, Leaf const & leaf) {
            bool const isStrong = kind == EMemberKind::StrongRef;
            EFate const fate = isStrong ? fateOf(at<StrongRef<Entity>>(field).get())
                                        : fateOf(at<PassiveRef<Entity>>(field));
            if (fate == EFate::Null || (m_bWhole && fate == EFate::Written)) return;
            Entity & target =
                isStrong ? *at<StrongRef<Entity>>(field) : *at<PassiveRef<Entity>>(field).getKept();
            if (fate == EFate::Gap)
                gaps.push_back(target.id());
            else if (fate == EFate::Foreign)
                throw FileFailure{Status(
                    StatusFailed, m_operation, pathText(file),
                    localized("entity %1%, member %2%: %3%", entity.id(), leaf.path,
                              target.asset()
                                  ? localized("it refers to an entity of another document")
                                  : localized("it refers to an entity of a closed document")))};
            else if (!target.m_state.test(DataModel::EntityState::Stored))
                m_asset.markDirty(target);
        });
        keepGaps(entity.id());
    });
    if (!m_bWhole && !m_asset.m_bRootsDirty) return;
    for (auto const & segment : m_asset.m_segments)
        if (!segment->isTransient())
            for (auto const & [place, root] : segment->m_roots) {
                StrongRef<Entity> const & entity = root.second;
                EFate const fate = fateOf(entity.get());
                if (fate == EFate::Gap) gaps.push_back(entity->id());
                if (fate == EFate::Written && !m_bWhole &&
                    !entity->m_state.test(DataModel::EntityState::Stored))
                    m_asset.markDirty(*entity);
            }
    keepGaps(0);
}

void DocumentFile::Writer::noteStale() {
    // In place of a target that has come back stands null.
    for (auto const & [id, targets] : m_asset.m_gaps) {
        bool const isBack =
            std::any_of(targets.begin(), targets.end(), [&](unsigned long long target) {
                return m_asset.m_pTable->find(target) != nullptr;
            });
        if (!isBack) continue;
        if (id == 0)
            m_asset.m_bRootsDirty = true;
        else if (Entity * const entity = m_asset.m_pTable->find(id))
            m_asset.markDirty(*entity);
    }
    // The row of a target that has left is about to go.  What a change made an owner forget changed
    // that, so that there is something to look for only if the target is held elsewhere.
    if (!m_asset.m_bLeftHeld) return;
    m_asset.m_pTable->forEach([&](Entity & entity) {
        if (!isWritten(entity)) return;
        forEachOwned(entity, [&](Entity const * target) {
            if (fateOf(target) == EFate::Gap) m_asset.markDirty(entity);
        });
    });
    for (auto const & segment : m_asset.m_segments)
        for (auto const & [place, root] : segment->m_roots)
            if (fateOf(root.second.get()) == EFate::Gap && !segment->isTransient())
                m_asset.m_bRootsDirty = true;
}

// `ids` are those of all entities that are written and own others.  In a save of changes those are
// enough: there is no circle in the file, so that a new one leads through one of them.
unsigned long long
DocumentFile::Writer::idOnCircle(std::vector<unsigned long long> const & ids) const {
    // Down to what is owned and up again.  An owner that was met is open until all that it owns was
    // looked at; what leads to an open one closes a circle.
    std::unordered_map<Entity const *, bool> isOpen;
    std::vector<Entity *> way;
    unsigned long long found = 0;
    for (unsigned long long const id : ids) {
        if (Entity * const owner = m_asset.m_pTable->find(id)) way.push_back(owner);
        while (!way.empty() && !found) {
            Entity & owner = *way.back();
            auto const [place, isNew] = isOpen.emplace(&owner, true);
            if (!isNew) {
                place->second = false;
                way.pop_back();
                continue;
            }
            forEachOwned(owner, [&](Entity * owned) {
                if (!onIdOf(owned) || !owned->metaType()->layout().hasStrong()) return;
                auto const known = isOpen.find(owned);
                if (known == isOpen.end())
                    way.push_back(owned);
                else if (known->second)
                    found = owned->id();
            });
        }
    }
    return found;
}

void DocumentFile::Writer::writeEntities() {
    forEachToWrite([this](Entity & entity) { write(entity); });
    for (auto const & [type, target] : m_classes) writeRows(*target);
}

void DocumentFile::Writer::writeSegments() {
    Statement row(*m_pDatabase, "INSERT OR REPLACE INTO segments VALUES(?, ?, ?)");
    Statement present(*m_pDatabase, "SELECT 1 FROM segments WHERE kind=? AND place=? AND name=?");
    long long place = 0;
    for (auto const & segment : m_asset.m_segments) {
        if (segment->isTransient()) continue;
        SegmentType const & type = *segment->segmentType();
        for (Statement * const statement : {&present, &row}) {
            statement->bind(1, static_cast<long long>(type.type()));
            statement->bind(2, place);
            statement->bindText(3, type.name());
        }
        if (!present.step()) row.run();
        present.reset();
        ++place;
    }
}

void DocumentFile::Writer::writeRoots() {
    if (!m_bWhole) m_pDatabase->run("DELETE FROM roots");
    Statement row(*m_pDatabase, "INSERT INTO roots VALUES(?, ?, ?, ?)");
    for (auto const & segment : m_asset.m_segments) {
        if (segment->isTransient()) continue;
        long long place = 0;
        for (auto const & [number, root] : segment->m_roots) {
            auto const & [key, entity] = root;
            unsigned long long const id = onIdOf(entity.get());
            if (!id) continue;
            row.bind(1, static_cast<long long>(segment->segmentType()->type()));
            row.bind(2, place++);
            bindNarrow(row, 3, key);
            row.bind(4, static_cast<long long>(id));
            row.run();
        }
    }
}

DocumentFile::Writer::Class & DocumentFile::Writer::classOf(Entity & entity) {
    EntityMetaType * const type = entity.metaType();
    if (m_pLastClass && m_pLastClass->type == type) return *m_pLastClass;
    std::unique_ptr<Class> & target = m_classes[type];
    if (!target) {
        auto made = std::make_unique<Class>();
        made->type = type;
        FileType * fileType = m_pSchema->find(type->identifier());
        if (!fileType || fileType->table.empty()) fileType = &m_pSchema->add(*type);
        DataModel::DescribedType const described = DataModel::describe(*m_pDatabase, *type);
        int place = 2;
        for (std::size_t i = 0; i < described.members.size(); ++i) {
            FileMember const & member = described.members[i];
            Leaf const * const leaf = described.leaves[i];
            if (member.isColumn()) {
                made->columns.push_back({memberKind(member.m_kind), leaf->offset, place, {}});
                place += memberKind(member.m_kind).columns;
            } else if (member.m_list < 0)
                made->lists.push_back({leaf, static_cast<int>(i), {}});
            else {
                auto & parts = made->lists.back().parts;
                std::string head(1, parts.empty() ? '{' : ',');
                DataModel::appendJsonText(head, member.m_name, true);
                parts.push_back({head + ':', leaf});
            }
        }
        made->insert = (m_bWhole ? "INSERT INTO " : "INSERT OR REPLACE INTO ") +
                       DataModel::sqlName(fileType->table) + " VALUES";
        made->width = place;
        made->rowsTogether = static_cast<std::size_t>(
            std::clamp(Limits::c_statementParameters / place, 1, c_rowsTogether));
        for (Column & column : made->columns) column.texts.resize(made->rowsTogether);
        made->row = Statement(*m_pDatabase, made->insert + rowsOfParameters(1, place));
        target = std::move(made);
    }
    m_pLastClass = target.get();
    return *m_pLastClass;
}

void DocumentFile::Writer::write(Entity & entity) {
    Class & target = classOf(entity);
    target.waiting.push_back(&entity);
    if (target.waiting.size() == target.rowsTogether) writeRows(target);
    writeLists(target, entity);
}

// The rows of the entities that wait.
void DocumentFile::Writer::writeRows(Class & target) {
    std::size_t const count = target.waiting.size();
    if (count == target.rowsTogether) {
        if (!target.rows.isPrepared())
            target.rows =
                Statement(*m_pDatabase, target.insert + rowsOfParameters(count, target.width));
        for (std::size_t i = 0; i < count; ++i)
            bindColumns(target, *target.waiting[i], target.rows, i);
        target.rows.run();
    } else
        for (Entity const * const entity : target.waiting) {
            bindColumns(target, *entity, target.row, 0);
            target.row.run();
        }
    target.waiting.clear();
}

void DocumentFile::Writer::bindColumns(Class & target, Entity const & entity, Statement & rows,
                                       std::size_t row) {
    int const first = static_cast<int>(row) * target.width + 1;
    rows.bind(first, static_cast<long long>(entity.id()));
    rows.bind(first + 1, static_cast<long long>(entity.segment()->segmentType()->type()));
    for (Column & column : target.columns) {
        void const * const field = reinterpret_cast<char const *>(&entity) + column.offset;
        column.kind.bind(*this, rows, first + column.place, field, column.texts[row]);
    }
}

void DocumentFile::Writer::writeLists(Class & target, Entity & entity) {
    for (List const & list : target.lists) {
        Leaf const & leaf = *list.leaf;
        void * const field = DataModel::field(entity, leaf);
        std::size_t const count = leaf.functions->elementCount(field);
        if (count == 0 && m_bWhole) continue;
        std::size_t const stride = leaf.functions->memberBytes(1);
        auto const * element = static_cast<char const *>(leaf.functions->firstElement(field));
        m_cutter.clear();
        for (std::size_t i = 0; i < count; ++i, element += stride) {
            std::string & json = m_cutter.beginElement();
            if (leaf.elementKind == EMemberKind::StrongRef && i + c_ahead < count)
                fetch(at<StrongRef<Entity>>(element + c_ahead * stride).get());
            if (leaf.elementKind != EMemberKind::Value)
                memberKind(leaf.elementKind).append(*this, element, json);
            else {
                if (list.parts.empty()) json += '{';
                for (List::Part const & part : list.parts) {
                    json += part.head;
                    memberKind(part.leaf->kind).append(*this, element + part.leaf->offset, json);
                }
                json += '}';
            }
            m_cutter.endElement();
        }
        if (m_bWhole)
            m_pLists->insert(entity.id(), list.member, m_cutter.chunks());
        else
            m_pLists->replace(entity.id(), list.member, m_cutter.chunks());
    }
}

DocumentFile::Writer::Saved DocumentFile::Writer::makeSaved(std::filesystem::path const & file,
                                                            FileHead const & head) {
    std::error_code error;
    std::filesystem::path absolute = std::filesystem::absolute(file, error);
    if (error) absolute = file;
    return {std::move(absolute),
            DocumentFileStamp{head.id, head.generation, head.stamp, {}}.toString()};
}

// The document has this file from now on.
void DocumentFile::Writer::finish(Saved saved) noexcept {
    m_asset.m_file = std::move(saved.file);
    m_asset.m_fileStamp = std::move(saved.stamp);
}

// Hooks changed entities, and memory ran out while that was noted.
void DocumentFile::Writer::refuseUnnoted() const {
    if (m_asset.m_bUnnoted) throw std::bad_alloc();
}

void DocumentFile::Writer::markSaved() {
    forEachToWrite([](Entity & entity) {
        entity.m_state.set(DataModel::EntityState::Stored);
        entity.m_state.clear(DataModel::EntityState::Dirty);
    });
    std::vector<unsigned long long> const dirty = std::exchange(m_asset.m_dirty, {});
    m_asset.m_deleted.clear();
    m_asset.m_bRootsDirty = false;
    m_asset.m_bLeftHeld = false;
    if (m_bPrepared) m_asset.m_gaps = std::move(m_gaps);
    m_asset.m_history.markClean();

    // The hooks come last: what they change is new.
    auto const tell = [](Entity & entity) { entity.metaType()->onPostSave(&entity); };
    if (m_bWhole)
        forEachToWrite(tell);
    else
        for (unsigned long long const id : dirty)
            if (Entity * const entity = m_asset.m_pTable->find(id))
                if (isWritten(*entity)) tell(*entity);
    if (AssetAdapter * const adapter = m_asset.adapter()) adapter->postAssetSave();
}

} // namespace Vn
