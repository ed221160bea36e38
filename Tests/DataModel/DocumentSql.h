// The database engine for tests that look into files, or spoil them.

#ifndef VN_TESTS_DATAMODEL_DOCUMENTSQL_H
#define VN_TESTS_DATAMODEL_DOCUMENTSQL_H

#include <cstddef>
#include <filesystem>
#include <istream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include "Tests/Support/TemporaryDirectory.h"

namespace Vn::Testing {

// A connection to a file, made if there is none.
class Sql {
public:
    explicit Sql(std::filesystem::path const & file) {
        EXPECT_EQ(sqlite3_open(utf8(file).c_str(), &m_pDatabase), SQLITE_OK);
    }
    ~Sql() { sqlite3_close(m_pDatabase); }
    Sql(Sql const &) = delete;
    Sql & operator=(Sql const &) = delete;

    void run(std::string const & sql) const {
        EXPECT_EQ(sqlite3_exec(m_pDatabase, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
            << sqlite3_errmsg(m_pDatabase) << " in " << sql;
    }

    // The rows, each value as the text that the shell shows, and NULL as "NULL".
    std::vector<std::vector<std::string>> query(std::string const & sql) const {
        std::vector<std::vector<std::string>> rows;
        sqlite3_stmt * statement = nullptr;
        EXPECT_EQ(sqlite3_prepare_v2(m_pDatabase, sql.c_str(), -1, &statement, nullptr), SQLITE_OK)
            << sqlite3_errmsg(m_pDatabase) << " in " << sql;
        while (sqlite3_step(statement) == SQLITE_ROW) {
            std::vector<std::string> row;
            for (int i = 0; i < sqlite3_column_count(statement); ++i) {
                auto const * const text =
                    reinterpret_cast<char const *>(sqlite3_column_text(statement, i));
                row.push_back(text ? std::string(text, static_cast<std::size_t>(
                                                           sqlite3_column_bytes(statement, i)))
                                   : "NULL");
            }
            rows.push_back(std::move(row));
        }
        sqlite3_finalize(statement);
        return rows;
    }

private:
    sqlite3 * m_pDatabase = nullptr;
};

inline std::vector<std::vector<std::string>> query(std::filesystem::path const & file,
                                                   std::string const & sql) {
    return Sql(file).query(sql);
}

// Rows as the shell shows them, NULL as nothing.
inline std::string shellText(std::vector<std::vector<std::string>> const & rows) {
    std::string text;
    for (auto const & row : rows) {
        for (std::size_t column = 0; column < row.size(); ++column)
            text += (column ? "|" : "") + (row[column] == "NULL" ? std::string() : row[column]);
        text += '\n';
    }
    return text;
}

// What stands in a page between a line that begins a block so and the end of the block.
inline std::string blockOf(std::istream & page, std::string const & begin) {
    std::string line;
    while (std::getline(page, line) && line != begin) {}
    std::string text;
    while (std::getline(page, line) && line != "```") text += line + '\n';
    return text;
}

} // namespace Vn::Testing

#endif
