// The members of a class in a flat list, and how their values are kept in logs.

#ifndef VN_PLATFORM_DATAMODEL_MEMBERLAYOUTINTERNAL_H
#define VN_PLATFORM_DATAMODEL_MEMBERLAYOUTINTERNAL_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/DataModel/Log/WordBuffer.h"
#include "Platform/DataModel/MemberKindInternal.h"
#include "Platform/DataModel/MemberSet.h"

namespace Vn {
class Asset;
class Entity;
class EntityMetaType;
class ValueMetaType;
} // namespace Vn

namespace Vn::DataModel {

// A member that isn't a value, or a part of a value that isn't.
struct Leaf {
    std::ptrdiff_t offset = 0; // from the entity, or from its helper
    EMemberKind kind = EMemberKind::Bool;
    EMemberKind elementKind = EMemberKind::Bool; // of a vector
    bool isOwning = false;                       // its words own or name what they refer to
    bool isStrong = false;                       // it is a strong reference, or a vector with such
    std::uint8_t numberBytes = 0;                // of a number or bool; 0 for all else
    bool isInHelper = false;
    bool isUndoable = true;
    bool isPersisted = true;
    Member const * member = nullptr; // of the entity, or of the innermost value
    MemberSet const * set = nullptr; // of which class
    TemplatizedFunctions * functions = nullptr;
    std::vector<Leaf> const * elementLeaves = nullptr; // of a vector of values
    std::string path; // "Class.member", and ".part" for each value that it is a part of
};

// The two parts of a leaf's path: "Class" and "member.part".
inline std::string_view classNameOf(Leaf const & leaf) noexcept {
    return std::string_view(leaf.path).substr(0, leaf.path.find('.'));
}
inline std::string_view nameOf(Leaf const & leaf) noexcept {
    return std::string_view(leaf.path).substr(leaf.path.find('.') + 1);
}

// The leaves of a member set without those of its base.
void appendLeaves(MemberSet const & set, std::vector<Leaf> & leaves);

// All leaves of a class of entities, base first.
class MemberLayout {
public:
    explicit MemberLayout(MemberSet const * set);

    std::vector<Leaf> const & leaves() const noexcept { return m_leaves; }
    // The leaf of the field at an address of the entity; -1 if there is none.
    int find(Entity const & entity, void const * field) const noexcept;
    // The numbers of the leaves that are references or lists, and of all others; without those in
    // helpers.
    std::vector<std::uint32_t> const & references() const noexcept { return m_references; }
    std::vector<std::uint32_t> const & plain() const noexcept { return m_plain; }
    // Whether any leaf holds strong references.
    bool hasStrong() const noexcept { return m_bStrong; }
    // The passive reference to what an entity stands in; null if there is none.
    Leaf const * parent() const noexcept {
        return m_parent < m_leaves.size() ? &m_leaves[m_parent] : nullptr;
    }
    // Makes all strong references of an entity null.
    void dropStrong(Entity & entity) const noexcept;

private:
    std::vector<Leaf> m_leaves;
    std::vector<std::uint32_t> m_references;
    std::vector<std::uint32_t> m_plain;
    std::size_t m_parent = 0; // its number; after the last if there is none
    bool m_bStrong = false;
};

// The field of a leaf.  Leaves in helpers are found by the reader of documents.
inline void * field(Entity & entity, Leaf const & leaf) noexcept {
    return reinterpret_cast<char *>(&entity) + leaf.offset;
}

// The number of a leaf.
inline std::uint64_t numberOf(Leaf const & leaf, void const * field) noexcept {
    return wordOf(leaf.numberBytes, field);
}

// Appends the value of a field.  References to entities of other documents than `asset` are
// counted.  If memory runs out, nothing is appended.
void keep(Leaf const & leaf, void const * field, Asset const * asset, WordBuffer & words);
// Whether the value in the words is that of the field; `words` goes to the end of the value.
bool isKept(Leaf const & leaf, void const * field, std::uint64_t const *& words);
// Gives the field the value in the words, which stay as they are.
void restore(Leaf const & leaf, void * field, std::uint64_t const *& words);
// Gives the field of a number the value in the word, which takes the one that the field had.
void exchange(Leaf const & leaf, void * field, std::uint64_t & word) noexcept;
// Steps over a value.
void skip(Leaf const & leaf, std::uint64_t const *& words);
// Gives up what the words own, and steps over them.
void release(Leaf const & leaf, std::uint64_t *& words) noexcept;

// The same for `count` elements of a vector that begin at `index`, and the words that they take,
// for which there must be room before they are kept.
std::size_t elementWords(Leaf const & leaf, void const * field, std::size_t index,
                         std::size_t count);
void keepElements(Leaf const & leaf, void const * field, std::size_t index, std::size_t count,
                  Asset const * asset, WordBuffer & words);
// Inserts the elements in the words into a vector, and takes elements out of one.
void insertElements(Leaf const & leaf, void * field, std::size_t index, std::size_t count,
                    std::uint64_t const *& words);
void eraseElements(Leaf const & leaf, void * field, std::size_t index, std::size_t count);
void releaseElements(Leaf const & leaf, std::size_t count, std::uint64_t *& words) noexcept;

// Calls `visit` with `context` and each entity of the same document that strong references of a
// kept value, or of kept elements, lead to.
using VisitEntity = void (*)(void * context, Entity & entity);
void visitStrong(Leaf const & leaf, std::uint64_t const * words, VisitEntity visit, void * context);
void visitStrongElements(Leaf const & leaf, std::size_t count, std::uint64_t const * words,
                         VisitEntity visit, void * context);

} // namespace Vn::DataModel

#endif
