// What the data model does with a value of each kind of member: one row of functions a kind.
//
// Undo, files, and what people read and type all go by these rows.  A new kind is a new value of
// EMemberKind, and a class and a row in MemberKind.cpp.  Vectors and values consist of what has
// rows; their own rows have a name and no functions.
//
// A value in a log is a row of words of eight bytes:
//
//   numbers and bool         one word, whose first bytes are the value
//   String, WideString       the length in characters, then the characters, padded
//   GlobalizedString         one word, a GlobalizedString
//   StrongRef                the entity; the lowest bit set if the word owns a count of it, as that
//                            of an entity of another document does
//   PassiveRef               one word, a PassiveRef<Entity>
//   Vector                   the number of elements, then each
//   Value (in a vector)      its members, one after the other
//
// The words of a GlobalizedString, of a PassiveRef and of a counted StrongRef own what they refer
// to: they are moved from place to place, and given up by `release`.

#ifndef VN_PLATFORM_DATAMODEL_MEMBERKINDINTERNAL_H
#define VN_PLATFORM_DATAMODEL_MEMBERKINDINTERNAL_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "Platform/DataModel/Log/WordBuffer.h"
#include "Platform/DataModel/MemberMetaType.h"

namespace Vn {
class Asset;
class Entity;
} // namespace Vn

namespace Vn::DataModel {

class JsonReader;
class Statement;
class ValueReader;
class ValueWriter;

struct MemberKind {
    char const * name;        // in documents
    std::uint8_t numberBytes; // of a number or bool; 0 for all else
    bool ownsWords;           // its words own or name what they refer to
    int columns;              // in a table of a document

    // --- In logs
    // How many words a field takes.
    std::size_t (*words)(void const * field) noexcept;
    // Appends the value of a field.  References to entities of other documents than `asset` are
    // counted.  If memory runs out, nothing is appended.
    void (*keep)(void const * field, Asset const * asset, WordBuffer & words);
    // Whether the value in the words is that of the field; `words` goes to the end of the value.
    bool (*isKept)(void const * field, std::uint64_t const *& words) noexcept;
    // Gives the field the value in the words, which stay as they are.
    void (*restore)(void * field, std::uint64_t const *& words);
    // Steps over a value; gives up what it owns, and steps over it.
    void (*skip)(std::uint64_t const *& words) noexcept;
    void (*release)(std::uint64_t *& words) noexcept;

    // --- In files
    // Binds a field to its columns, of which the first is `place`.  `text` is where a text is
    // encoded, and stays until the statement is reset.
    void (*bind)(ValueWriter & writer, Statement & row, int place, void const * field,
                 std::string & text);
    // Appends a field as the element of a list.
    void (*append)(ValueWriter & writer, void const * field, std::string & json);
    // Read a column or an element of a list into a field, as ValueReader says.
    char const * (*readColumn)(ValueReader & reader, Statement & row, int place, void * field,
                               unsigned long long & reference);
    char const * (*readElement)(ValueReader & reader, JsonReader & json, void * field,
                                unsigned long long & reference);

    // --- As people read and type it
    // The value of a field.
    std::wstring (*print)(void const * field);
    // Appends the value that a text, or an element of a list, says, as `keep` does.  The answer is
    // what is wrong with it; null if nothing is.
    char const * (*parse)(std::wstring_view text, WordBuffer & words);
    char const * (*parseElement)(ValueReader & reader, JsonReader & json, WordBuffer & words);
};

// The row of a kind.
MemberKind const & memberKind(EMemberKind kind) noexcept;
// The kind with a name in documents; false if there is none.
bool kindOf(std::string_view name, EMemberKind & kind) noexcept;

inline bool isReference(EMemberKind kind) noexcept {
    return kind == EMemberKind::StrongRef || kind == EMemberKind::PassiveRef;
}

// A number of so many bytes in a word, with zeros after it, and back.
inline std::uint64_t wordOf(std::uint8_t bytes, void const * field) noexcept {
    std::uint64_t word = 0;
    switch (bytes) {
    case 1:
        std::memcpy(&word, field, 1);
        break;
    case 4:
        std::memcpy(&word, field, 4);
        break;
    default:
        std::memcpy(&word, field, 8);
    }
    return word;
}
inline void setNumber(std::uint8_t bytes, void * field, std::uint64_t word) noexcept {
    switch (bytes) {
    case 1:
        std::memcpy(field, &word, 1);
        break;
    case 4:
        std::memcpy(field, &word, 4);
        break;
    default:
        std::memcpy(field, &word, 8);
    }
}

// The entity that a word of a StrongRef leads to, and whether the word owns a count of it.
inline Entity * strongTarget(std::uint64_t word) noexcept {
    return reinterpret_cast<Entity *>(static_cast<std::uintptr_t>(word & ~std::uint64_t{1}));
}
inline bool isCounted(std::uint64_t word) noexcept { return word & 1; }

} // namespace Vn::DataModel

#endif
