// The texts of a tree: the value for the user, and the expression again.

#include "Server/CommonData/Expressions/ReconstructionInternal.h"

#include <algorithm>

#include "Server/CommonData/Units/UnitContext.h"

namespace Vn::Expressions {

using Units::ComplexUnit;
using Units::EUnitDisplayMode;
using Units::UnitContext;
using Units::UnitDisplaySettings;

std::wstring Node::formattedValue(EUnitDisplayMode mode, UnitDisplaySettings const & settings,
                                  UnitContext const & context) {
    double value = 0.0;
    if (!evaluate(value)) return {};
    ComplexUnit const * shown = context.expectedUnits();
    if (!shown) shown = m_pDefaults->given ? &m_pDefaults->units : units(context);
    return shown ? shown->reconstructString(value, mode, settings) : std::wstring();
}

std::wstring Node::reconstructString(EUnitDisplayMode mode, UnitDisplaySettings const & settings,
                                     ComplexUnit const * units) {
    return Reconstruction(mode, settings).write(*this, units);
}

std::wstring Reconstruction::write(Node & root, ComplexUnit const * rootUnits) {
    Tokens const & tokens = *Tokens::get();
    add(root, rootUnits);
    while (!m_pieces.empty()) {
        Piece const piece = m_pieces.back();
        m_pieces.pop_back();
        if (piece.sign != e_NONE) {
            m_text += tokens.getString(piece.sign);
        } else if (piece.node) {
            std::size_t const first = m_pieces.size();
            ComplexUnit const * const units = piece.node->shownUnits(piece.units);
            // A node that can't show its units itself is multiplied by one of them.
            bool const wrapped = units && !piece.node->onShowsUnitsItself();
            if (wrapped) {
                add(e_LEFT_PAREN);
                add(e_SPACE);
            }
            piece.node->onReconstruct(*this, units);
            if (wrapped) {
                add(e_SPACE);
                add(e_RIGHT_PAREN);
                add(e_SPACE);
                add(e_MULTIPLY);
                add(e_SPACE);
                addOne();
                add(e_SPACE);
                addUnits(*units);
            }
            std::reverse(m_pieces.begin() + static_cast<std::ptrdiff_t>(first), m_pieces.end());
        } else if (piece.units) {
            piece.units->appendReconstruction(m_text, 1.0, Units::UnitOnly, m_rSettings);
        } else {
            m_text += L'1';
        }
    }
    return std::move(m_text);
}

void NumericNode::onReconstruct(Reconstruction & out, ComplexUnit const * units) {
    // The number is written in its own format, whatever the user prefers.
    UnitDisplaySettings own = out.settings();
    own.specifiedByNode(true);
    own.scientificNotation(m_format.scientific);
    if (m_format.hasPrecision) {
        if (m_format.scientific) {
            own.scientificPrecision(m_format.precision);
        } else {
            own.generalPrecision(m_format.precision);
            own.angularPrecision(m_format.precision);
        }
        own.hideTrailingZeroes(false);
    }
    own.lengthDisplay(m_format.lengthDisplay);
    own.degreeDisplay(m_format.degreeDisplay);
    EUnitDisplayMode mode = out.mode();
    if (m_bUnitOnly && mode == Units::ValueAndUnit) mode = Units::UnitOnly;
    if (units && m_pOwnUnits->isEmpty())
        units->appendReconstruction(out.text(), units->toInternal(m_value), mode, own);
    else
        m_pOwnUnits->appendReconstruction(out.text(), m_value, mode, own);
}

void ConstantNode::onReconstruct(Reconstruction & out, ComplexUnit const *) {
    out.add(m_constant);
    if (!m_pAttachedUnits || out.mode() == Units::ValueOnly) return;
    if (out.mode() == Units::ValueAndUnit) out.add(e_SPACE);
    out.addUnits(*m_pAttachedUnits);
}

void UnaryMinusOpNode::onReconstruct(Reconstruction & out, ComplexUnit const * units) {
    out.add(e_MINUS);
    out.add(operand(), units);
}

void ParenOpNode::onReconstruct(Reconstruction & out, ComplexUnit const * units) {
    out.add(e_LEFT_PAREN);
    out.add(e_SPACE);
    out.add(operand(), units);
    out.add(e_SPACE);
    out.add(e_RIGHT_PAREN);
}

void BinaryOpNode::onReconstruct(Reconstruction & out, ComplexUnit const * units) {
    // A sum hands units down to its operands; other operators take them as a whole.
    ComplexUnit const * const passed = onShowsUnitsItself() ? units : nullptr;
    out.add(m_rLeft, passed);
    out.add(e_SPACE);
    out.add(onOperator());
    out.add(e_SPACE);
    out.add(m_rRight, passed);
}

void VarLenOpNode::reconstructOperands(Reconstruction & out) {
    for (Operand const * entry = m_pFirst; entry; entry = entry->next) {
        out.add(*entry->node, nullptr);
        if (!entry->next) break;
        out.add(e_SEMICOLON);
        out.add(e_SPACE);
    }
}

void FunctionOpNode::onReconstruct(Reconstruction & out, ComplexUnit const *) {
    out.add(c_functionTokens[m_function]);
    out.add(e_LEFT_PAREN);
    reconstructOperands(out);
    out.add(e_RIGHT_PAREN);
}

} // namespace Vn::Expressions
