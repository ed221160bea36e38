#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <new>

#include "Server/CommonData/Expressions/NodeInternal.h"
#include "Server/CommonData/Expressions/TreeInternal.h"
#include "Server/CommonData/Limits.h"
#include "Server/CommonData/Units/SimpleUnit.h"

namespace Vn::Expressions {

using Units::ComplexUnit;

// The units of a tree own memory, so unlike the nodes they must be ended one by one.
struct Tree::OwnedUnits {
    OwnedUnits * next; // of all
    std::size_t hash;
    alignas(ComplexUnit) std::byte storage[sizeof(ComplexUnit)];

    ComplexUnit * units() { return std::launder(reinterpret_cast<ComplexUnit *>(storage)); }
};

namespace {

// One block for the tree and the first of its nodes: enough for a short expression.
constexpr std::size_t c_firstBlock = 768;

} // namespace

Tree::Tree(void * buffer, std::size_t size) : m_arena(buffer, size) {}

Tree::~Tree() {
    for (OwnedUnits * owned = m_pUnits; owned; owned = owned->next) owned->units()->~ComplexUnit();
}

Tree * Tree::make() {
    auto * const block = static_cast<std::byte *>(std::malloc(c_firstBlock));
    if (!block) throw std::bad_alloc();
    return ::new (block) Tree(block + sizeof(Tree), c_firstBlock - sizeof(Tree));
}

void Tree::destroy(Tree * tree) {
    if (!tree) return;
    tree->~Tree();
    std::free(tree);
}

NodeDefaults const & Tree::findDefaults(ComplexUnit const * units) {
    // There are a few: what the expression is expected in, none, and the unit of angles.
    ComplexUnit const & wanted = units ? *units : ComplexUnit::none();
    bool const given = units != nullptr;
    NodeDefaults * found = m_pDefaults;
    while (found && (&found->units != &wanted || found->given != given)) found = found->next;
    if (!found) {
        m_pDefaults = found = ::new (m_arena.allocate(sizeof(NodeDefaults)))
            NodeDefaults{*this, wanted, given, m_pDefaults};
    }
    m_pRecentUnits = units;
    m_pRecentDefaults = found;
    return *found;
}

NodeDefaults const & Tree::ownDefaults(ComplexUnit const & units) {
    return *::new (m_arena.allocate(sizeof(NodeDefaults)))
        NodeDefaults{*this, units, true, nullptr};
}

ComplexUnit const * Tree::keep(ComplexUnit const & units) {
    return keep(units.numerator(), units.denominator());
}

namespace {

std::size_t hashOf(Units::UnitSpan numerator, Units::UnitSpan denominator) {
    std::size_t hash = numerator.size();
    for (Units::UnitSpan const list : {numerator, denominator}) {
        for (Units::SimpleUnit const * const unit : list) {
            hash = (hash ^ reinterpret_cast<std::uintptr_t>(unit)) * 0x9e3779b97f4a7c15u;
            hash ^= hash >> 32;
        }
    }
    return hash;
}

bool same(Units::UnitSpan a, Units::UnitSpan b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end());
}

} // namespace

ComplexUnit const * Tree::keep(Units::UnitSpan numerator, Units::UnitSpan denominator) {
    if (denominator.empty() && numerator.empty()) return &ComplexUnit::none();
    if (denominator.empty() && numerator.size() == 1) return &numerator.front()->asComplexUnit();

    if (m_unitCount * 2 >= m_unitSlots) growUnits();
    std::size_t const hash = hashOf(numerator, denominator);
    std::size_t slot = hash & (m_unitSlots - 1);
    for (; m_pUnitTable[slot]; slot = (slot + 1) & (m_unitSlots - 1)) {
        OwnedUnits & owned = *m_pUnitTable[slot];
        if (owned.hash == hash && same(owned.units()->numerator(), numerator) &&
            same(owned.units()->denominator(), denominator))
            return owned.units();
    }
    auto * const owned = static_cast<OwnedUnits *>(m_arena.allocate(sizeof(OwnedUnits)));
    ComplexUnit * const units = ::new (owned->storage) ComplexUnit;
    owned->hash = hash;
    owned->next = m_pUnits;
    m_pUnits = owned;
    m_pUnitTable[slot] = owned;
    ++m_unitCount;
    units->addToNumerator(numerator);
    units->addToDenominator(denominator);
    m_unitFactors += units->factors();
    return units;
}

void Tree::growUnits() {
    std::size_t const slots = m_unitSlots == 0 ? 8 : m_unitSlots * 2;
    auto ** const table =
        static_cast<OwnedUnits **>(m_arena.allocate(slots * sizeof(OwnedUnits *)));
    std::fill_n(table, slots, nullptr);
    for (OwnedUnits * owned = m_pUnits; owned; owned = owned->next) {
        std::size_t slot = owned->hash & (slots - 1);
        while (table[slot]) slot = (slot + 1) & (slots - 1);
        table[slot] = owned;
    }
    m_pUnitTable = table;
    m_unitSlots = slots;
}

bool Tree::unitsExhausted() const { return m_unitFactors > Limits::c_treeUnitFactors; }

} // namespace Vn::Expressions
