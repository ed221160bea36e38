// Why a parse failed, more closely than its outcome says.

#ifndef VN_SERVER_COMMONDATA_EXPRESSIONS_PARSEFAILURE_H
#define VN_SERVER_COMMONDATA_EXPRESSIONS_PARSEFAILURE_H

namespace Vn::Expressions {

// The reasons.  Each says what the piece at fault is: the part of the text that ParseResult tells
// beside the reason.  The numbers stay as they are; new reasons are added at the end.
enum class EParseFailure : unsigned char {
    // There is a tree, or nothing was parsed.
    none = 0,
    // The text holds nothing but blanks.  The piece is empty, at 0.
    emptyText = 1,
    // The text ends after a sign.  The piece is empty, at the end.
    textEndsTooSoon = 2,
    // The piece is a word that isn't a unit, a function or a constant.
    unknownName = 3,
    // The piece is a character that the language doesn't have, or "=".
    unusableCharacter = 4,
    // The piece is a number whose exponent is missing: "2E".
    numberIncomplete = 5,
    // No operand follows the piece, which is an operator, a sign or ";".
    operandMissing = 6,
    // No operand stands in front of the piece, which is an operator or ";".
    leftOperandMissing = 7,
    // No operator stands in front of the piece: a number, a word or an opening bracket after what
    // is complete already.
    operatorMissing = 8,
    // A number stands right after a fraction, which is the piece: "7/2" of "7/2.2".
    numberAfterFraction = 9,
    // The piece is a unit after a closing bracket.  Units stand after numbers and constants.
    unitAfterBracket = 10,
    // The piece is an opening bracket that isn't closed.
    bracketNotClosed = 11,
    // The piece is a closing bracket that closes none.
    bracketClosesNone = 12,
    // The piece is a pair of brackets with nothing in it.
    emptyBrackets = 13,
    // The piece is a ";" that stands in no brackets of a function.
    semicolonOutsideFunction = 14,
    // The piece is a function without brackets after it.
    functionWithoutBrackets = 15,
    // The piece is a function that takes another count of arguments.
    wrongArgumentCount = 16,
    // The piece is the bracket, function or sign that is in more of them than
    // Limits::c_nestingLevels.
    nestedTooDeep = 17,
    // The piece is "^" after a unit, with what follows: that isn't a whole number above zero.
    exponentOfUnit = 18,
    // Units have more factors than Limits allows: one unit, or all of the expression.  The piece is
    // the unit, the exponent or the operator that would make them.
    unitTooLong = 19,
    // The piece can't stand in brackets of units, such as those after "3 cm /" if they begin with a
    // unit.
    otherThanUnitsInBrackets = 20,
    // The piece is an operator or a function with operands of different dimensions.
    differentUnits = 21,
    // The piece is "^" or a function whose exponent has units, or isn't whole though the base has
    // units.
    unitsOfPower = 22,
    // The piece is a function whose argument has units of another dimension than the function
    // takes.
    unitsOfArgument = 23,
    // The piece is all of the expression, whose units aren't of the expected dimension.
    otherThanExpectedUnits = 24
};

} // namespace Vn::Expressions

#endif
