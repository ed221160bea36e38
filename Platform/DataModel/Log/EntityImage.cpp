#include "Platform/DataModel/Log/EntityImage.h"

#include <cstring>
#include <new>

#include "Platform/DataModel/Log/LogEntries.h"

namespace Vn::DataModel {

namespace {

std::size_t numberWords(Piece const & piece) noexcept { return (piece.bytes + 7) / 8; }

void * field(Entity & entity, Piece const & piece) noexcept {
    return reinterpret_cast<char *>(&entity) + piece.offset;
}

} // namespace

EntityImage::~EntityImage() {
    for (std::uint64_t * place = m_words.data() + m_next; m_pNext != m_pEnd; ++m_pNext)
        if (m_pNext->bytes)
            place += numberWords(*m_pNext);
        else
            release(leaf(*m_pNext), place);
    m_words.truncate(m_begin);
}

void EntityImage::take(Entity & entity, MemberLayout const & layout, Asset const & asset) {
    m_pEntity = &entity;
    m_pLeaves = layout.leaves().data();
    m_pNext = m_pEnd = layout.pieces().data();
    for (Piece const * const end = m_pEnd + layout.pieces().size(); m_pEnd != end; ++m_pEnd) {
        Piece const & piece = *m_pEnd; // kept once it is counted
        if (piece.bytes) {
            std::size_t const words = numberWords(piece);
            std::uint64_t * const place = m_words.append(words);
            place[words - 1] = 0;
            std::memcpy(place, field(entity, piece), piece.bytes);
        } else
            keep(leaf(piece), field(entity, piece), &asset, m_words);
    }
}

void EntityImage::visitStrong(VisitEntity visit, void * context) const {
    std::uint64_t const * place = m_words.data() + m_next;
    for (Piece const * piece = m_pNext; piece != m_pEnd; ++piece) {
        if (piece->bytes) {
            place += numberWords(*piece);
            continue;
        }
        DataModel::visitStrong(leaf(*piece), place, visit, context);
        skip(leaf(*piece), place);
    }
}

bool EntityImage::dropSame(VisitEntity dropped, void * context) {
    for (; m_pNext != m_pEnd; ++m_pNext) {
        std::uint64_t * place = m_words.data() + m_next;
        void const * const present = field(*m_pEntity, *m_pNext);
        if (m_pNext->bytes) {
            if (std::memcmp(place, present, m_pNext->bytes) != 0) return false;
            m_next += numberWords(*m_pNext);
            continue;
        }
        Leaf const & same = leaf(*m_pNext);
        std::uint64_t const * end = place;
        if (!isKept(same, present, end)) return false;
        m_next = static_cast<std::size_t>(end - m_words.data());
        DataModel::visitStrong(same, place, dropped, context);
        if (same.isOwning) release(same, place);
    }
    return true;
}

void EntityImage::moveDifferences(WordBuffer & to, VisitEntity dropped, void * context) {
    // A head for each, and a word for each number, which several may share here.
    std::size_t leaves = 0;
    for (Piece const * piece = m_pNext; piece != m_pEnd; ++piece) leaves += piece->leaves;
    if (!to.reserve(m_words.size() - m_next + 2 * leaves)) throw std::bad_alloc();
    for (; !dropSame(dropped, context); ++m_pNext) {
        std::uint64_t const * const place = m_words.data() + m_next;
        if (m_pNext->bytes) {
            moveNumbers(*m_pNext, reinterpret_cast<char const *>(place), to);
            m_next += numberWords(*m_pNext);
            continue;
        }
        std::uint64_t const * end = place;
        skip(leaf(*m_pNext), end);
        auto const words = static_cast<std::size_t>(end - place);
        to.push(entry(m_pNext->leaf, words));
        to.push(place, words);
        m_next += words;
    }
}

void EntityImage::moveNumbers(Piece const & piece, char const * bytes, WordBuffer & to) const {
    for (std::size_t i = piece.leaf; i < piece.leaf + piece.leaves; ++i) {
        Leaf const & number = m_pLeaves[i];
        std::uint64_t const was = numberOf(number, bytes + (number.offset - piece.offset));
        if (was == numberOf(number, DataModel::field(*m_pEntity, number))) continue;
        to.push(entry(i, 1));
        to.push(was);
    }
}

} // namespace Vn::DataModel
