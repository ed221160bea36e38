#include "Server/CommonData/Expressions/Token.h"

#include <functional>

namespace Vn::Expressions {

TokenList::~TokenList() {
    for (Chunk * chunks : {m_pFirstChunk, m_pFreeChunks}) {
        while (chunks) {
            Chunk * const next = chunks->next;
            if (chunks != &m_chunk) delete chunks;
            chunks = next;
        }
    }
}

void TokenList::addChunk() {
    Chunk * chunk = m_pFreeChunks;
    if (chunk) {
        m_pFreeChunks = chunk->next;
        chunk->next = nullptr;
    } else {
        chunk = new Chunk;
    }
    m_pLastChunk->next = chunk;
    m_pLastChunk = chunk;
    m_used = 0;
}

void TokenList::discardChunksBefore(Token * token) {
    m_pFirst = token;
    std::less<Token const *> const before;
    while (before(token, m_pFirstChunk->tokens) ||
           !before(token, m_pFirstChunk->tokens + c_tokensPerChunk)) {
        Chunk * const chunk = m_pFirstChunk;
        m_pFirstChunk = chunk->next;
        chunk->next = m_pFreeChunks;
        m_pFreeChunks = chunk;
    }
}

} // namespace Vn::Expressions
