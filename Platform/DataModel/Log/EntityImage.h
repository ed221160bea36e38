// The members of an entity as they are at one moment, to be compared with what they are later.
//
// This is for the moments around the hooks of a deletion, which rarely change anything: numbers
// that lie side by side are copied and compared as one.
//
// An image is a row of words, with one value for each piece of the class's layout: the bytes of
// numbers, padded to whole words, or the value of a leaf as MemberLayoutInternal.h describes it.

#ifndef VN_PLATFORM_DATAMODEL_LOG_ENTITYIMAGE_H
#define VN_PLATFORM_DATAMODEL_LOG_ENTITYIMAGE_H

#include <cstddef>

#include "Platform/DataModel/Log/WordBuffer.h"
#include "Platform/DataModel/MemberLayoutInternal.h"

namespace Vn::DataModel {

// Stands at the end of a buffer that images share; they end in the reverse order of their
// beginnings.
class EntityImage {
public:
    explicit EntityImage(WordBuffer & words) noexcept
        : m_words(words), m_begin(words.size()), m_next(m_begin) {}
    ~EntityImage();
    EntityImage(EntityImage const &) = delete;
    EntityImage & operator=(EntityImage const &) = delete;

    // Keeps the members that an entity has now.  If memory runs out, only those before that are
    // kept.
    void take(Entity & entity, MemberLayout const & layout, Asset const & asset);
    // Calls `visit` with `context` and each entity of the same document that strong references led
    // to.
    void visitStrong(VisitEntity visit, void * context) const;

    // Gives up the members until one differs from what it is now; true if there is none.  `dropped`
    // is called with `context` and each entity that strong references of those led to.
    bool dropSame(VisitEntity dropped, void * context);
    // Moves the members that differ to the end of `to`, with heads as in a Changed record, and
    // gives up the others, as dropSame does.  If memory runs out, nothing is moved or given up.
    void moveDifferences(WordBuffer & to, VisitEntity dropped, void * context);

private:
    Leaf const & leaf(Piece const & piece) const noexcept { return m_pLeaves[piece.leaf]; }
    void moveNumbers(Piece const & piece, char const * bytes, WordBuffer & to) const;

    WordBuffer & m_words;
    std::size_t const m_begin;
    std::size_t m_next;              // where the value of the first piece stands that is kept
    Piece const * m_pNext = nullptr; // which that is
    Piece const * m_pEnd = nullptr;  // after the last
    Leaf const * m_pLeaves = nullptr;
    Entity * m_pEntity = nullptr;
};

} // namespace Vn::DataModel

#endif
