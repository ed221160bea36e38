#include <utility>

#include "Platform/Base/LocalizedText.h"
#include "Platform/Base/OS.h"
#include "Platform/DataModel/File/Database.h"
#include "Platform/DataModel/Limits.h"

namespace Vn::DataModel {

namespace {

EStatus codeOf(int result, std::error_code const & error) {
    switch (result & 0xFF) {
    case SQLITE_FULL:
        return StatusNoSpace;
    case SQLITE_NOTADB:
    case SQLITE_CORRUPT:
    case SQLITE_SCHEMA:
        return StatusCorrupt;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return StatusBusy;
    case SQLITE_NOMEM:
        return StatusOutOfMemory;
    case SQLITE_PERM:
    case SQLITE_READONLY:
    case SQLITE_AUTH:
        return StatusAccessDenied;
    case SQLITE_CANTOPEN:
        return error == std::errc::no_such_file_or_directory ? StatusNotFound : StatusAccessDenied;
    case SQLITE_IOERR:
        if (result == SQLITE_IOERR_NOMEM) return StatusOutOfMemory;
        return result == SQLITE_IOERR_CORRUPTFS ? StatusCorrupt : StatusIO;
    default:
        return StatusFailed;
    }
}

// The engine's own file system; on Windows the one for paths of any length.
#ifdef _WIN32
constexpr char const * c_fileSystem = "win32-longpath";
#else
constexpr char const * c_fileSystem = nullptr;
#endif

} // namespace

std::string pathText(std::filesystem::path const & path) {
    std::u8string const text = path.u8string();
    return std::string(text.begin(), text.end());
}

Database::Database(std::string operation, std::filesystem::path file, std::string fileSystem)
    : m_operation(std::move(operation)), m_file(std::move(file)),
      m_fileSystem(std::move(fileSystem)) {}

void Database::open(std::filesystem::path const & path) {
    // An absolute path, since a name that begins with "file:" means something else to the engine.
    std::error_code error;
    std::filesystem::path const absolute = std::filesystem::absolute(path, error);
    if (error) fail(StatusInvalidArgument, OS::errorText(error));
    close();
    if (int const result = sqlite3_initialize(); result != SQLITE_OK) fail(result);
    m_pFiles = std::make_unique<OwnFiles>(
        sqlite3_vfs_find(m_fileSystem.empty() ? c_fileSystem : m_fileSystem.c_str()));
    constexpr int c_flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE;
    int const result = m_pFiles->open(pathText(absolute), &m_pDatabase, c_flags);
    // Engines before 3.37 don't know the flag.
    if (result != SQLITE_OK) fail(m_pDatabase ? sqlite3_extended_errcode(m_pDatabase) : result);
    sqlite3_extended_result_codes(m_pDatabase, 1);
    sqlite3_busy_timeout(m_pDatabase, Limits::c_busyMilliseconds);
    for (int const option :
         {SQLITE_DBCONFIG_ENABLE_TRIGGER, SQLITE_DBCONFIG_ENABLE_VIEW,
          SQLITE_DBCONFIG_TRUSTED_SCHEMA, SQLITE_DBCONFIG_DQS_DDL, SQLITE_DBCONFIG_DQS_DML})
        sqlite3_db_config(m_pDatabase, option, 0, nullptr);
    sqlite3_db_config(m_pDatabase, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    constexpr std::pair<int, int> c_limits[] = {
        {SQLITE_LIMIT_SQL_LENGTH, Limits::c_statementBytes},
        {SQLITE_LIMIT_EXPR_DEPTH, Limits::c_statementLevels},
        {SQLITE_LIMIT_COMPOUND_SELECT, 1},
        {SQLITE_LIMIT_VDBE_OP, Limits::c_statementSteps},
        {SQLITE_LIMIT_FUNCTION_ARG, Limits::c_functionArguments},
        {SQLITE_LIMIT_ATTACHED, 0},
        {SQLITE_LIMIT_LIKE_PATTERN_LENGTH, Limits::c_patternBytes},
        {SQLITE_LIMIT_VARIABLE_NUMBER, Limits::c_statementParameters},
        {SQLITE_LIMIT_TRIGGER_DEPTH, 0},
        {SQLITE_LIMIT_WORKER_THREADS, 0}};
    for (auto const & [limit, most] : c_limits) sqlite3_limit(m_pDatabase, limit, most);
}

void Database::close() noexcept { sqlite3_close_v2(std::exchange(m_pDatabase, nullptr)); }

sqlite3_file & Database::fileHandle() const {
    sqlite3_file * file = nullptr;
    sqlite3_file_control(m_pDatabase, "main", SQLITE_FCNTL_FILE_POINTER, &file);
    if (!file || !file->pMethods) fail(SQLITE_CANTOPEN);
    return *file;
}

bool Database::take() {
    sqlite3_file & file = fileHandle();
    for (int const level : {SQLITE_LOCK_SHARED, SQLITE_LOCK_RESERVED, SQLITE_LOCK_EXCLUSIVE}) {
        int const result = file.pMethods->xLock(&file, level);
        if (result == SQLITE_OK) continue;
        file.pMethods->xUnlock(&file, SQLITE_LOCK_NONE);
        if ((result & 0xFF) == SQLITE_BUSY) return false;
        fail(result);
    }
    return true;
}

bool Database::hasMoved() const { return OwnFiles::isMoved(&fileHandle()); }

void Database::beginEmpty() {
    m_pFiles->ignoreJournal();
    // Nothing of what is in the file from now on is another program's.  The engine does without a
    // journal only if it needn't defend itself.
    sqlite3_db_config(m_pDatabase, SQLITE_DBCONFIG_DEFENSIVE, 0, nullptr);
    run("PRAGMA locking_mode=EXCLUSIVE; PRAGMA journal_mode=OFF; PRAGMA synchronous=FULL");
}

bool Database::readHeader(Header & header) const {
    sqlite3_file & file = fileHandle();
    int const result =
        file.pMethods->xRead(&file, header.data(), static_cast<int>(header.size()), 0);
    if (result == SQLITE_IOERR_SHORT_READ) return false;
    if (result != SQLITE_OK) fail(result);
    return true;
}

void Database::refuseUnseen(std::error_code const & error) const {
    if (error == std::errc::filename_too_long)
        fail(StatusInvalidArgument, localized("the name is longer than names may be"));
    if (error == std::errc::permission_denied)
        fail(StatusAccessDenied, localized("its directory can't be looked into"));
}

void Database::run(std::string const & sql) const {
    int const result = sqlite3_exec(m_pDatabase, sql.c_str(), nullptr, nullptr, nullptr);
    if (result != SQLITE_OK) fail(result);
}

long long Database::number(std::string const & sql) const {
    Statement statement(*this, sql);
    return statement.step() ? statement.integer(0) : 0;
}

void Database::restore() const noexcept {
    if (!m_pDatabase) return;
    if (!sqlite3_get_autocommit(m_pDatabase))
        sqlite3_exec(m_pDatabase, "ROLLBACK", nullptr, nullptr, nullptr);
    // After a failed write the engine leaves the journal to whoever reads next.
    sqlite3_exec(m_pDatabase, "PRAGMA schema_version", nullptr, nullptr, nullptr);
}

std::error_code Database::systemError() const noexcept {
    return {m_pDatabase ? sqlite3_system_errno(m_pDatabase) : 0, std::system_category()};
}

void Database::fail(int result) const {
    std::error_code const error = systemError();
    if (m_pFiles && !m_pFiles->strangeFile().empty())
        damaged(
            localized("the journal beside it isn't one of a document: it names the file %1%; put "
                      "the journal elsewhere to open the document as it is",
                      m_pFiles->strangeFile()));
    if ((m_pFiles && m_pFiles->hasMoved()) || result == SQLITE_READONLY_DBMOVED)
        fail(StatusBusy,
             localized("another program has moved the file, or put another in its place"));
    if (result == SQLITE_READONLY_ROLLBACK)
        fail(StatusAccessDenied,
             localized("a save of it was cut short, and to be repaired it must be writable"));
    if (result == SQLITE_READONLY_DIRECTORY)
        fail(StatusAccessDenied, localized("no file can be made in its directory"));
    EStatus code = codeOf(result, error);
    if (code == StatusBusy) fail(code, localized("another program is using the file"));
    bool const isLast = m_pDatabase && sqlite3_extended_errcode(m_pDatabase) == result;
    std::string cause = localizedIn(
        "SQLite", "%1%", isLast ? sqlite3_errmsg(m_pDatabase) : sqlite3_errstr(result & 0xFF));
    if (code == StatusIO) {
        if (error == std::errc::no_space_on_device || error == std::errc::file_too_large)
            code = StatusNoSpace;
    }
    bool const fromSystem =
        code == StatusIO || code == StatusNoSpace || (result & 0xFF) == SQLITE_CANTOPEN;
    if (error == std::errc::file_too_large)
        cause = localized("it would be larger than files may be");
    else if (fromSystem && error)
        cause = localized("%1%: %2%", cause, OS::errorText(error));
    fail(code, cause);
}

void Database::fail(EStatus code, std::string_view cause) const {
    throw FileFailure{Status(code, m_operation, pathText(m_file), cause)};
}

Statement::Statement(Database const & database, std::string const & sql) : m_pDatabase(&database) {
    sqlite3_stmt * statement = nullptr;
    int const result = sqlite3_prepare_v3(database.get(), sql.data(), static_cast<int>(sql.size()),
                                          SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
    m_pStatement.reset(statement);
    if (result != SQLITE_OK) database.fail(result);
}

} // namespace Vn::DataModel
