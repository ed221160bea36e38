// The way from an entity to its ancestors.  It ends even where parents lead in a circle, and its
// stack doesn't grow with its length.

#ifndef VN_SERVER_COMMONDATA_MANAGED_ANCESTORS_H
#define VN_SERVER_COMMONDATA_MANAGED_ANCESTORS_H

#include <cstddef>
#include <unordered_map>
#include <utility>
#include <vector>

#include "Platform/Base/RefCounted.h"
#include "Platform/DataModel/Entity.h"

namespace Vn::Managed {

// A walk to one ancestor after another:
//
//     for (AncestorWalk walk(entity.parent()); walk; walk.goTo(parentOf(*walk)))
//         ...
//
// Parents that lead in a circle end it, after a few rounds at most.  It costs the same at each step
// and needs no memory for where it was.
class AncestorWalk {
public:
    // Begins at an entity, which may be null: the walk has then ended already.
    explicit AncestorWalk(StrongRef<Entity> first) noexcept : m_rAt(std::move(first)) {}

    // Whether there is an entity where the walk is, and that entity.
    explicit operator bool() const noexcept { return static_cast<bool>(m_rAt); }
    Entity & operator*() const noexcept { return *m_rAt; }
    Entity * operator->() const noexcept { return m_rAt.get(); }
    StrongRef<Entity> const & at() const noexcept { return m_rAt; }

    // Goes on to the next ancestor; null ends the walk, and so does one in a circle.
    void goTo(StrongRef<Entity> next) noexcept {
        // A mark that is set anew after twice as many steps each time comes to stand in the circle,
        // and is met there in the next round.
        if (m_steps == m_lap) {
            m_rMark = m_rAt;
            m_steps = 0;
            m_lap *= 2;
        }
        ++m_steps;
        m_rAt = std::move(next);
        if (!m_rAt || !(m_rAt == m_rMark)) return;
        m_bCircle = true;
        m_rAt.reset();
    }

    // Whether a circle has ended the walk.
    bool metCircle() const noexcept { return m_bCircle; }

private:
    StrongRef<Entity> m_rAt;
    StrongRef<Entity> m_rMark;
    std::size_t m_steps = 1;
    std::size_t m_lap = 1;
    bool m_bCircle = false;
};

// A question that an entity hands on to its parent unless its class has an answer of its own, so
// that each ancestor has to be asked by its own operation.
//
// The first c_nested ancestors are asked as the operations lead: one within the call of another.
// From there on they are asked from the topmost downwards, and each that hands the question on
// finds the answer of its parent here.  Some are then asked although one below answers by itself.
// Where parents lead in a circle, the answer that is missing is Answer().
template <class Answer>
class UpwardQuestion {
public:
    UpwardQuestion() = default;
    UpwardQuestion(UpwardQuestion const &) = delete;
    UpwardQuestion & operator=(UpwardQuestion const &) = delete;

    // The answer of an ancestor.  `askOne(entity)` asks it by its own operation; `next(entity)` is
    // the ancestor to which it would hand the question on, null if it wouldn't.
    template <class AskOne, class Next>
    Answer ask(StrongRef<Entity> const & ancestor, AskOne && askOne, Next && next) {
        if (auto const known = m_known.find(ancestor.get()); known != m_known.end())
            return known->second.answer;
        if (m_nested < c_nested) {
            Nesting const nesting(m_nested);
            return askOne(*ancestor);
        }
        std::vector<Entity *> above;
        for (StrongRef<Entity> walk = ancestor; walk; walk = next(*walk)) {
            if (!m_known.try_emplace(walk.get(), Known{walk, Answer()}).second) break;
            above.push_back(walk.get());
        }
        Answer answer{};
        for (; !above.empty(); above.pop_back()) {
            answer = askOne(*above.back());
            m_known.find(above.back())->second.answer = answer;
        }
        return answer;
    }

    // Makes a question the one that is being asked on this thread, for as long as the object lasts.
    class Scope {
    public:
        // `current` is where the thread keeps its question.
        Scope(UpwardQuestion *& current, UpwardQuestion & question) noexcept
            : m_current(current), m_pBefore(std::exchange(current, &question)) {}
        ~Scope() { m_current = m_pBefore; }
        Scope(Scope const &) = delete;
        Scope & operator=(Scope const &) = delete;

    private:
        UpwardQuestion *& m_current;
        UpwardQuestion * const m_pBefore;
    };

private:
    static constexpr unsigned c_nested = 64;

    struct Known {
        StrongRef<Entity> rAncestor;
        Answer answer;
    };

    class Nesting {
    public:
        explicit Nesting(unsigned & depth) noexcept : m_depth(depth) { ++m_depth; }
        ~Nesting() { --m_depth; }
        Nesting(Nesting const &) = delete;
        Nesting & operator=(Nesting const &) = delete;

    private:
        unsigned & m_depth;
    };

    unsigned m_nested = 0;
    std::unordered_map<Entity const *, Known> m_known;
};

} // namespace Vn::Managed

#endif
