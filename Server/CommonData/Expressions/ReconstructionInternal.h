// The writing of an expression's text, from a list of pieces that nodes give.
//
// Each node gives its own pieces (signs, operands, units) in the order in which they are read; a
// piece that is an operand is replaced by the pieces of that operand when its turn comes.  So the
// depth of a tree costs no stack.

#ifndef VN_SERVER_COMMONDATA_EXPRESSIONS_RECONSTRUCTIONINTERNAL_H
#define VN_SERVER_COMMONDATA_EXPRESSIONS_RECONSTRUCTIONINTERNAL_H

#include <string>

#include <boost/container/small_vector.hpp>

#include "Server/CommonData/Expressions/NodeInternal.h"

namespace Vn::Expressions {

class Reconstruction {
public:
    Reconstruction(Units::EUnitDisplayMode mode, Units::UnitDisplaySettings const & settings)
        : m_mode(mode), m_rSettings(settings) {}

    // The whole text of `root`, in those units, which may be null.
    std::wstring write(Node & root, Units::ComplexUnit const * rootUnits);

    Units::EUnitDisplayMode mode() const { return m_mode; }
    Units::UnitDisplaySettings const & settings() const { return m_rSettings; }

    // The pieces of a node: a sign or word; an operand, in units or none; units alone.
    void add(EToken sign) { m_pieces.push_back({nullptr, nullptr, sign}); }
    void add(Node & operand, Units::ComplexUnit const * units) {
        m_pieces.push_back({&operand, units, e_NONE});
    }
    void addUnits(Units::ComplexUnit const & units) {
        m_pieces.push_back({nullptr, &units, e_NONE});
    }
    // The number one.
    void addOne() { m_pieces.push_back({nullptr, nullptr, e_NONE}); }

    // The text written so far.  A node without operands may write to it instead of giving pieces.
    std::wstring & text() { return m_text; }

private:
    struct Piece {
        Node * node;
        Units::ComplexUnit const * units;
        EToken sign;
    };

    Units::EUnitDisplayMode const m_mode;
    Units::UnitDisplaySettings const & m_rSettings;
    std::wstring m_text;
    boost::container::small_vector<Piece, 24> m_pieces; // the next one last
};

} // namespace Vn::Expressions

#endif
