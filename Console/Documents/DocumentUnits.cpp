#include "Console/Documents/DocumentUnits.h"

#include <ostream>

#include "Console/CommandLine/ExitStatus.h"
#include "Console/Documents/Hosting.h"
#include "Console/Documents/Session.h"
#include "Console/Documents/UnitSystems.h"
#include "Console/Evaluation.h"
#include "Console/Messages.h"
#include "Console/Texts.h"
#include "Platform/Base/Text.h"
#include "Server/CommonData/Units/SimpleUnit.h"
#include "Server/CommonData/Units/UnitLookup.h"
#include "Server/CommonData/Units/UnitSystemChoice.h"

namespace Vn::Console {

namespace {

using Units::ComplexUnit;
using Units::ESimpleUnitType;
using Units::SimpleUnit;
using Units::UnitContext;

// The first unit of a kind, which the system is then asked to replace.
SimpleUnit const * firstOfKind(ESimpleUnitType kind) {
    for (SimpleUnit const * const unit : Units::listUnits())
        if (unit->simpleUnitType() == kind && unit->magnitude() == 1.0) return unit;
    return nullptr;
}

// What a system has for a kind: the choice, or a translation of what the kind consists of.
UnitContext contextOfKind(DocumentUnits const & options, OpenedUnits const & units,
                          ESimpleUnitType kind) {
    SimpleUnit const * const unit = firstOfKind(kind);
    ComplexUnit base;
    unit->asComplexUnit().produceBaseRepresentation(base);
    bool const isChosen = static_cast<bool>(units.system->find(kind));
    if (options.id) {
        std::string const id = Text::toUtf8(*options.id);
        return isChosen ? UnitContext(units.system, id, unit)
                        : UnitContext(units.system, id, &base);
    }
    return isChosen ? UnitContext(units.system, unit) : UnitContext(units.system, &base);
}

} // namespace

int openUnits(DocumentUnits const & options, OpenedUnits & units, std::ostream & err) {
    if (!options.file) {
        if (!options.system && !options.kind && !options.id) return ExitGood;
        wchar_t const * const option = options.system ? L"--system"
                                       : options.kind ? L"--kind"
                                                      : L"--id";
        told(message(L"%1% asks the unit systems of a document; name one with --document", option),
             err);
        return ExitBadUsage;
    }
    if (Status const status = loadDocument(pathOf(*options.file), units.asset); !status)
        return told(status, err);
    std::wstring const why = findUnitSystem(units.asset->segment(SegmentType::DesignSegment),
                                            options.system, units.system);
    return why.empty() ? ExitGood
                       : told(message(L"%1%: %2%", shown(pathOf(*options.file)), why), err);
}

int makeDocumentContext(DocumentUnits const & options, std::optional<std::wstring> const & unit,
                        OpenedUnits const & units, UnitContext & context, std::ostream & err) {
    if (unit && options.kind) {
        told(message(L"--unit and --kind ask for different things"), err);
        return ExitBadUsage;
    }
    if (!units.system) {
        bool const isGood = !unit || readUnitContext(*unit, "vnconsole: --unit", context, err);
        return isGood ? ExitGood : ExitBadUsage;
    }
    if (options.kind) {
        ESimpleUnitType kind{};
        std::wstring const why = findUnitKind(*options.kind, kind);
        if (!why.empty()) {
            told(message(L"%1%: %2%", L"--kind", why), err);
            return ExitBadUsage;
        }
        context = contextOfKind(options, units, kind);
        return ExitGood;
    }
    if (unit) {
        UnitContext ignored;
        if (!readUnitContext(*unit, "vnconsole: --unit", ignored, err)) return ExitBadUsage;
        context = options.id ? UnitContext(units.system, Text::toUtf8(*options.id), *unit)
                             : UnitContext(units.system, *unit);
        return ExitGood;
    }
    if (!options.id) {
        context = UnitContext(units.system);
        return ExitGood;
    }
    // Nothing stands in for a key that isn't there.
    if (!units.system->find(Text::toUtf8(*options.id))) {
        StrongRef<Units::UnitSystemChoice> kind;
        std::wstring const why = findUnitChoice(*units.system, *options.id, kind);
        return told(
            why.empty()
                ? message(
                      L"the unit system has %1% as a kind and not as a key; --kind asks for kinds",
                      inQuotes(*options.id))
                : why,
            err);
    }
    context = UnitContext(units.system, Text::toUtf8(*options.id),
                          static_cast<SimpleUnit const *>(nullptr));
    return ExitGood;
}

} // namespace Vn::Console
