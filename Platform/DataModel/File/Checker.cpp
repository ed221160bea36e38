#include "Platform/DataModel/File/Checker.h"

#include <set>
#include <system_error>
#include <utility>

#include "Platform/Base/LocalizedText.h"
#include "Platform/DataModel/File/Circles.h"
#include "Platform/DataModel/File/Lists.h"
#include "Platform/DataModel/Limits.h"

namespace Vn::DataModel {

namespace {

// Thrown when there are enough findings.
struct Enough {};

} // namespace

DocumentChecker::DocumentChecker(std::filesystem::path file, std::string operation,
                                 std::string fileSystem, std::vector<std::string> & findings,
                                 std::vector<std::string> & unknownTypes)
    : m_database(std::move(operation), std::move(file), std::move(fileSystem)),
      m_schema(m_database), m_findings(findings), m_unknownTypes(unknownTypes) {}

void DocumentChecker::found(std::string finding) {
    if (m_findings.size() == Limits::c_findings) {
        m_findings.push_back(localized("and more"));
        throw Enough();
    }
    m_findings.push_back(std::move(finding));
}

void DocumentChecker::found(unsigned long long entity, FileMember const & member,
                            std::string const & why) {
    found(localized("entity %1%, member %2%: %3%", entity, member.path(), why));
}

void DocumentChecker::check() {
    std::error_code error;
    auto const status = std::filesystem::status(m_database.file(), error);
    m_database.refuseUnseen(error);
    if (!std::filesystem::exists(status))
        m_database.fail(StatusNotFound, localized("there is no such file"));
    if (!std::filesystem::is_regular_file(status))
        m_database.fail(StatusInvalidArgument, localized("it isn't a file"));
    m_database.open(m_database.file());
    try {
        m_schema.checkHeader();
        checkDatabase();
        m_schema.read();
        m_head = m_schema.readHead();
        checkSegments();
        findUnknownTypes();
        readIds();
        for (FileType const & type : m_schema.types())
            if (!type.table.empty()) checkEntities(type);
        checkLists();
        checkRoots();
        if (unsigned long long const id = idOnCircle(m_ownerships)) found(circleText(id));
    } catch (Enough const &) {
    } catch (FileFailure const & failure) {
        // Damage is what was looked for.
        if (failure.status.code() != StatusCorrupt) throw;
        m_findings.push_back(failure.status.cause());
    }
}

void DocumentChecker::checkDatabase() {
    Statement row(m_database, "PRAGMA integrity_check");
    while (row.step()) {
        std::string finding(row.bytes(0));
        if (finding != "ok") found(localizedIn("SQLite", "the database: %1%", finding));
    }
}

void DocumentChecker::checkSegments() {
    Statement row(m_database, "SELECT kind FROM segments");
    while (row.step()) {
        long long const kind = row.integer(0);
        if (!storedSegment(kind)) found(localized("there is no segment of kind %1% to load", kind));
        m_segments.insert(kind);
    }
}

void DocumentChecker::findUnknownTypes() {
    for (FileType const & type : m_schema.types()) {
        if (type.table.empty() || MetaTypeMgr::get()->metaType(type.id)) continue;
        Statement row(m_database, "SELECT 1 FROM " + sqlName(type.table) + " LIMIT 1");
        if (row.step()) m_unknownTypes.push_back(type.name + " (" + type.id + ")");
    }
}

void DocumentChecker::readIds() {
    for (FileType const & type : m_schema.types()) {
        if (type.table.empty()) continue;
        Statement row(m_database,
                      "SELECT id, segment FROM " + sqlName(type.table) + " ORDER BY id");
        while (row.step()) {
            long long const id = row.integer(0);
            auto const wrong = [&](char const * why) {
                found(localized("entity %1% of %2%: %3%", id, type.table, localized(why)));
            };
            if (id < 1 || static_cast<unsigned long long>(id) >= m_head.nextEntity) {
                wrong(localizable("its id is out of range"));
                continue;
            }
            auto const key = static_cast<unsigned long long>(id);
            if (!m_typeOf.emplace(key, &type).second)
                wrong(localizable("its id is that of another entity"));
            m_segmentOf[key] = row.integer(1);
            if (row.type(1) != SQLITE_INTEGER || !m_segments.contains(row.integer(1)))
                wrong(localizable("its segment isn't in the file"));
        }
    }
}

void DocumentChecker::checkReference(EMemberKind kind, unsigned long long from,
                                     unsigned long long id, FileMember const & member) {
    if (!id) return;
    if (kind == EMemberKind::StrongRef) m_ownerships.emplace_back(from, id);
    if (m_typeOf.contains(id)) return;
    if (kind == EMemberKind::PassiveRef && id < m_head.nextEntity) return;
    found(from, member, localized("there is no entity %1%", id));
}

void DocumentChecker::checkEntities(FileType const & type) {
    std::string sql = "SELECT id";
    for (std::string const & column : columnsOf(type.members)) sql += ", " + sqlName(column);
    Statement row(m_database, sql + " FROM " + sqlName(type.table));
    unsigned long long reference = 0;
    while (row.step()) {
        int place = 1;
        for (FileMember const & member : type.members) {
            if (!member.isColumn()) continue;
            char const * const wrong =
                m_values.column(row, place, member.m_kind, nullptr, reference);
            auto const id = static_cast<unsigned long long>(row.integer(0));
            if (wrong)
                found(id, member, localized(wrong));
            else
                checkReference(member.m_kind, id, reference, member);
            place += memberKind(member.m_kind).columns;
        }
    }
}

void DocumentChecker::checkLists() {
    Statement row(m_database,
                  "SELECT entity, member, chunk, items FROM lists ORDER BY entity, member, chunk");
    while (row.step()) {
        long long const id = row.integer(0);
        auto const wrong = [&](char const * why) {
            found(localized("a list of entity %1%: %2%", id, localized(why)));
        };
        if (row.type(0) != SQLITE_INTEGER || row.type(1) != SQLITE_INTEGER ||
            row.type(2) != SQLITE_INTEGER || row.integer(2) <= -Limits::c_chunkNumber ||
            row.integer(2) >= Limits::c_chunkNumber) {
            wrong(localizable("its key isn't one"));
            continue;
        }
        auto const i = m_typeOf.find(static_cast<unsigned long long>(id));
        if (i == m_typeOf.end()) {
            wrong(localizable("there is no such entity"));
            continue;
        }
        auto const & members = i->second->members;
        long long const member = row.integer(1);
        if (member < 0 || member >= static_cast<long long>(members.size()) ||
            members[static_cast<std::size_t>(member)].m_kind != EMemberKind::Vector)
            wrong(localizable("there is no such member"));
        else if (row.type(3) != SQLITE_TEXT)
            wrong(localizable("its items aren't a text"));
        else
            checkChunk(*i->second, i->first, static_cast<std::size_t>(member), row.bytes(3));
    }
}

void DocumentChecker::checkChunk(FileType const & type, unsigned long long entity,
                                 std::size_t member, std::string_view items) {
    FileMember const & list = type.members[member];
    JsonReader json(items);
    unsigned long long reference = 0;
    auto const isGoodValue = [&](EMemberKind kind) {
        if (char const * const wrong = m_values.element(json, kind, nullptr, reference)) {
            found(entity, list, localized(wrong));
            return false;
        }
        checkReference(kind, entity, reference, list);
        return true;
    };
    bool isGood = json.skip('[');
    do {
        if (list.m_element != EMemberKind::Value) {
            if (!isGoodValue(list.m_element)) return;
            continue;
        }
        isGood = isGood && json.skip('{');
        bool isFirst = true;
        for (std::size_t i = member + 1; i < type.members.size(); ++i) {
            FileMember const & part = type.members[i];
            if (part.m_list != static_cast<int>(member)) continue;
            std::string head(isFirst ? "" : ",");
            appendJsonText(head, part.m_name, true);
            isFirst = false;
            isGood = isGood && json.skip(head) && json.skip(':');
            if (!isGood) break;
            if (!isGoodValue(part.m_kind)) return;
        }
        isGood = isGood && json.skip('}');
    } while (isGood && json.skip(','));
    if (!isGood || !json.skip(']') || !json.atEnd())
        found(entity, list, localized("its items aren't a list of that kind"));
}

void DocumentChecker::checkRoots() {
    Statement row(m_database,
                  "SELECT segment, key, entity, place FROM roots ORDER BY segment, place");
    std::set<std::pair<long long, std::string>> keys;
    while (row.step()) {
        int const keyType = row.type(1);
        std::string key(row.bytes(1));
        bool const isKey = keyType == SQLITE_BLOB || (keyType == SQLITE_TEXT && isText(key));
        auto const wrong = [&](char const * why) {
            found(localized("the root %1%: %2%", keyType == SQLITE_TEXT && isKey ? key : "",
                            localized(why)));
        };
        if (!isKey) wrong(localizable("its key isn't a text"));
        if (row.type(0) != SQLITE_INTEGER || row.type(3) != SQLITE_INTEGER)
            wrong(localizable("it has no place"));
        auto const i = m_segmentOf.find(static_cast<unsigned long long>(row.integer(2)));
        if (row.type(2) != SQLITE_INTEGER || i == m_segmentOf.end())
            wrong(localizable("there is no such entity"));
        else if (i->second != row.integer(0))
            wrong(localizable("its entity is in another segment"));
        if (!keys.emplace(row.integer(0), key).second) wrong(localizable("there are two of them"));
    }
}

} // namespace Vn::DataModel
