#include <algorithm>
#include <cstring>
#include <utility>

#include "Platform/DataModel/Entity.h"
#include "Platform/DataModel/MemberLayoutInternal.h"
#include "Platform/DataModel/MetaType.h"
#include "Platform/Types/GlobalizedString.h"

namespace Vn::DataModel {

namespace {

using Words = std::uint64_t const *;

bool isText(EMemberKind kind) noexcept {
    return kind == EMemberKind::String || kind == EMemberKind::WideString;
}

// Calls `visit` with the kind and the field of each piece of an element.
template <class Visit>
void visitElement(Leaf const & leaf, char * element, Visit && visit) {
    if (leaf.elementKind != EMemberKind::Value) {
        visit(leaf.elementKind, element);
        return;
    }
    for (Leaf const & part : *leaf.elementLeaves) visit(part.kind, element + part.offset);
}

template <class Visit>
void visitElements(Leaf const & leaf, void const * field, std::size_t index, std::size_t count,
                   Visit && visit) {
    if (!count) return;
    std::size_t const stride = leaf.functions->memberBytes(1);
    auto * element = static_cast<char *>(leaf.functions->firstElement(const_cast<void *>(field))) +
                     index * stride;
    for (std::size_t i = 0; i < count; ++i, element += stride) visitElement(leaf, element, visit);
}

template <class Visit>
void visitKinds(Leaf const & leaf, std::size_t count, Visit && visit) {
    for (std::size_t i = 0; i < count; ++i) {
        if (leaf.elementKind != EMemberKind::Value)
            visit(leaf.elementKind);
        else
            for (Leaf const & part : *leaf.elementLeaves) visit(part.kind);
    }
}

bool ownsWords(std::vector<Leaf> const & leaves) noexcept {
    for (Leaf const & leaf : leaves)
        if (leaf.isOwning) return true;
    return false;
}

// The leaves of a kind of values, as parts that begin at the value.  They are worked out once a
// kind and live to the end of the process.
std::vector<Leaf> const & leavesOf(ValueMetaType & type) {
    static std::mutex s_mutex;
    static auto * const s_leaves =
        new std::map<ValueMetaType *, std::unique_ptr<std::vector<Leaf> const>>;
    {
        std::lock_guard const guard(s_mutex);
        auto const i = s_leaves->find(&type);
        if (i != s_leaves->end()) return *i->second;
    }
    // Not under the lock: values may have values inside.
    auto const end = [&](void * made) { type.destruct(made); };
    std::unique_ptr<void, decltype(end)> value(type.construct(), end);
    MemberSet * const set = type.memberSetOf(value.get());
    value.reset();
    auto made = std::make_unique<std::vector<Leaf>>();
    appendLeaves(*set, *made);
    std::lock_guard const guard(s_mutex);
    return *s_leaves->try_emplace(&type, std::move(made)).first->second;
}

bool holdsStrong(Leaf const & leaf) {
    if (leaf.kind != EMemberKind::Vector) return leaf.kind == EMemberKind::StrongRef;
    if (leaf.elementKind != EMemberKind::Value) return leaf.elementKind == EMemberKind::StrongRef;
    std::vector<Leaf> const & parts = *leaf.elementLeaves;
    return std::any_of(parts.begin(), parts.end(), [](Leaf const & part) { return part.isStrong; });
}

// Whether hooks of a deletion may let a member go without a bracket, as those of groups do.
bool mayLetGo(EMemberKind kind) noexcept {
    return isReference(kind) || kind == EMemberKind::Vector;
}

// Makes all strong references of a leaf null.
void dropStrong(Leaf const & leaf, void * field) noexcept {
    if (leaf.kind == EMemberKind::StrongRef)
        return static_cast<StrongRef<Entity> *>(field)->reset();
    if (leaf.kind != EMemberKind::Vector) return;
    visitElements(leaf, field, 0, leaf.functions->elementCount(field),
                  [&](EMemberKind kind, char * element) {
                      if (kind == EMemberKind::StrongRef)
                          reinterpret_cast<StrongRef<Entity> *>(element)->reset();
                  });
}

} // namespace

void appendLeaves(MemberSet const & set, std::vector<Leaf> & leaves) {
    for (unsigned i = 0; i < set.members(); ++i) {
        Member const & member = set.member(i);
        Leaf leaf;
        leaf.offset = member.offset();
        leaf.kind = member.type()->kind();
        leaf.isInHelper = member.inHelper();
        leaf.isUndoable = member.test(Member::OptionUndoable);
        leaf.isPersisted = member.test(Member::OptionPersisted);
        leaf.member = &member;
        leaf.set = &set;
        leaf.functions = member.functions();
        leaf.path = set.className() + '.' + member.name();
        leaf.isOwning = memberKind(leaf.kind).ownsWords;
        leaf.numberBytes = memberKind(leaf.kind).numberBytes;
        leaf.isStrong = leaf.kind == EMemberKind::StrongRef;
        if (leaf.kind == EMemberKind::Value) {
            for (Leaf part : leavesOf(static_cast<ValueMetaType &>(*member.type()))) {
                part.offset += leaf.offset;
                part.isInHelper = leaf.isInHelper;
                part.isUndoable = leaf.isUndoable && part.isUndoable;
                part.isPersisted = leaf.isPersisted && part.isPersisted;
                part.path = leaf.path + part.path.substr(part.path.find('.'));
                part.set = leaf.set;
                leaves.push_back(std::move(part));
            }
            continue;
        }
        if (leaf.kind == EMemberKind::Vector) {
            MemberMetaType * const element = leaf.functions->elementType();
            leaf.elementKind = element->kind();
            if (leaf.elementKind == EMemberKind::Value) {
                leaf.elementLeaves = &leavesOf(static_cast<ValueMetaType &>(*element));
                leaf.isOwning = ownsWords(*leaf.elementLeaves);
            } else
                leaf.isOwning = memberKind(leaf.elementKind).ownsWords;
            leaf.isStrong = holdsStrong(leaf);
        }
        leaves.push_back(std::move(leaf));
    }
}

MemberLayout::MemberLayout(MemberSet const * set) {
    std::vector<MemberSet const *> chain;
    for (; set; set = set->base()) chain.push_back(set);
    for (auto i = chain.rbegin(); i != chain.rend(); ++i) appendLeaves(**i, m_leaves);
    m_bStrong = std::any_of(m_leaves.begin(), m_leaves.end(),
                            [](Leaf const & leaf) { return leaf.isStrong; });
    for (std::uint32_t i = 0; i < m_leaves.size(); ++i)
        if (!m_leaves[i].isInHelper)
            (mayLetGo(m_leaves[i].kind) ? m_references : m_plain).push_back(i);
    auto const parent = std::find_if(m_leaves.begin(), m_leaves.end(), [](Leaf const & leaf) {
        return leaf.kind == EMemberKind::PassiveRef && !leaf.isInHelper &&
               leaf.member->test(Member::OptionParent);
    });
    m_parent = static_cast<std::size_t>(parent - m_leaves.begin());
}

void MemberLayout::dropStrong(Entity & entity) const noexcept {
    if (!m_bStrong) return;
    for (Leaf const & leaf : m_leaves)
        if (!leaf.isInHelper) DataModel::dropStrong(leaf, field(entity, leaf));
}

int MemberLayout::find(Entity const & entity, void const * field) const noexcept {
    std::ptrdiff_t const offset =
        static_cast<char const *>(field) - reinterpret_cast<char const *>(&entity);
    for (std::size_t i = 0; i < m_leaves.size(); ++i)
        if (m_leaves[i].offset == offset && !m_leaves[i].isInHelper) return static_cast<int>(i);
    return -1;
}

void keep(Leaf const & leaf, void const * field, Asset const * asset, WordBuffer & words) {
    if (leaf.kind != EMemberKind::Vector) return memberKind(leaf.kind).keep(field, asset, words);
    std::size_t const count = leaf.functions->elementCount(field);
    if (!words.reserve(1 + elementWords(leaf, field, 0, count))) throw std::bad_alloc();
    words.push(count);
    keepElements(leaf, field, 0, count, asset, words);
}

bool isKept(Leaf const & leaf, void const * field, std::uint64_t const *& words) {
    if (leaf.kind != EMemberKind::Vector) return memberKind(leaf.kind).isKept(field, words);
    std::size_t const kept = static_cast<std::size_t>(*words);
    if (leaf.functions->elementCount(field) != kept) {
        skip(leaf, words);
        return false;
    }
    ++words;
    bool same = true;
    visitElements(leaf, field, 0, kept, [&](EMemberKind kind, char * element) {
        same = memberKind(kind).isKept(element, words) && same;
    });
    return same;
}

void restore(Leaf const & leaf, void * field, std::uint64_t const *& words) {
    if (leaf.kind != EMemberKind::Vector) return memberKind(leaf.kind).restore(field, words);
    std::size_t const count = static_cast<std::size_t>(*words++);
    std::size_t const present = leaf.functions->elementCount(field);
    if (present > count) leaf.functions->eraseElements(field, count, present - count);
    if (present < count) leaf.functions->appendElements(field, count - present);
    visitElements(leaf, field, 0, count, [&](EMemberKind kind, char * element) {
        memberKind(kind).restore(element, words);
    });
}

void exchange(Leaf const & leaf, void * field, std::uint64_t & word) noexcept {
    std::uint64_t const present = wordOf(leaf.numberBytes, field);
    setNumber(leaf.numberBytes, field, word);
    word = present;
}

void skip(Leaf const & leaf, std::uint64_t const *& words) {
    if (leaf.kind != EMemberKind::Vector) return memberKind(leaf.kind).skip(words);
    std::size_t const count = static_cast<std::size_t>(*words++);
    visitKinds(leaf, count, [&](EMemberKind kind) { memberKind(kind).skip(words); });
}

void release(Leaf const & leaf, std::uint64_t *& words) noexcept {
    if (leaf.kind != EMemberKind::Vector) return memberKind(leaf.kind).release(words);
    std::size_t const count = static_cast<std::size_t>(*words++);
    releaseElements(leaf, count, words);
}

std::size_t elementWords(Leaf const & leaf, void const * field, std::size_t index,
                         std::size_t count) {
    if (leaf.elementKind != EMemberKind::Value && !isText(leaf.elementKind)) return count;
    std::size_t words = 0;
    visitElements(leaf, field, index, count, [&](EMemberKind kind, char * element) {
        words += memberKind(kind).words(element);
    });
    return words;
}

void keepElements(Leaf const & leaf, void const * field, std::size_t index, std::size_t count,
                  Asset const * asset, WordBuffer & words) {
    visitElements(leaf, field, index, count, [&](EMemberKind kind, char * element) {
        memberKind(kind).keep(element, asset, words);
    });
}

void insertElements(Leaf const & leaf, void * field, std::size_t index, std::size_t count,
                    std::uint64_t const *& words) {
    leaf.functions->insertElements(field, index, count);
    visitElements(leaf, field, index, count, [&](EMemberKind kind, char * element) {
        memberKind(kind).restore(element, words);
    });
}

void eraseElements(Leaf const & leaf, void * field, std::size_t index, std::size_t count) {
    leaf.functions->eraseElements(field, index, count);
}

void releaseElements(Leaf const & leaf, std::size_t count, std::uint64_t *& words) noexcept {
    visitKinds(leaf, count, [&](EMemberKind kind) { memberKind(kind).release(words); });
}

void visitStrong(Leaf const & leaf, std::uint64_t const * words, VisitEntity visit,
                 void * context) {
    if (!leaf.isStrong) return;
    if (leaf.kind == EMemberKind::Vector)
        return visitStrongElements(leaf, static_cast<std::size_t>(*words), words + 1, visit,
                                   context);
    if (Entity * const entity = strongTarget(*words); entity && !isCounted(*words))
        visit(context, *entity);
}

void visitStrongElements(Leaf const & leaf, std::size_t count, std::uint64_t const * words,
                         VisitEntity visit, void * context) {
    if (!leaf.isStrong) return;
    visitKinds(leaf, count, [&](EMemberKind kind) {
        if (kind == EMemberKind::StrongRef && !isCounted(*words))
            if (Entity * const entity = strongTarget(*words)) visit(context, *entity);
        memberKind(kind).skip(words);
    });
}

} // namespace Vn::DataModel
