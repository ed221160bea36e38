// An expression that owns its tree.
//
//   Vn::Expressions::Expression length(L"2' 6 3/4\"", Vn::Units::UnitContext(L"cm"));
//   if (length) use(length.value().value_or(0.0), length.formatted());
//
// Text comes in wide or in UTF-8, and a value goes out in any unit:
//
//   Vn::Expressions::Expression const width("2 ft + 3 in");
//   std::optional<double> const metres = width.value("m"); // 0.6858
//
// An expression can be moved, not copied, and belongs to one thread at a time.

#ifndef VN_SERVER_COMMONDATA_EXPRESSIONS_EXPRESSION_H
#define VN_SERVER_COMMONDATA_EXPRESSIONS_EXPRESSION_H

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "Server/CommonData/Export.h"
#include "Server/CommonData/Expressions/Interface.h"
#include "Server/CommonData/Units/Quantity.h"

namespace Vn::Expressions {

class VN_COMMONDATA_API Expression {
public:
    // Without a tree; the result is "Unknown Result".
    Expression() = default;
    // Parses `text`.  result() tells how that went.
    explicit Expression(std::wstring text, Units::UnitContext const & context = {});
    // The same for UTF-8.  If that is broken there is no tree: the result fails at the broken
    // piece, brokenByte() tells its place, and text() has U+FFFD for it.
    explicit Expression(std::string_view utf8, Units::UnitContext const & context = {});

    Expression(Expression &&) noexcept = default;
    Expression & operator=(Expression &&) noexcept = default;

    // Whether there is a tree.
    explicit operator bool() const { return m_node != nullptr; }

    // How the parse went.
    ParseResult const & result() const { return m_result; }
    // Where the UTF-8 was broken first, in bytes; nothing if it wasn't.
    std::optional<std::size_t> brokenByte() const { return m_brokenByte; }
    // A position of the result, which counts 16-bit characters, as one in the UTF-8 of the text.  A
    // position after the end counts as the end.
    std::size_t byteAt(std::size_t position) const;
    // The text as typed, and the context in which it was read.
    std::wstring const & text() const { return m_text; }
    Units::UnitContext const & context() const { return m_context; }

    // The value in internal units; none if there is no tree or it doesn't evaluate.
    std::optional<double> value() const;
    // The value in a unit, offset included: "20 C" is 68 in F.  None if the unit is of another
    // dimension, or the text isn't a unit, or there is no value.
    std::optional<double> value(Units::ComplexUnit const & unit) const;
    std::optional<double> value(std::wstring_view unit) const;
    std::optional<double> value(std::string_view utf8Unit) const;
    // The units of the value; none if there is no tree.
    std::optional<Units::ComplexUnit> units() const;
    // The value with its units: the expected ones of the context if it expects any, else units().
    // None if there is no value.
    std::optional<Units::Quantity> quantity() const;

    // The value for the user, by default with the user's settings and in the context of the text.
    // Empty if there is none, or if `display` expects units of another dimension.
    std::wstring formatted(Units::EUnitDisplayMode mode = Units::ValueAndUnit) const;
    std::wstring formatted(Units::EUnitDisplayMode mode,
                           Units::UnitDisplaySettings const & settings,
                           Units::UnitContext const & display) const;

    // The expression in standard spelling, by default with the factory settings.  Empty if there is
    // no tree.
    std::wstring rebuilt() const;
    std::wstring rebuilt(Units::EUnitDisplayMode mode,
                         Units::UnitDisplaySettings const & settings) const;

    // Whether the rebuilt text reads back, in the same context, to the same value and units, shown
    // alike, and rebuilds to itself.  Rounding in a rebuilt number can prevent that: 1/128 of an
    // inch comes back as 1/64.
    bool rebuiltReadsBack() const;
    // The same for a caller that has the text already: `rebuilt` is what rebuilt() answers.
    bool rebuiltReadsBack(std::wstring const & rebuilt) const;

    // The text to store: the rebuilt text if it reads back, else the text as typed, which always
    // does.
    std::wstring textToStore() const;

    // The tree, for the operations of Interface; null if there is none.  It stays the expression's.
    Node * node() const { return m_node.get(); }
    // Gives the tree to the caller, who ends it with Interface::destroy.
    Node * release();

private:
    struct Destroy {
        void operator()(Node * node) const { Interface::get()->destroy(node); }
    };

    std::wstring m_text;
    Units::UnitContext m_context;
    std::optional<std::size_t> m_brokenByte;
    ParseResult m_result;
    std::unique_ptr<Node, Destroy> m_node;
};

} // namespace Vn::Expressions

#endif
