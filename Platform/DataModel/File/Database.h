// The database engine, as far as documents need it.

#ifndef VN_PLATFORM_DATAMODEL_FILE_DATABASE_H
#define VN_PLATFORM_DATAMODEL_FILE_DATABASE_H

#include <array>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>

#include <sqlite3.h>

#include "Platform/Base/LocalizedText.h"
#include "Platform/Base/OS.h"
#include "Platform/Base/Status.h"
#include "Platform/DataModel/File/FileSystem.h"

namespace Vn::DataModel {

// What ends an operation on a file: thrown by the sources of the document file, and turned into the
// Status at their edge.
struct FileFailure {
    Status status;
};

// A path as texts show it.
std::string pathText(std::filesystem::path const & path);

// A connection to one file.  Whatever fails throws a FileFailure with the operation and the file.
class Database {
public:
    // The first bytes of a file, in which the engine keeps what it must know at once.
    using Header = std::array<unsigned char, 100>;

    // `operation` and `file` are for messages.  Nothing is opened yet.  `fileSystem` names the
    // virtual file system; empty stands for the engine's own.
    Database(std::string operation, std::filesystem::path file, std::string fileSystem);
    ~Database() { close(); }
    Database(Database const &) = delete;
    Database & operator=(Database const &) = delete;

    std::string const & operation() const noexcept { return m_operation; }
    std::filesystem::path const & file() const noexcept { return m_file; }
    sqlite3 * get() const noexcept { return m_pDatabase; }

    // Opens a file that is there, which may be another than that of the messages.  What it may
    // contain is distrusted from then on, and no other file but its own journal is touched.
    void open(std::filesystem::path const & path);
    // Leaves a transaction that is open.  All statements must be gone.
    void close() noexcept;
    bool isOpen() const noexcept { return m_pDatabase != nullptr; }

    // Takes the file for this connection alone, for as long as it is open, without a look into it.
    // False if another connection is using it.
    bool take();
    // Whether the name of the file has gone to another file, or to none, since it was opened.
    bool hasMoved() const;
    // Prepares a file that was taken and is empty for what is written into it.
    void beginEmpty();
    // The first bytes; false if the file has fewer.
    bool readHeader(Header & header) const;

    // Throws if a look at the file has met something else than that it is there or isn't: a name
    // that is too long, or a directory that mustn't be looked into.
    void refuseUnseen(std::error_code const & error) const;

    // Runs statements without results.
    void run(std::string const & sql) const;
    // Takes back what the open transaction wrote, so that the file is as it was and no journal is
    // left beside it.  Where that fails too, the journal stays, and whoever opens the file next
    // does it.
    void restore() const noexcept;
    // The first value of the first row as a number.
    long long number(std::string const & sql) const;

    // From now on the rows of statements end with StatusCancelled once the user wishes to end what
    // runs.  For what only reads.
    void endsWhenInterrupted() noexcept { m_bEnds = true; }
    void endIfInterrupted() const {
        if (m_bEnds && OS::wasInterrupted()) fail(StatusCancelled, localized("it was interrupted"));
    }

    // Throws what the engine says about a result that isn't good.
    [[noreturn]] void fail(int result) const;
    // Throws a failure of that kind.
    [[noreturn]] void fail(EStatus code, std::string_view cause) const;
    [[noreturn]] void damaged(std::string_view cause) const { fail(StatusCorrupt, cause); }

private:
    // The engine's handle of the file itself.
    sqlite3_file & fileHandle() const;
    // The system's own number for what failed last: an errno, or what Windows has instead.
    std::error_code systemError() const noexcept;

    std::string const m_operation;
    std::filesystem::path const m_file;
    std::string const m_fileSystem;
    std::unique_ptr<OwnFiles> m_pFiles;
    sqlite3 * m_pDatabase = nullptr;
    bool m_bEnds = false;
};

// A prepared statement.  Values that are bound must stay where they are until it is reset.
class Statement {
public:
    Statement() = default;
    Statement(Database const & database, std::string const & sql);

    bool isPrepared() const noexcept { return m_pStatement != nullptr; }

    // Whether there is a row.
    bool step() {
        m_pDatabase->endIfInterrupted();
        int const result = sqlite3_step(m_pStatement.get());
        if (result == SQLITE_ROW) return true;
        if (result != SQLITE_DONE) m_pDatabase->fail(result);
        return false;
    }
    void reset() { sqlite3_reset(m_pStatement.get()); }
    // Runs a statement without rows and makes it ready for the next time.
    void run() {
        step();
        reset();
    }

    // The place of a parameter is counted from 1.
    void bind(int place, long long value) {
        check(sqlite3_bind_int64(m_pStatement.get(), place, value));
    }
    void bind(int place, double value) {
        check(sqlite3_bind_double(m_pStatement.get(), place, value));
    }
    void bindText(int place, std::string_view value) {
        check(sqlite3_bind_text64(m_pStatement.get(), place, address(value), value.size(),
                                  SQLITE_STATIC, SQLITE_UTF8));
    }
    void bindBytes(int place, std::string_view value) {
        check(sqlite3_bind_blob64(m_pStatement.get(), place, address(value), value.size(),
                                  SQLITE_STATIC));
    }
    void bindNull(int place) { check(sqlite3_bind_null(m_pStatement.get(), place)); }

    // The place of a column is counted from 0.  The type is one of SQLITE_INTEGER and so on.
    int type(int place) { return sqlite3_column_type(m_pStatement.get(), place); }
    long long integer(int place) { return sqlite3_column_int64(m_pStatement.get(), place); }
    double real(int place) { return sqlite3_column_double(m_pStatement.get(), place); }
    // The bytes of a text or of a blob, until the next step.
    std::string_view bytes(int place) {
        auto const * const data =
            static_cast<char const *>(sqlite3_column_blob(m_pStatement.get(), place));
        auto const size = static_cast<std::size_t>(sqlite3_column_bytes(m_pStatement.get(), place));
        return data ? std::string_view(data, size) : std::string_view();
    }

private:
    struct Finalize {
        void operator()(sqlite3_stmt * statement) const noexcept { sqlite3_finalize(statement); }
    };

    // An empty value has an address too: null would be NULL.
    static char const * address(std::string_view value) noexcept {
        return value.data() ? value.data() : "";
    }
    void check(int result) const {
        if (result != SQLITE_OK) m_pDatabase->fail(result);
    }

    Database const * m_pDatabase = nullptr;
    std::unique_ptr<sqlite3_stmt, Finalize> m_pStatement;
};

} // namespace Vn::DataModel

#endif
