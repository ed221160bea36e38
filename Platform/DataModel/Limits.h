// Every ceiling of the data model: what a document and its file may have, and what happens beyond.

#ifndef VN_PLATFORM_DATAMODEL_LIMITS_H
#define VN_PLATFORM_DATAMODEL_LIMITS_H

#include <cstddef>
#include <limits>

namespace Vn::Limits {

// --- Documents -----------------------------------------------------------------------------------

// Ids of entities lie below.  A document that has no id left makes no more entities: their
// constructor throws std::length_error.  A file with such an id is damaged.
inline constexpr unsigned long long c_entityId = 1ULL << 62;

// Bytes of the steps of an undo history, with the entities that are kept for them, unless
// ChangeHistory::byteLimit says otherwise.  Beyond, the oldest steps are given up.
inline constexpr std::size_t c_historyBytes = std::size_t{1} << 30;

// --- What a file holds ---------------------------------------------------------------------------

// Bytes, in UTF-8, of the name of a class or a member, and of the id of a meta type.  A longer one
// can't be saved, and a file that has one is damaged.
inline constexpr std::size_t c_nameBytes = 1000;

// Types in one file, which keeps those that it has ever had.  With one more, the document can be
// saved under another name only.  A file with a greater number is damaged.
inline constexpr long long c_fileTypes = 1'000'000;

// Saves of a document under its name.  After so many it can be saved under another name only, and
// is another document then.
inline constexpr long long c_generations = std::numeric_limits<long long>::max();

// The numbers of the chunks of a list lie below, and above the negative of it.  The chunks are
// numbered anew where a save would leave the range.  A file with another number is damaged.
inline constexpr long long c_chunkNumber = 1LL << 62;

// --- Work on a file ------------------------------------------------------------------------------

// Milliseconds that an operation waits for a file which another program is using.  It fails then.
inline constexpr int c_busyMilliseconds = 1000;

// How often a save tries to make its file while other programs take it.  It fails then.
inline constexpr int c_savingAttempts = 100;

// Files in one directory that are kept under a new name, out of the way of a save or an open, for
// each file that they stood beside.  With one more, the operation fails.
inline constexpr int c_keptFiles = 9'999;

// Findings of one check.  The last says that there are more.
inline constexpr std::size_t c_findings = 1000;

// --- The database --------------------------------------------------------------------------------

// Bytes of one statement, the definition of a table in a file included.  A save that needs more
// fails, and a file that has more can't be read.
inline constexpr int c_statementBytes = 1'000'000;
// Parameters of one statement: an entity is saved with two and one for each member that isn't a
// list.  Beyond, the save fails.
inline constexpr int c_statementParameters = 2'000;
// Levels of an expression, steps of a compiled statement, arguments of a function and bytes of a
// pattern.  Ours need far fewer.  What goes beyond stands in a hostile file, which is damaged.
inline constexpr int c_statementLevels = 16;
inline constexpr int c_statementSteps = 250'000;
inline constexpr int c_functionArguments = 8;
inline constexpr int c_patternBytes = 8;

} // namespace Vn::Limits

#endif
