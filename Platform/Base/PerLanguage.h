#ifndef VN_PLATFORM_BASE_PERLANGUAGE_H
#define VN_PLATFORM_BASE_PERLANGUAGE_H

#include <atomic>
#include <concepts>
#include <memory>
#include <type_traits>

#include "Platform/Base/CreationLock.h"
#include "Platform/Base/StringTable.h"

namespace Vn {

// An object that is made of texts of the string table, one for each language that is used.
//
//     static constinit PerLanguage<Words> s_words;
//     Words & Words::get() { return s_words.get([] { return new Words; }); }
//
// The present language's object is made when it is first asked for, and shared from then on.  After
// a change of language another is made; those of the languages before stay, so that references to
// them remain valid, and are used again if the language returns.  Any thread may ask.
//
// The holder is constant-initialised and has a trivial destructor: a static one keeps its objects
// to the end of the process.  Another owner calls `clear` when it ends.
template <class T>
class PerLanguage {
public:
    constexpr PerLanguage() noexcept = default;
    PerLanguage(PerLanguage const &) = delete;
    PerLanguage & operator=(PerLanguage const &) = delete;

    // The object for the present language, made by `create` if there is none yet.  `create` returns
    // a T * that isn't null and becomes this holder's; it must be complete, and mustn't ask for the
    // same object.  If it throws, the exception goes to the caller and the next call tries anew. If
    // the language changes meanwhile, what was made is deleted and made anew.
    template <class Creator>
    requires std::convertible_to<std::invoke_result_t<Creator &>, T *> T & get(Creator && create) {
        Made const * const made = m_pLast.load(std::memory_order_acquire);
        return made && made->edition == StringTable::edition() ? *made->object : find(create);
    }

    // Deletes all objects.  Nobody may use them any more, or ask meanwhile.
    void clear() noexcept {
        Made const * made = m_pAll;
        m_pAll = nullptr;
        m_pLast.store(nullptr, std::memory_order_relaxed);
        while (made) {
            std::unique_ptr<Made const> const ended(made);
            made = ended->before;
        }
    }

private:
    struct Made {
        std::unique_ptr<T> object;
        unsigned edition;
        Made const * before; // the one that was made before it, or null
    };

    template <class Creator>
    T & find(Creator & create) {
        CreationLock const lock(m_lock);
        Made const * made = found();
        while (!made) {
            unsigned const edition = StringTable::edition();
            std::unique_ptr<T> object(create());
            if (StringTable::edition() == edition)
                made = m_pAll = new Made{std::move(object), edition, m_pAll};
            else
                made = found();
        }
        m_pLast.store(made, std::memory_order_release);
        return *made->object;
    }

    // The present language's, or null.
    Made const * found() const noexcept {
        Made const * made = m_pAll;
        while (made && made->edition != StringTable::edition()) made = made->before;
        return made;
    }

    std::atomic<Made const *> m_pLast{nullptr}; // the one that was asked for last
    Made const * m_pAll = nullptr;              // the one that was made last
    SpinLock m_lock;
};

} // namespace Vn

#endif
