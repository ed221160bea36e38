// The text commands of the subject area "Units".

#include <typeinfo>

#include <boost/format.hpp>
#include <boost/lexical_cast.hpp>

#include "Platform/Base/LocalizedText.h"
#include "Platform/Base/TextCommand.h"
#include "Server/CommonData/AddIn/LoadOrder.h"
#include "Server/CommonData/Expressions/ValueFormatter.h"
#include "Server/CommonData/Units/SimpleUnitRegistryInternal.h"
#include "Server/CommonData/Units/SimpleUnits.h"
#include "Server/CommonData/Units/UnitDisplaySettings.h"

namespace Vn::Units {

namespace {

constexpr wchar_t c_subject[] = L"Units";
constexpr wchar_t c_lineEnd[] = L"\r\n";

std::vector<SimpleUnit const *> allUnits() {
    std::vector<SimpleUnit const *> units;
    SimpleUnitRegistry::get().allUnits(units);
    return units;
}

class TextCommandSubjectAreaUnits : public TextCommandSubjectArea {
public:
    TextCommandSubjectAreaUnits()
        : TextCommandSubjectArea(
              c_subject, localizable(L"Commands that operate on the Unit subsystem"), false) {}
};

class TextCmdUnitsList : public TextCommand {
public:
    TextCmdUnitsList()
        : TextCommand(c_subject, L"List",
                      localizable(L"[/Verbose] Lists all the simple units in Vantor"), "", false,
                      true) {}

private:
    TextCommandResult onRun(TextCommandParameters const & parameters) override {
        std::vector<SimpleUnit const *> const units = allUnits();
        UnitDisplaySettings const & settings = UnitDisplaySettings::get();
        std::wstring answer;
        if (parameters.hasFlag(L"verbose")) {
            answer = (boost::wformat(L"There are %1% simple units", std::locale::classic()) %
                      units.size())
                         .str() +
                     c_lineEnd;
            for (SimpleUnit const * const unit : units) answer += unit->toString() + c_lineEnd;
            return {0, std::move(answer)};
        }
        for (SimpleUnit const * const unit : units) {
            if (unit->magnitude() != 1.0) continue;
            answer += unit->name(settings) + L" - " + unit->abbreviation(settings);
            if (unit->hasSymbol()) answer += L" - " + unit->symbol(settings);
            answer += c_lineEnd;
        }
        return {0, std::move(answer)};
    }
};

// What the cast throws, with a text that says what was expected.
class NotAMagnitude : public boost::bad_lexical_cast, public TextCommandFailure {
public:
    explicit NotAMagnitude(std::wstring const & typed)
        : boost::bad_lexical_cast(typeid(std::wstring), typeid(int)),
          TextCommandFailure(localized(L"The magnitude is a power of ten, a whole number such as 3 "
                                       L"or -6, which \"%1%\" isn't",
                                       Text::clipped(Text::printable(typed)))) {}
};

class TextCmdUnitsMakeForMagnitude : public TextCommand {
public:
    TextCmdUnitsMakeForMagnitude()
        : TextCommand(
              c_subject, L"MakeForMagnitude",
              localizable(L"[MagnitudePower] Makes simple units for the specified magnitude"), "",
              false, true) {}

private:
    TextCommandResult onRun(TextCommandParameters const & parameters) override {
        if (parameters.parameters() == 0)
            return {1, localized(L"Need to specify the magnitude to use")};
        int power = 0;
        if (!boost::conversion::try_lexical_convert(parameters.parameter(0), power))
            throw NotAMagnitude(parameters.parameter(0));
        double const magnitude = Expressions::valueFormatter::get()->integerPower(10.0, power);
        std::vector<SimpleUnit const *> const before = allUnits();
        for (SimpleUnit const * const unit : before)
            if (unit->supportsMagnitude())
                SimpleUnitRegistry::get().findOrClone(unit->identifier(), magnitude);
        return {0, localized(L"There were %1% simple units and there now are %2%", before.size(),
                             allUnits().size())};
    }
};

class TextCmdUnitsShowComplexUnits : public TextCommand {
public:
    TextCmdUnitsShowComplexUnits()
        : TextCommand(
              c_subject, L"ShowComplexUnits",
              localizable(L"Makes and displays complex units for all the simple units in Vantor"),
              "", false, true) {}

private:
    TextCommandResult onRun(TextCommandParameters const &) override {
        std::wstring answer;
        for (SimpleUnit const * const unit : allUnits()) {
            bool const isBase = unit->unitType() == BaseUnitKind;
            ComplexUnit const units =
                isBase ? ComplexUnit(unit)
                       : *static_cast<CompositeUnit const *>(unit)->internalComplexUnit();
            answer += units.toString() + c_lineEnd;
            units.toInternal(1.0);
            units.toThisUnit(1.0);
            if (isBase) {
                units.isBaseUnit(nullptr);
                exercise(ComplexUnit(static_cast<BaseUnit const *>(unit)->internalBaseUnit()));
            } else {
                exercise(units);
            }
        }
        return {0, std::move(answer)};
    }

    // Runs the operations of the algebra; its only answer is that it comes to its end.
    static void exercise(ComplexUnit const & units) {
        ComplexUnit copy = units;
        copy.addToNumerator(UnitMeter::get(1.0));
        copy.addToDenominator(UnitMeter::get(0.01));
        copy.addToNumerator(UnitMeter::get(0.01));
        copy.addToDenominator(UnitMeter::get(1.0));
        copy.invert();
        copy.multiplyBy(&units);
        copy = units;
    }
};

class TextCmdUnitsDisplayInternalUnit : public TextCommand {
public:
    TextCmdUnitsDisplayInternalUnit()
        : TextCommand(
              c_subject, L"DisplayInternalUnit",
              localizable(L"[/UnitOnly] [/ValueOnly] Displays the internal unit as a value for "
                          L"all the units"),
              "", false, true) {}

private:
    TextCommandResult onRun(TextCommandParameters const & parameters) override {
        EUnitDisplayMode mode = ValueAndUnit;
        if (parameters.hasFlag(L"UnitOnly")) mode = UnitOnly;
        if (parameters.hasFlag(L"ValueOnly")) mode = ValueOnly;
        std::wstring answer;
        for (SimpleUnit const * const unit : allUnits()) {
            answer += L"Internal of 1.0 displays as ";
            unit->appendReconstruction(answer, 1.0, mode, UnitDisplaySettings::get());
            answer += c_lineEnd;
        }
        return {0, std::move(answer)};
    }
};

TextCommandSubjectAreaUnits s_subjectArea VN_LOAD_UNIT_COMMANDS;
TextCmdUnitsList s_list VN_LOAD_UNIT_COMMANDS;
TextCmdUnitsMakeForMagnitude s_makeForMagnitude VN_LOAD_UNIT_COMMANDS;
TextCmdUnitsShowComplexUnits s_showComplexUnits VN_LOAD_UNIT_COMMANDS;
TextCmdUnitsDisplayInternalUnit s_displayInternalUnit VN_LOAD_UNIT_COMMANDS;

} // namespace

} // namespace Vn::Units
