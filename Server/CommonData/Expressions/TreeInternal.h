// The memory in which the nodes of one expression live, with the units that they refer to.

#ifndef VN_SERVER_COMMONDATA_EXPRESSIONS_TREEINTERNAL_H
#define VN_SERVER_COMMONDATA_EXPRESSIONS_TREEINTERNAL_H

#include <utility>

#include "Server/CommonData/Expressions/ArenaInternal.h"
#include "Server/CommonData/Units/ComplexUnit.h"

namespace Vn::Expressions {

struct NodeDefaults;

// The memory of one tree.
class Tree {
public:
    static Tree * make();
    // Ends the tree with all its nodes; nothing for null.
    static void destroy(Tree * tree);

    // A node of this tree: tree.make<PlusOpNode>(units, left, right).
    template <class NodeClass, class... Arguments>
    NodeClass * make(Arguments &&... arguments) {
        return m_arena.make<NodeClass>(*this, std::forward<Arguments>(arguments)...);
    }

    template <class T>
    T * makePlain() {
        return m_arena.make<T>();
    }

    // The defaults for nodes that are given `units`, which may be null, and otherwise must live as
    // long as the tree.
    NodeDefaults const & defaults(Units::ComplexUnit const * units) {
        return m_pRecentDefaults && m_pRecentUnits == units ? *m_pRecentDefaults
                                                            : findDefaults(units);
    }
    // The same, never shared with other nodes.
    NodeDefaults const & ownDefaults(Units::ComplexUnit const & units);

    // Units with the life of the tree.  Equal lists give the same object, so that a sum of a
    // million terms in one unit keeps that unit once.
    Units::ComplexUnit const * keep(Units::ComplexUnit const & units);
    Units::ComplexUnit const * keep(Units::UnitSpan numerator, Units::UnitSpan denominator);

    // Whether the units of the tree have grown so far that no more should be made.
    bool unitsExhausted() const;

private:
    struct OwnedUnits;

    Tree(void * buffer, std::size_t size);
    ~Tree();

    NodeDefaults const & findDefaults(Units::ComplexUnit const * units);
    void growUnits();

    Arena m_arena;
    OwnedUnits * m_pUnits = nullptr;
    OwnedUnits ** m_pUnitTable = nullptr; // by the hash of the lists
    std::size_t m_unitSlots = 0;          // of the table: a power of two
    std::size_t m_unitCount = 0;
    std::size_t m_unitFactors = 0;
    NodeDefaults * m_pDefaults = nullptr;
    NodeDefaults const * m_pRecentDefaults = nullptr;
    Units::ComplexUnit const * m_pRecentUnits = nullptr;
};

} // namespace Vn::Expressions

#endif
