// The tables of a document file, as Docs/document-format.md tells them.

#ifndef VN_PLATFORM_DATAMODEL_FILE_SCHEMA_H
#define VN_PLATFORM_DATAMODEL_FILE_SCHEMA_H

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "Platform/DataModel/EntityTableInternal.h"
#include "Platform/DataModel/File/Database.h"
#include "Platform/DataModel/MemberLayoutInternal.h"
#include "Platform/DataModel/MetaType.h"
#include "Platform/DataModel/Segment.h"

namespace Vn::DataModel {

// "VnD1" in the header of the database.
inline constexpr long long c_applicationId = 0x566E4431;

// One member of a class of entities as it stands in a file.
struct FileMember {
    std::string m_class; // without namespaces
    std::string m_name;  // "member", or "member.part" for a part of a value
    EMemberKind m_kind = EMemberKind::Bool;
    EMemberKind m_element = EMemberKind::Bool; // of a vector
    std::string m_column; // of the class's table; empty for a vector and what lies within one
    int m_list = -1;      // the place of the vector of values of whose elements it is a part

    bool operator==(FileMember const &) const = default;
    std::string path() const { return m_class + '.' + m_name; }
    bool isColumn() const noexcept { return m_kind != EMemberKind::Vector && m_list < 0; }
    bool isListOfReferences() const noexcept;
};

// One meta type as it stands in a file.
struct FileType {
    long long number = 0;
    std::string id;
    std::string name;
    bool isEntity = true; // else a class of values
    unsigned version = 0;
    std::string base;
    std::string table; // of a class with entities; empty otherwise
    std::vector<FileMember> members;
};

// What a class of this process would be in a file, with the leaf of each member.
struct DescribedType {
    std::vector<FileMember> members;
    std::vector<Leaf const *> leaves;
};

// The one row of `document`.
struct FileHead {
    std::string id;
    std::string stamp;
    long long generation = 0;
    unsigned long long nextEntity = 1;
};

// The kind of segment with that number; null if a file has no such segments.
SegmentType * storedSegment(long long kind) noexcept;

// The second and third column of a GlobalizedString.
std::string moduleColumn(std::string const & column);
std::string keyColumn(std::string const & column);

// A name as SQL writes it.
std::string sqlName(std::string_view name);

// 32 hexadecimal digits that no other call gives.
std::string randomName();

// Describes a class of which an object has been constructed.  A class that can't be stored throws.
DescribedType describe(Database const & database, EntityMetaType & type);
// All columns of the class's table, in order; after the two that every such table begins with.
std::vector<std::string> columnsOf(std::vector<FileMember> const & members);

// The types of a file, and the statements that make its tables.
class FileSchema {
public:
    explicit FileSchema(Database & database) : m_database(database) {}

    // Says that the file is a document of this version of the format, as far as its first bytes
    // tell.
    void checkHeader() const;
    // Makes the tables that every document has.
    void create();
    // Reads the types, and makes sure that the file has the tables that belong to them and nothing
    // else.
    void read();
    FileHead readHead();
    // Raises the generation, gives a new stamp, and writes the row.
    void writeHead(FileHead & head);

    std::deque<FileType> & types() noexcept { return m_types; }
    FileType * find(std::string_view id);
    FileType * findTable(long long number);
    // Enters a class with its bases and values, and makes its table.
    FileType & add(EntityMetaType & type);

private:
    void readTypes();
    void readMembers();
    void checkTables();
    FileType & addType(MetaType const & type, bool isEntity);
    void insertMembers(FileType const & type);
    std::string freeTable(std::string_view wanted) const;

    Database & m_database;
    std::deque<FileType> m_types; // by number; a deque, so that they keep their addresses
};

} // namespace Vn::DataModel

#endif
