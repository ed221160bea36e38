#include <algorithm>
#include <iterator>
#include <map>
#include <random>
#include <set>

#include "Platform/Base/LocalizedText.h"
#include "Platform/DataModel/DocumentFile.h"
#include "Platform/DataModel/Entity.h"
#include "Platform/DataModel/File/Schema.h"
#include "Platform/DataModel/File/Text.h"
#include "Platform/DataModel/Limits.h"

namespace Vn::DataModel {

namespace {

struct FixedTable {
    char const * name;
    char const * sql;
};

// No column but the keys has a type: a value stays what it was when it was stored.
constexpr FixedTable c_fixedTables[] = {
    {"document", "CREATE TABLE document(id, stamp, generation, next_entity)"},
    {"types", "CREATE TABLE types(number INTEGER PRIMARY KEY, id, name, what, version, base, "
              "table_name)"},
    {"members",
     "CREATE TABLE members(type, position, class, name, kind, element, column_name, list, "
     "PRIMARY KEY(type, position)) WITHOUT ROWID"},
    {"segments", "CREATE TABLE segments(kind INTEGER PRIMARY KEY, place, name)"},
    {"roots", "CREATE TABLE roots(segment, place, key, entity, PRIMARY KEY(segment, place)) "
              "WITHOUT ROWID"},
    {"lists",
     "CREATE TABLE lists(entity, member, chunk, items, PRIMARY KEY(entity, member, chunk))"},
};

// Names that differ only in the case of ASCII letters are one to SQL.
std::string folded(std::string_view name) {
    std::string folded(name);
    for (char & c : folded)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return folded;
}

// What is fit to stand in SQL and in messages.
bool isName(std::string_view name) {
    return !name.empty() && name.size() <= Limits::c_nameBytes && isText(name) &&
           std::none_of(name.begin(), name.end(),
                        [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; });
}

std::string tableSql(std::string const & table, std::vector<std::string> const & columns) {
    std::string sql = "CREATE TABLE " + sqlName(table) + "(id INTEGER PRIMARY KEY, segment";
    for (std::string const & column : columns) sql += ", " + sqlName(column);
    return sql + ')';
}

std::string_view text(Database const & database, Statement & row, int place, char const * what) {
    if (row.type(place) != SQLITE_TEXT)
        database.damaged(localized("%1% isn't a text", localized(what)));
    std::string_view const bytes = row.bytes(place);
    if (!isText(bytes)) database.damaged(localized("%1% isn't UTF-8", localized(what)));
    return bytes;
}

long long integer(Database const & database, Statement & row, int place, char const * what) {
    if (row.type(place) != SQLITE_INTEGER)
        database.damaged(localized("%1% isn't a whole number", localized(what)));
    return row.integer(place);
}

// Gives the columns their names: the path, or one like it if another member has it already.
void nameColumns(std::vector<FileMember> & members) {
    std::set<std::string> taken{"id", "segment"};
    auto const isFree = [&](FileMember const & member, std::string const & column) {
        return !taken.contains(folded(column)) && (member.m_kind != EMemberKind::GlobalizedString ||
                                                   (!taken.contains(folded(moduleColumn(column))) &&
                                                    !taken.contains(folded(keyColumn(column)))));
    };
    for (FileMember & member : members) {
        if (!member.isColumn()) continue;
        std::string column = member.path();
        for (int i = 2; !isFree(member, column); ++i)
            column = member.path() + '~' + std::to_string(i);
        taken.insert(folded(column));
        if (member.m_kind == EMemberKind::GlobalizedString) {
            taken.insert(folded(moduleColumn(column)));
            taken.insert(folded(keyColumn(column)));
        }
        member.m_column = std::move(column);
    }
}

} // namespace

bool FileMember::isListOfReferences() const noexcept {
    return m_kind == EMemberKind::Vector &&
           (m_element == EMemberKind::StrongRef || m_element == EMemberKind::PassiveRef);
}

SegmentType * storedSegment(long long kind) noexcept {
    bool const isKind =
        kind == SegmentType::DesignSegment || kind == SegmentType::StandaloneSegment;
    return isKind ? SegmentTypeMgr::get()->segmentType(static_cast<unsigned>(kind)) : nullptr;
}

std::string moduleColumn(std::string const & column) { return column + ":module"; }
std::string keyColumn(std::string const & column) { return column + ":key"; }

std::string sqlName(std::string_view name) {
    std::string quoted = "\"";
    for (char const c : name) {
        if (c == '"') quoted += '"';
        quoted += c;
    }
    return quoted + '"';
}

std::string randomName() {
    static std::random_device s_device;
    std::string name;
    for (int i = 0; i < 4; ++i) {
        unsigned const word = s_device();
        for (int shift = 28; shift >= 0; shift -= 4) name += "0123456789abcdef"[word >> shift & 15];
    }
    return name;
}

DescribedType describe(Database const & database, EntityMetaType & type) {
    DescribedType described;
    auto const refuse = [&](std::string const & why) {
        database.fail(StatusUnsupported,
                      localized("the class %1% can't be stored: %2%", type.name(), why));
    };
    auto const add = [&](Leaf const & leaf, int list) {
        FileMember member;
        member.m_class = classNameOf(leaf);
        member.m_name = nameOf(leaf);
        member.m_kind = leaf.kind;
        if (leaf.kind == EMemberKind::Vector) member.m_element = leaf.elementKind;
        member.m_list = list;
        if (!isName(member.m_class) || !isName(member.m_name))
            refuse(localized("a member has an unfit name"));
        if (list >= 0 && leaf.kind == EMemberKind::Vector)
            refuse(localized("%1% is a vector within a vector", leaf.path));
        described.members.push_back(std::move(member));
        described.leaves.push_back(&leaf);
    };
    if (type.type() != EntityMetaType::TypeConcrete) refuse(localized("it is abstract"));
    for (Leaf const & leaf : type.layout().leaves()) {
        if (!leaf.isPersisted || leaf.isInHelper) continue;
        int const place = static_cast<int>(described.members.size());
        add(leaf, -1);
        if (leaf.kind == EMemberKind::Vector && leaf.elementKind == EMemberKind::Value)
            for (Leaf const & part : *leaf.elementLeaves)
                if (part.isPersisted) add(part, place);
    }
    std::set<std::pair<int, std::string>> paths;
    for (FileMember const & member : described.members)
        if (!paths.emplace(member.m_list, member.path()).second)
            refuse(localized("there are two members %1%", member.path()));
    nameColumns(described.members);
    return described;
}

std::vector<std::string> columnsOf(std::vector<FileMember> const & members) {
    std::vector<std::string> columns;
    for (FileMember const & member : members) {
        if (!member.isColumn()) continue;
        columns.push_back(member.m_column);
        if (member.m_kind == EMemberKind::GlobalizedString) {
            columns.push_back(moduleColumn(member.m_column));
            columns.push_back(keyColumn(member.m_column));
        }
    }
    return columns;
}

void FileSchema::checkHeader() const {
    Database::Header header;
    if (!m_database.readHeader(header)) m_database.damaged(localized("it is not a document"));
    auto const number = [&](std::size_t place) {
        return static_cast<long long>(header[place]) << 24 | header[place + 1] << 16 |
               header[place + 2] << 8 | header[place + 3];
    };
    constexpr std::string_view c_magic("SQLite format 3\0", 16);
    if (!std::equal(c_magic.begin(), c_magic.end(), header.begin()) ||
        number(68) != c_applicationId)
        m_database.damaged(localized("it is not a document"));
    long long const version = number(60);
    if (version > DocumentFile::c_schemaVersion)
        m_database.fail(
            StatusNewerFormat,
            localized("it has version %1% of the format, and %2% is the latest that is known",
                      version, DocumentFile::c_schemaVersion));
    if (version < 1) m_database.damaged(localized("there is no version %1%", version));
    if (header[18] != 1 || header[19] != 1)
        m_database.damaged(localized("it was switched to another mode of journalling"));
    if (number(56) != 1) m_database.damaged(localized("its texts are not in UTF-8"));
}

void FileSchema::create() {
    m_database.run("PRAGMA application_id=" + std::to_string(c_applicationId) +
                   "; PRAGMA user_version=" + std::to_string(DocumentFile::c_schemaVersion));
    for (FixedTable const & table : c_fixedTables) m_database.run(table.sql);
}

void FileSchema::read() {
    // The tables first: without this order a view in the place of one of them would be read.
    checkTables();
    readTypes();
    readMembers();
    checkTables();
}

FileHead FileSchema::readHead() {
    Statement row(m_database, "SELECT id, stamp, generation, next_entity FROM document");
    if (!row.step()) m_database.damaged(localized("the row of the document is missing"));
    FileHead head;
    head.id = text(m_database, row, 0, localizable("the id of the document"));
    head.stamp = text(m_database, row, 1, localizable("the stamp of the document"));
    head.generation = integer(m_database, row, 2, localizable("the generation of the document"));
    long long const next = integer(m_database, row, 3, localizable("the next id"));
    if (head.generation < 0)
        m_database.damaged(localized("the generation of the document is negative"));
    if (next < 1 || static_cast<unsigned long long>(next) > Limits::c_entityId)
        m_database.damaged(localized("the next id is out of range"));
    head.nextEntity = static_cast<unsigned long long>(next);
    if (row.step()) m_database.damaged(localized("there are two rows of the document"));
    return head;
}

void FileSchema::writeHead(FileHead & head) {
    // What is refused here is what a load would refuse.
    if (head.generation < 0 || head.generation >= Limits::c_generations)
        m_database.fail(StatusFailed, localized("its generation would be out of range"));
    if (head.nextEntity < 1 || head.nextEntity > Limits::c_entityId)
        m_database.fail(StatusFailed, localized("the id of an entity would be out of range"));
    if (head.id.empty()) head.id = randomName();
    head.stamp = randomName();
    ++head.generation;
    m_database.run("DELETE FROM document");
    Statement row(m_database, "INSERT INTO document VALUES(?, ?, ?, ?)");
    row.bindText(1, head.id);
    row.bindText(2, head.stamp);
    row.bind(3, head.generation);
    row.bind(4, static_cast<long long>(head.nextEntity));
    row.run();
}

FileType * FileSchema::find(std::string_view id) {
    for (FileType & type : m_types)
        if (type.id == id) return &type;
    return nullptr;
}

FileType & FileSchema::add(EntityMetaType & type) {
    DescribedType described = describe(m_database, type);
    FileType & added = addType(type, true);
    for (EntityMetaType const * base = type.base(); base; base = base->base()) addType(*base, true);
    for (MemberSet const * set = type.memberSet(c_latestVersion); set; set = set->base())
        for (unsigned i = 0; i < set->members(); ++i) {
            MemberMetaType const * kind = set->member(i).type();
            if (set->member(i).functions()) kind = set->member(i).functions()->elementType();
            if (kind->kind() == EMemberKind::Value && !kind->identifier().empty())
                addType(*kind, false);
        }
    added.members = std::move(described.members);
    added.table = freeTable(type.memberSet(c_latestVersion)->className());
    m_database.run(tableSql(added.table, columnsOf(added.members)));
    Statement update(m_database, "UPDATE types SET table_name=? WHERE number=?");
    update.bindText(1, added.table);
    update.bind(2, added.number);
    update.run();
    insertMembers(added);
    return added;
}

FileType & FileSchema::addType(MetaType const & type, bool isEntity) {
    if (FileType * const present = find(type.identifier())) return *present;
    if (!isName(type.identifier()) || !isName(type.name()))
        m_database.fail(StatusUnsupported, localized("a meta type has an unfit name"));
    FileType added;
    added.number = m_types.empty() ? 1 : m_types.back().number + 1;
    if (added.number > Limits::c_fileTypes)
        m_database.fail(
            StatusFailed,
            localized("it has no number left for another type; save it under another name"));
    added.id = type.identifier();
    added.name = type.name();
    added.isEntity = isEntity;
    added.version = type.version();
    added.base = type.baseIdentifier();
    Statement row(m_database, "INSERT INTO types VALUES(?, ?, ?, ?, ?, ?, NULL)");
    row.bind(1, added.number);
    row.bindText(2, added.id);
    row.bindText(3, added.name);
    row.bindText(4, isEntity ? "entity" : "value");
    row.bind(5, static_cast<long long>(added.version));
    row.bindText(6, added.base);
    row.run();
    m_types.push_back(std::move(added));
    return m_types.back();
}

void FileSchema::insertMembers(FileType const & type) {
    Statement row(m_database, "INSERT INTO members VALUES(?, ?, ?, ?, ?, ?, ?, ?)");
    long long position = 0;
    for (FileMember const & member : type.members) {
        row.bind(1, type.number);
        row.bind(2, position++);
        row.bindText(3, member.m_class);
        row.bindText(4, member.m_name);
        row.bindText(5, memberKind(member.m_kind).name);
        if (member.m_kind == EMemberKind::Vector)
            row.bindText(6, memberKind(member.m_element).name);
        else
            row.bindNull(6);
        if (member.isColumn())
            row.bindText(7, member.m_column);
        else
            row.bindNull(7);
        if (member.m_list >= 0)
            row.bind(8, static_cast<long long>(member.m_list));
        else
            row.bindNull(8);
        row.run();
    }
}

std::string FileSchema::freeTable(std::string_view wanted) const {
    auto const isFree = [&](std::string const & name) {
        std::string const key = folded(name);
        return !key.starts_with("sqlite_") &&
               std::none_of(std::begin(c_fixedTables), std::end(c_fixedTables),
                            [&](FixedTable const & table) { return key == table.name; }) &&
               std::none_of(m_types.begin(), m_types.end(),
                            [&](FileType const & type) { return key == folded(type.table); });
    };
    std::string name(wanted);
    if (!isName(name) || folded(name).starts_with("sqlite_")) name = "Class";
    if (isFree(name)) return name;
    for (int i = 2;; ++i)
        if (std::string numbered = name + '~' + std::to_string(i); isFree(numbered))
            return numbered;
}

void FileSchema::readTypes() {
    Statement row(m_database, "SELECT number, id, name, what, version, base, table_name FROM types "
                              "ORDER BY number");
    std::set<std::string> ids;
    std::set<std::string> tables;
    while (row.step()) {
        FileType type;
        type.number = integer(m_database, row, 0, localizable("the number of a type"));
        if (type.number < 1 || type.number > Limits::c_fileTypes)
            m_database.damaged(localized("the number of a type is out of range"));
        type.id = text(m_database, row, 1, localizable("the id of a type"));
        type.name = text(m_database, row, 2, localizable("the name of a type"));
        std::string_view const what = text(m_database, row, 3, localizable("what a type is"));
        if (what != "entity" && what != "value")
            m_database.damaged(
                localized("the type %1% is neither of entities nor of values", type.id));
        type.isEntity = what == "entity";
        long long const version = integer(m_database, row, 4, localizable("the version of a type"));
        if (version < 0 || version >= c_latestVersion)
            m_database.damaged(localized("the version of the type %1% is out of range", type.id));
        type.version = static_cast<unsigned>(version);
        type.base = text(m_database, row, 5, localizable("the base of a type"));
        if (row.type(6) != SQLITE_NULL)
            type.table = text(m_database, row, 6, localizable("the name of a table"));
        if (!isName(type.id) || !isName(type.name) || !ids.insert(type.id).second)
            m_database.damaged(localized("the id or the name of a type is unfit"));
        if (row.type(6) != SQLITE_NULL &&
            (!isName(type.table) || !type.isEntity || !tables.insert(folded(type.table)).second))
            m_database.damaged(localized("the table of the type %1% is unfit", type.id));
        m_types.push_back(std::move(type));
    }
}

void FileSchema::readMembers() {
    std::map<long long, FileType *> types;
    for (FileType & type : m_types) types.emplace(type.number, &type);
    Statement row(m_database,
                  "SELECT type, position, class, name, kind, element, column_name, list "
                  "FROM members ORDER BY type, position");
    while (row.step()) {
        auto const found =
            types.find(integer(m_database, row, 0, localizable("the type of a member")));
        if (found == types.end() || found->second->table.empty())
            m_database.damaged(localized("a member belongs to no class with a table"));
        auto & members = found->second->members;
        std::string const & id = found->second->id;
        if (integer(m_database, row, 1, localizable("the position of a member")) !=
            static_cast<long long>(members.size()))
            m_database.damaged(localized("a member of the type %1% is missing", id));
        FileMember member;
        member.m_class = text(m_database, row, 2, localizable("the class of a member"));
        member.m_name = text(m_database, row, 3, localizable("the name of a member"));
        if (!isName(member.m_class) || !isName(member.m_name))
            m_database.damaged(localized("the name of a member is unfit"));
        auto const refuse = [&](char const * english) {
            m_database.damaged(localized(english, member.path(), id));
        };
        if (!kindOf(text(m_database, row, 4, localizable("the kind of a member")), member.m_kind) ||
            member.m_kind == EMemberKind::Value)
            refuse(localizable("the member %1% of the type %2% is of no kind"));
        bool const isVector = member.m_kind == EMemberKind::Vector;
        if (isVector && (!kindOf(text(m_database, row, 5, localizable("the kind of elements")),
                                 member.m_element) ||
                         member.m_element == EMemberKind::Vector))
            refuse(localizable("the member %1% of the type %2% has elements of no kind"));
        if (row.type(7) != SQLITE_NULL) {
            long long const list = integer(m_database, row, 7, localizable("the list of a member"));
            if (isVector || list < 0 || list >= static_cast<long long>(members.size()) ||
                members[static_cast<std::size_t>(list)].m_element != EMemberKind::Value ||
                members[static_cast<std::size_t>(list)].m_kind != EMemberKind::Vector)
                refuse(localizable("the member %1% of the type %2% belongs to no list"));
            member.m_list = static_cast<int>(list);
        }
        if (member.isColumn()) {
            member.m_column = text(m_database, row, 6, localizable("the column of a member"));
            if (!isName(member.m_column))
                refuse(localizable("the member %1% of the type %2% has an unfit column"));
        }
        members.push_back(std::move(member));
    }
}

void FileSchema::checkTables() {
    // Each table by the text that makes it, which leaves no room for anything a document doesn't
    // have.
    std::map<std::string, std::string, std::less<>> expected;
    for (FixedTable const & table : c_fixedTables) expected.emplace(table.name, table.sql);
    std::size_t const fixed = expected.size();
    for (FileType const & type : m_types)
        if (!type.table.empty() &&
            !expected.emplace(type.table, tableSql(type.table, columnsOf(type.members))).second)
            m_database.damaged(localized("the table of the type %1% is unfit", type.id));
    bool const onlyFixed = expected.size() == fixed;
    std::size_t found = 0;
    Statement row(m_database, "SELECT type, name, tbl_name, sql FROM sqlite_schema");
    while (row.step()) {
        std::string const name(row.bytes(1));
        std::string_view const kind = row.bytes(0);
        if (kind == "index" && name == "sqlite_autoindex_lists_1" && row.bytes(2) == "lists")
            continue;
        auto const i = expected.find(name);
        if (kind == "table" && i != expected.end()) {
            if (row.bytes(3) != i->second)
                m_database.damaged(localized("the table %1% isn't as it should be", name));
            ++found;
        } else if (kind != "table" || !onlyFixed)
            m_database.damaged(localized("a document has no %1% %2%", kind, name));
    }
    if (found < expected.size()) m_database.damaged(localized("a table is missing"));
}

} // namespace Vn::DataModel
