#include "Platform/DataModel/DocumentFileWriterInternal.h"

#include <new>
#include <sstream>
#include <system_error>
#include <utility>

#include "Platform/Base/OS.h"
#include "Platform/DataModel/AssetAdapter.h"
#include "Platform/DataModel/DocumentFileTextInternal.h"
#include "Platform/DataModel/Entity.h"
#include "Platform/DataModel/EntityTableInternal.h"
#include "Platform/DataModel/Segment.h"
#include "Platform/Types/GlobalizedString.h"

namespace Vn {

using DataModel::Database;
using DataModel::FileFailure;
using DataModel::FileHead;
using DataModel::FileMember;
using DataModel::FileSchema;
using DataModel::FileType;
using DataModel::Leaf;
using DataModel::pathText;
using DataModel::Statement;

namespace {

// A member that is a column, with the buffers that its texts are bound from.
struct Column {
    EMemberKind m_kind;
    std::ptrdiff_t m_offset;
    int m_place;
    std::string m_text;
    std::string m_module;
    std::string m_key;
};

// A member that is a list.
struct List {
    struct Part {
        std::string m_head; // what stands in front of the part's value
        Leaf const * m_pLeaf;
    };
    Leaf const * m_pLeaf;
    int m_member;
    std::vector<Part> m_parts;
};

template <class T>
T const & at(void const * field) noexcept {
    return *static_cast<T const *>(field);
}

void bindNarrow(Statement & row, int place, std::string_view text) {
    if (DataModel::isText(text))
        row.bindText(place, text);
    else
        row.bindBytes(place, text);
}

void bindWide(Statement & row, int place, std::wstring_view text, std::string & buffer) {
    if (DataModel::encodeText(text, buffer))
        row.bindText(place, buffer);
    else
        row.bindBytes(place, buffer);
}

void appendWide(std::string & json, std::wstring_view text, std::string & buffer) {
    bool const isText = DataModel::encodeText(text, buffer);
    DataModel::appendJsonText(json, buffer, isText);
}

void appendNarrow(std::string & json, std::string_view text) {
    DataModel::appendJsonText(json, text, DataModel::isText(text));
}

std::filesystem::path besideName(std::filesystem::path const & file, char const * ending) {
    std::filesystem::path beside = file;
    beside += ending;
    return beside;
}

} // namespace

struct DocumentFile::Writer::Class {
    EntityMetaType * m_pType;
    Statement m_row;
    std::vector<Column> m_columns;
    std::vector<List> m_lists;
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

void DocumentFile::Writer::begin(Database & database, FileSchema & schema, bool isWhole) {
    m_pDatabase = &database;
    m_pSchema = &schema;
    m_bWhole = isWhole;
    m_pLists = std::make_unique<DataModel::ListWriter>(database);
}

void DocumentFile::Writer::end() noexcept {
    m_pLists.reset();
    m_pLastClass = nullptr;
    m_classes.clear();
}

// --- The whole document ------------------------------------------------------------------------

void DocumentFile::Writer::saveWhole(std::filesystem::path const & file) {
    auto const refuse = [&](EStatus code, std::string_view cause) {
        throw FileFailure{Status(code, m_operation, pathText(file), cause)};
    };
    std::error_code error;
    // What a link leads to is replaced, not the link.
    std::filesystem::path target = file;
    if (std::filesystem::is_symlink(file, error)) target = std::filesystem::canonical(file, error);
    if (error) target = file;
    auto const status = std::filesystem::status(target, error);
    bool const exists = std::filesystem::exists(status);
    if (std::filesystem::is_directory(status)) refuse(StatusInvalidArgument, "it is a directory");
    if (exists && !std::filesystem::is_regular_file(status))
        refuse(StatusInvalidArgument, "it isn't a file");
    using std::filesystem::perms;
    constexpr perms c_writable = perms::owner_write | perms::group_write | perms::others_write;
    if (exists && (status.permissions() & c_writable) == perms::none)
        refuse(StatusAccessDenied, "the file is read-only");

    std::filesystem::path const temporary = besideName(target, ".saving");
    bool const wasUnnoted = std::exchange(m_asset.m_bUnnoted, false); // all is written
    Database database(m_operation, file, m_fileSystem);
    bool isOurs = false;
    FileHead head;
    Saved saved;
    try {
        database.open(temporary, true);
        database.takeEmpty();
        isOurs = true;
        database.run("PRAGMA journal_mode=OFF");
        database.run("PRAGMA synchronous=FULL");
        database.run("PRAGMA cache_size=-65536");
        database.run("BEGIN EXCLUSIVE");
        FileSchema schema(database);
        schema.create();
        begin(database, schema, true);
        std::size_t const deleted = m_asset.m_deleted.size();
        writeAll();
        eraseDeleted(deleted);
        refuseUnnoted();
        writeSegments();
        writeRoots();
        if (m_asset.m_fileStamp.size()) {
            DocumentFileStamp const stamp = DocumentFileStamp::parse(m_asset.m_fileStamp);
            head.m_id = stamp.m_id;
            head.m_generation = stamp.m_generation;
        }
        head.m_nextEntity = m_asset.m_nextId;
        schema.writeHead(head);
        end();
        database.run("COMMIT");
        if (exists) std::filesystem::permissions(temporary, status.permissions(), error);
        if constexpr (!OS::c_renamesOpenFiles) database.close();
        if (exists) removeRemains(target);
        saved = makeSaved(file, head);
        Status const renamed = OS::renameFile(temporary, target);
        if (!renamed) refuse(renamed.code(), renamed.cause());
    } catch (...) {
        end();
        database.close();
        if (isOurs) std::filesystem::remove(temporary, error);
        m_asset.m_bUnnoted = m_asset.m_bUnnoted || wasUnnoted;
        throw;
    }
    database.close();
    finish(std::move(saved));
    Status const synced =
        OS::syncDirectory(target.has_parent_path() ? target.parent_path() : std::filesystem::path("."));
    if (!synced) {
        // The file is there, and may be gone after a crash: the next save writes it whole.
        m_asset.m_fileStamp =
            DocumentFileStamp{head.m_id, head.m_generation, "-", head.m_stamp}.toString();
        refuse(synced.code(), synced.cause());
    }
    markSaved(true);
}

// A journal of the file that is about to be replaced would be applied to the new one.
void DocumentFile::Writer::removeRemains(std::filesystem::path const & file) const {
    std::error_code error;
    std::filesystem::path const journal = besideName(file, "-journal");
    if (std::filesystem::exists(journal, error)) {
        // Until the new file is in its place, the old one is whole.
        try {
            Database old(m_operation, file, m_fileSystem);
            old.open(file, false);
            old.number("SELECT count(*) FROM sqlite_schema");
        } catch (FileFailure const &) { // then it was no document, and there is nothing to lose
        }
    }
    for (char const * const ending : {"-journal", "-wal", "-shm"}) {
        std::filesystem::remove(besideName(file, ending), error);
        if (error)
            throw FileFailure{Status(StatusIO, m_operation, pathText(file),
                                     "the remains of a crash can't be removed: "
                                         + OS::errorText(error))};
    }
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
    if (!std::filesystem::exists(status)) refuse(StatusNotFound, "the file is gone");
    if (std::filesystem::is_directory(status)) refuse(StatusInvalidArgument, "it is a directory");
    if (!std::filesystem::is_regular_file(status)) refuse(StatusInvalidArgument, "it isn't a file");
    using std::filesystem::perms;
    constexpr perms c_writable = perms::owner_write | perms::group_write | perms::others_write;
    if ((status.permissions() & c_writable) == perms::none)
        refuse(StatusAccessDenied, "the file is read-only");

    bool isWholeNeeded = false;
    FileHead head;
    {
        Database database(m_operation, file, m_fileSystem);
        FileSchema schema(database);
        try {
            database.open(file, false);
            schema.checkHeader();
            if (sqlite3_db_readonly(database.get(), "main") == 1)
                refuse(StatusAccessDenied, "the file is read-only");
            database.run("PRAGMA synchronous=EXTRA");
            database.run("BEGIN IMMEDIATE");
            schema.read();
            head = schema.readHead();
            bool const isDoubtful =
                !stamp.m_doubtful.empty() && head.m_stamp == stamp.m_doubtful;
            if (head.m_id != stamp.m_id || (head.m_stamp != stamp.m_stamp && !isDoubtful))
                refuse(StatusFailed, "the file was changed by another program");
            isWholeNeeded = isDoubtful || m_asset.m_bUnnoted || !isCurrent(database, schema);
            if (!isWholeNeeded) {
                begin(database, schema, false);
                if (!m_asset.m_dirty.empty() || !m_asset.m_deleted.empty()
                    || m_asset.m_bRootsDirty) {
                    writeDirty();
                    eraseDeleted(0);
                    refuseUnnoted();
                    writeSegments();
                    if (m_asset.m_bRootsDirty) writeRoots();
                    head.m_nextEntity = m_asset.m_nextId;
                    schema.writeHead(head);
                    // From here on it may take effect and still be said to have failed.
                    stamp.m_doubtful = head.m_stamp;
                    m_asset.m_fileStamp = stamp.toString();
                }
                end();
                database.run("COMMIT");
            }
        } catch (...) {
            end();
            throw;
        }
    }
    if (isWholeNeeded) return saveWhole(file);
    finish(makeSaved(file, head));
    markSaved(false);
}

bool DocumentFile::Writer::isCurrent(Database const & database, FileSchema & schema) {
    for (FileType const & type : schema.types()) {
        MetaType * const present = MetaTypeMgr::get()->metaType(type.m_id);
        if (!present || present->version() != type.m_version) return false;
        if (type.m_table.empty()) continue;
        auto * const entityType = dynamic_cast<EntityMetaType *>(present);
        if (!entityType) return false;
        // As long as there is no object of the class, nothing of it can have changed.
        if (entityType->memberSet(c_latestVersion)->initialized()
            && DataModel::describe(database, *entityType).m_members != type.m_members)
            return false;
    }
    return true;
}

// From the `first` on: hooks may have deleted what was written before.
void DocumentFile::Writer::eraseDeleted(std::size_t first) {
    if (first == m_asset.m_deleted.size()) return;
    std::vector<Statement> erase;
    for (FileType const & type : m_pSchema->types())
        if (!type.m_table.empty())
            erase.emplace_back(*m_pDatabase,
                               "DELETE FROM " + DataModel::sqlName(type.m_table) + " WHERE id=?");
    std::size_t likely = 0; // entities that go together are often of one class
    for (; first < m_asset.m_deleted.size(); ++first) {
        unsigned long long const id = m_asset.m_deleted[first];
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

void DocumentFile::Writer::writeDirty() {
    // By index: the hooks may change further entities.
    for (std::size_t i = 0; i < m_asset.m_dirty.size(); ++i)
        if (Entity * const entity = m_asset.m_pTable->find(m_asset.m_dirty[i]))
            if (isWritten(*entity)) write(*entity);
}

// --- What both share ---------------------------------------------------------------------------

bool DocumentFile::Writer::isWritten(Entity const & entity) noexcept {
    return entity.segment() && !entity.segment()->isTransient();
}

unsigned long long DocumentFile::Writer::idOf(Entity const * target) const noexcept {
    bool const isThere =
        target && target->isAlive() && target->asset() == &m_asset && isWritten(*target);
    return isThere ? target->id() : 0;
}

unsigned long long
DocumentFile::Writer::idOf(PassiveRef<Entity> const & reference) const noexcept {
    // One that is dead and may come back counts: its passive references will lead to it again, and
    // nobody would write them then.  Its id is never used again.
    Entity const * const target = reference.getKept();
    bool const isThere = target
        && (target->isAlive() || (target->m_flags & Entity::FlagKept) != 0)
        && target->asset() == &m_asset && isWritten(*target);
    return isThere ? target->id() : 0;
}

void DocumentFile::Writer::writeAll() {
    m_asset.m_pTable->forEach([&](Entity & entity) {
        if (isWritten(entity)) write(entity);
    });
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
        for (auto const & [key, entity] : segment->m_roots) {
            unsigned long long const id = idOf(entity.get());
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
    if (m_pLastClass && m_pLastClass->m_pType == type) return *m_pLastClass;
    std::unique_ptr<Class> & target = m_classes[type];
    if (!target) {
        auto made = std::make_unique<Class>();
        made->m_pType = type;
        FileType * fileType = m_pSchema->find(type->identifier());
        if (!fileType || fileType->m_table.empty()) fileType = &m_pSchema->add(*type);
        DataModel::DescribedType const described = DataModel::describe(*m_pDatabase, *type);
        int place = 3;
        for (std::size_t i = 0; i < described.m_members.size(); ++i) {
            FileMember const & member = described.m_members[i];
            Leaf const * const leaf = described.m_leaves[i];
            if (member.isColumn()) {
                made->m_columns.push_back({member.m_kind, leaf->m_offset, place, {}, {}, {}});
                place += member.m_kind == EMemberKind::GlobalizedString ? 3 : 1;
            } else if (member.m_list < 0)
                made->m_lists.push_back({leaf, static_cast<int>(i), {}});
            else {
                auto & parts = made->m_lists.back().m_parts;
                std::string head(1, parts.empty() ? '{' : ',');
                DataModel::appendJsonText(head, member.m_name, true);
                parts.push_back({head + ':', leaf});
            }
        }
        std::string sql = m_bWhole ? "INSERT INTO " : "INSERT OR REPLACE INTO ";
        sql += DataModel::sqlName(fileType->m_table) + " VALUES(?";
        for (int i = 2; i < place; ++i) sql += ", ?";
        made->m_row = Statement(*m_pDatabase, sql + ')');
        target = std::move(made);
    }
    m_pLastClass = target.get();
    return *m_pLastClass;
}

void DocumentFile::Writer::write(Entity & entity) {
    Class & target = classOf(entity);
    target.m_pType->onPreSave(&entity);
    if (!entity.isAlive()) return;
    writeColumns(target, entity);
    writeLists(target, entity);
    entity.m_flags |= Entity::FlagStored; // if the save fails, no more than a row too many is looked for
}

void DocumentFile::Writer::writeColumns(Class & target, Entity & entity) {
    Statement & row = target.m_row;
    row.bind(1, static_cast<long long>(entity.id()));
    row.bind(2, static_cast<long long>(entity.segment()->segmentType()->type()));
    for (Column & column : target.m_columns) {
        void const * const field = reinterpret_cast<char const *>(&entity) + column.m_offset;
        int const place = column.m_place;
        auto const bindReference = [&](unsigned long long id) {
            if (id)
                row.bind(place, static_cast<long long>(id));
            else
                row.bindNull(place);
        };
        switch (column.m_kind) {
        case EMemberKind::Bool: row.bind(place, at<bool>(field) ? 1LL : 0LL); break;
        case EMemberKind::Int: row.bind(place, static_cast<long long>(at<int>(field))); break;
        case EMemberKind::UnsignedInt:
            row.bind(place, static_cast<long long>(at<unsigned>(field)));
            break;
        case EMemberKind::Int64: row.bind(place, at<long long>(field)); break;
        case EMemberKind::UnsignedInt64:
            row.bind(place, static_cast<long long>(at<unsigned long long>(field)));
            break;
        // The engine makes NULL of NaN.
        case EMemberKind::Float: row.bind(place, static_cast<double>(at<float>(field))); break;
        case EMemberKind::Double: row.bind(place, at<double>(field)); break;
        case EMemberKind::String: bindNarrow(row, place, at<std::string>(field)); break;
        case EMemberKind::WideString:
            bindWide(row, place, at<std::wstring>(field), column.m_text);
            break;
        case EMemberKind::GlobalizedString: {
            auto const & text = at<GlobalizedString>(field);
            bindWide(row, place, text.defaultText(), column.m_text);
            if (text.isGlobalized()) {
                bindNarrow(row, place + 1, text.module());
                bindNarrow(row, place + 2, text.key());
            } else {
                row.bindNull(place + 1);
                row.bindNull(place + 2);
            }
            break;
        }
        case EMemberKind::StrongRef: bindReference(idOf(at<StrongRef<Entity>>(field).get())); break;
        case EMemberKind::PassiveRef: bindReference(idOf(at<PassiveRef<Entity>>(field))); break;
        case EMemberKind::Vector:
        case EMemberKind::Value: break;
        }
    }
    row.run();
}

void DocumentFile::Writer::appendElement(std::string & json, EMemberKind kind,
                                         void const * element) {
    using DataModel::appendJson;
    auto const appendReference = [&](unsigned long long id) {
        if (id)
            appendJson(json, static_cast<long long>(id));
        else
            json += "null";
    };
    switch (kind) {
    case EMemberKind::Bool: json += at<bool>(element) ? "true" : "false"; break;
    case EMemberKind::Int: appendJson(json, static_cast<long long>(at<int>(element))); break;
    case EMemberKind::UnsignedInt:
        appendJson(json, static_cast<long long>(at<unsigned>(element)));
        break;
    case EMemberKind::Int64: appendJson(json, at<long long>(element)); break;
    case EMemberKind::UnsignedInt64:
        appendJson(json, static_cast<long long>(at<unsigned long long>(element)));
        break;
    case EMemberKind::Float: appendJson(json, at<float>(element)); break;
    case EMemberKind::Double: appendJson(json, at<double>(element)); break;
    case EMemberKind::String: appendNarrow(json, at<std::string>(element)); break;
    case EMemberKind::WideString: appendWide(json, at<std::wstring>(element), m_scratch); break;
    case EMemberKind::GlobalizedString: {
        auto const & text = at<GlobalizedString>(element);
        if (text.isGlobalized()) {
            json += '[';
            appendNarrow(json, text.module());
            json += ',';
            appendNarrow(json, text.key());
            json += ',';
        }
        appendWide(json, text.defaultText(), m_scratch);
        if (text.isGlobalized()) json += ']';
        break;
    }
    case EMemberKind::StrongRef: appendReference(idOf(at<StrongRef<Entity>>(element).get())); break;
    case EMemberKind::PassiveRef: appendReference(idOf(at<PassiveRef<Entity>>(element))); break;
    case EMemberKind::Vector:
    case EMemberKind::Value: break;
    }
}

void DocumentFile::Writer::writeLists(Class & target, Entity & entity) {
    for (List const & list : target.m_lists) {
        Leaf const & leaf = *list.m_pLeaf;
        void * const field = DataModel::field(entity, leaf);
        std::size_t const count = leaf.m_pFunctions->elementCount(field);
        if (count == 0 && m_bWhole) continue;
        std::size_t const stride = leaf.m_pFunctions->memberBytes(1);
        auto const * element = static_cast<char const *>(leaf.m_pFunctions->firstElement(field));
        m_cutter.clear();
        for (std::size_t i = 0; i < count; ++i, element += stride) {
            std::string & json = m_cutter.beginElement();
            if (leaf.m_elementKind != EMemberKind::Value)
                appendElement(json, leaf.m_elementKind, element);
            else {
                if (list.m_parts.empty()) json += '{';
                for (List::Part const & part : list.m_parts) {
                    json += part.m_head;
                    appendElement(json, part.m_pLeaf->m_kind, element + part.m_pLeaf->m_offset);
                }
                json += '}';
            }
            m_cutter.endElement();
        }
        if (m_bWhole)
            m_pLists->insert(entity.id(), list.m_member, m_cutter.chunks());
        else
            m_pLists->replace(entity.id(), list.m_member, m_cutter.chunks());
    }
}

DocumentFile::Writer::Saved DocumentFile::Writer::makeSaved(std::filesystem::path const & file,
                                                            FileHead const & head) {
    std::error_code error;
    std::filesystem::path absolute = std::filesystem::absolute(file, error);
    return {error ? file : std::move(absolute),
            DocumentFileStamp{head.m_id, head.m_generation, head.m_stamp, {}}.toString()};
}

// The document has this file from now on.
void DocumentFile::Writer::finish(Saved saved) noexcept {
    m_asset.m_file = std::move(saved.m_file);
    m_asset.m_fileStamp = std::move(saved.m_stamp);
}

// Hooks changed entities while they were written, and memory ran out while that was noted.
void DocumentFile::Writer::refuseUnnoted() const {
    if (m_asset.m_bUnnoted) throw std::bad_alloc();
}

void DocumentFile::Writer::markSaved(bool isWhole) {
    auto const mark = [](Entity & entity) {
        entity.m_flags |= Entity::FlagStored;
        entity.m_flags &= ~static_cast<std::uint32_t>(Entity::FlagDirty);
    };
    std::vector<unsigned long long> const dirty = std::exchange(m_asset.m_dirty, {});
    m_asset.m_deleted.clear();
    m_asset.m_bRootsDirty = false;
    m_asset.m_history.markClean();
    if (isWhole)
        m_asset.m_pTable->forEach([&](Entity & entity) {
            if (isWritten(entity)) mark(entity);
        });
    else
        for (unsigned long long const id : dirty)
            if (Entity * const entity = m_asset.m_pTable->find(id))
                if (isWritten(*entity)) mark(*entity);

    // The hooks come last: what they change is new.
    if (isWhole)
        m_asset.m_pTable->forEach([&](Entity & entity) {
            if (isWritten(entity)) entity.metaType()->onPostSave(&entity);
        });
    else
        for (unsigned long long const id : dirty)
            if (Entity * const entity = m_asset.m_pTable->find(id))
                if (isWritten(*entity)) entity->metaType()->onPostSave(entity);
    if (AssetAdapter * const adapter = m_asset.adapter()) adapter->postAssetSave();
}

} // namespace Vn
