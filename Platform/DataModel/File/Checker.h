#ifndef VN_PLATFORM_DATAMODEL_FILE_CHECKER_H
#define VN_PLATFORM_DATAMODEL_FILE_CHECKER_H

#include <filesystem>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "Platform/DataModel/File/Database.h"
#include "Platform/DataModel/File/Schema.h"
#include "Platform/DataModel/File/Values.h"

namespace Vn::DataModel {

// Looks at everything in a file, without making a document of it.
class DocumentChecker {
public:
    DocumentChecker(std::filesystem::path file, std::string operation, std::string fileSystem,
                    std::vector<std::string> & findings, std::vector<std::string> & unknownTypes);

    // As of the database.
    void endsWhenInterrupted() noexcept { m_database.endsWhenInterrupted(); }

    // A file that can't be opened throws; whatever is wrong inside becomes a finding.
    void check();

private:
    void checkDatabase();
    void checkSegments();
    void findUnknownTypes();
    void readIds();
    void checkEntities(FileType const & type);
    void checkLists();
    void checkChunk(FileType const & type, unsigned long long entity, std::size_t member,
                    std::string_view items);
    void checkRoots();
    void checkReference(EMemberKind kind, unsigned long long from, unsigned long long id,
                        FileMember const & member);
    void found(std::string finding);
    void found(unsigned long long entity, FileMember const & member, std::string const & why);

    Database m_database;
    FileSchema m_schema;
    FileHead m_head;
    std::vector<std::string> & m_findings;
    std::vector<std::string> & m_unknownTypes;
    std::unordered_map<unsigned long long, FileType const *> m_typeOf;
    std::unordered_map<unsigned long long, long long> m_segmentOf;
    std::unordered_set<long long> m_segments;
    std::vector<std::pair<unsigned long long, unsigned long long>> m_ownerships;
    ValueReader m_values;
};

} // namespace Vn::DataModel

#endif
