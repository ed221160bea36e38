// How lists are cut into rows, and which of the rows are written when a list has changed.
//
// A list stands in chunks, each a JSON array.  A chunk ends after an element whose text has a hash
// with certain bits zero, so that where chunks end depends on nothing but the elements around:
// whatever is inserted or taken out, the chunks away from there are the same texts as before, and
// their rows stay.  The rows are in the order of their chunk numbers, which leave room between them
// for others.

#ifndef VN_PLATFORM_DATAMODEL_FILE_LISTS_H
#define VN_PLATFORM_DATAMODEL_FILE_LISTS_H

#include <cstddef>
#include <string>
#include <vector>

#include "Platform/DataModel/File/Database.h"

namespace Vn::DataModel {

// Cuts a list into chunks.
class ChunkCutter {
public:
    // The next element: its text is appended to what this returns.
    std::string & beginElement();
    void endElement();
    // Ends the list.  The chunks hold until the next list begins.
    std::vector<std::string> const & chunks();
    // Begins another list.
    void clear() noexcept;

private:
    void cut();

    std::vector<std::string> m_chunks;
    std::string m_chunk;
    std::size_t m_elementBegin = 0;
    std::size_t m_elements = 0; // of the chunk
};

// One row of a list.
struct StoredChunk {
    long long number;
    std::string items;
};

// What makes the rows of a list another list.
struct ChunkChanges {
    struct Row {
        long long number;
        std::size_t chunk; // of the new list
    };
    std::vector<long long> erased;
    std::vector<Row> updated;
    std::vector<Row> inserted;
};

// The fewest rows that have to be written, as far as the order of the chunks wasn't changed.
// `stored` is in the order of numbers.
ChunkChanges compareChunks(std::vector<StoredChunk> const & stored,
                           std::vector<std::string> const & chunks);

// Writes lists into a database.
class ListWriter {
public:
    explicit ListWriter(Database const & database);

    // Writes a list of an entity that has none of the kind in the file yet.
    void insert(unsigned long long entity, int member, std::vector<std::string> const & chunks);
    // Makes what the file has for a list the present one.
    void replace(unsigned long long entity, int member, std::vector<std::string> const & chunks);
    // Takes all lists of an entity out.
    void erase(unsigned long long entity);

private:
    Database const & m_database;
    Statement m_insert;
    Statement m_select;
    Statement m_update;
    Statement m_erase;
    Statement m_eraseAll;
};

} // namespace Vn::DataModel

#endif
