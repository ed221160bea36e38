// SQLite alone, the floor of what a document in a database costs on disk: the rows are written from
// a vector of structs and read into one.

#include <cstdio>
#include <cstdlib>
#include <sqlite3.h>

#include "Benchmarks/Document/DocumentBenchmarks.h"

namespace Vn::Benchmarks {

namespace {

[[noreturn]] void fail(sqlite3 * database) {
    std::fprintf(stderr, "SQLite: %s\n", sqlite3_errmsg(database));
    std::exit(1);
}

class Database {
public:
    explicit Database(std::filesystem::path const & file) {
        if (sqlite3_open(file.c_str(), &m_database) != SQLITE_OK) fail(m_database);
    }
    ~Database() { sqlite3_close(m_database); }
    Database(Database const &) = delete;
    Database & operator=(Database const &) = delete;

    sqlite3 * get() const { return m_database; }

    void run(char const * sql) const {
        if (sqlite3_exec(m_database, sql, nullptr, nullptr, nullptr) != SQLITE_OK) fail(m_database);
    }

private:
    sqlite3 * m_database = nullptr;
};

class Statement {
public:
    Statement(Database const & database, char const * sql) : m_database(database.get()) {
        if (sqlite3_prepare_v2(m_database, sql, -1, &m_statement, nullptr) != SQLITE_OK)
            fail(m_database);
    }
    ~Statement() { sqlite3_finalize(m_statement); }
    Statement(Statement const &) = delete;
    Statement & operator=(Statement const &) = delete;

    sqlite3_stmt * get() const { return m_statement; }

    // Whether there is a row.
    bool step() const {
        int const result = sqlite3_step(m_statement);
        if (result != SQLITE_ROW && result != SQLITE_DONE) fail(m_database);
        return result == SQLITE_ROW;
    }

    // For a statement without rows.
    void runOnce() const {
        step();
        sqlite3_reset(m_statement);
    }

private:
    sqlite3 * m_database;
    sqlite3_stmt * m_statement = nullptr;
};

class SqliteDocument {
public:
    static constexpr char const * c_name = "sqlite";
    static constexpr char const * c_extension = ".sqlite";
    static constexpr bool c_firstSaveWaits = false;
    static constexpr bool c_laterSaveWaits = true;

    void create(std::span<Record const> source) { m_records.assign(source.begin(), source.end()); }

    double walk() const { return expectedWeight(m_records); }

    void changeOne(std::size_t i, double x) {
        m_records[i].x = x;
        m_changed.push_back(i);
    }

    // There is nothing yet that a journal would guard, and the file is synced once at the end.
    void saveAs(std::filesystem::path const & file) {
        m_file = file;
        Database const database(file);
        database.run("PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF; BEGIN;"
                     "CREATE TABLE entity(id INTEGER PRIMARY KEY, parent INTEGER, text TEXT,"
                     " x REAL, y REAL, number INTEGER, flag INTEGER)");
        {
            Statement const insert(database, "INSERT INTO entity VALUES(?, 1, ?, ?, ?, ?, ?)");
            sqlite3_stmt * const row = insert.get();
            for (std::size_t i = 0; i < m_records.size(); ++i) {
                Record const & record = m_records[i];
                std::string const text = narrow(record.text);
                sqlite3_bind_int64(row, 1, rowOf(i));
                sqlite3_bind_text(row, 2, text.data(), static_cast<int>(text.size()),
                                  SQLITE_STATIC);
                sqlite3_bind_double(row, 3, record.x);
                sqlite3_bind_double(row, 4, record.y);
                sqlite3_bind_int64(row, 5, record.number);
                sqlite3_bind_int(row, 6, record.flag);
                insert.runOnce();
            }
        }
        database.run("COMMIT");
    }

    // One durable commit of the rows that have changed.
    void save() {
        if (!m_database) {
            m_database = std::make_unique<Database>(m_file);
            m_database->run("PRAGMA journal_mode=DELETE; PRAGMA synchronous=FULL");
            m_update = std::make_unique<Statement>(*m_database, "UPDATE entity SET x=? WHERE id=?");
        }
        m_database->run("BEGIN");
        for (std::size_t const i : m_changed) {
            sqlite3_bind_double(m_update->get(), 1, m_records[i].x);
            sqlite3_bind_int64(m_update->get(), 2, rowOf(i));
            m_update->runOnce();
        }
        m_database->run("COMMIT");
        m_changed.clear();
    }

    void load(std::filesystem::path const & file) {
        m_file = file;
        Database const database(file);
        Statement const select(database, "SELECT text, x, y, number, flag FROM entity ORDER BY id");
        sqlite3_stmt * const row = select.get();
        while (select.step()) {
            auto const * const text = reinterpret_cast<char const *>(sqlite3_column_text(row, 0));
            auto const length = static_cast<std::size_t>(sqlite3_column_bytes(row, 0));
            m_records.push_back({widen({text, length}), sqlite3_column_double(row, 1),
                                 sqlite3_column_double(row, 2),
                                 static_cast<unsigned>(sqlite3_column_int64(row, 3)),
                                 sqlite3_column_int(row, 4) != 0});
        }
    }

private:
    // The group is row 1.
    static sqlite3_int64 rowOf(std::size_t i) { return static_cast<sqlite3_int64>(i) + 2; }

    std::vector<Record> m_records;
    std::vector<std::size_t> m_changed;
    std::filesystem::path m_file;
    std::unique_ptr<Database> m_database;
    std::unique_ptr<Statement> m_update;
};

[[maybe_unused]] bool const s_registered = [] {
    registerFiles<SqliteDocument>();
    return true;
}();

} // namespace

} // namespace Vn::Benchmarks
