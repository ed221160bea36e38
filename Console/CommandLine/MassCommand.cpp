#include "Console/CommandLine/MassCommand.h"

#include <array>
#include <map>
#include <ostream>

#include <nlohmann/json.hpp>

#include "Console/CommandLine/ExitStatus.h"
#include "Console/Documents/Hosting.h"
#include "Console/Failure.h"
#include "Console/Messages.h"
#include "Console/Terminal/Table.h"
#include "Console/Texts.h"
#include "Console/UnitTexts.h"
#include "Platform/Base/InterfaceId.h"
#include "Platform/Base/StringTable.h"
#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/Expression.h"
#include "Server/CommonData/Managed/ManagedEntity.h"
#include "Server/CommonData/MassProperties/IMassPropertyCalculator.h"
#include "Server/CommonData/MassProperties/MassProperties.h"
#include "Server/CommonData/Units/SimpleUnits.h"
#include "Server/CommonData/Units/UnitDisplaySettings.h"

namespace Vn::Console {

namespace {

using CommonData::IComponentTraversalContext;
using CommonData::MassProperties;
using Expressions::Expression;
using Units::ComplexUnit;
using Units::SimpleUnit;
using Units::UnitContext;

// A box of one material.  It heeds all four overrides: the density is the mass by the volume if
// only the mass is overridden, and the mass otherwise follows the density.
class Box final
    : public Managed::Persisted<Box, Managed::ManagedEntity, CommonData::IMassPropertyCalculator> {
public:
    static constexpr Managed::PersistedClass c_class{"Vn::Console::Box",
                                                     "6F0B2C1E-52C5-4E0C-9C39-0B7E1B8E5A10", 0};
    static EntityMetaType * s_metaType();
    static StrongRefCreator<Box> make(Segment * segment) { return create(segment); }

    MassProperties & record() { return m_record; }
    void edges(std::array<double, 3> const & edges) { m_edges = edges; }
    void material(PhysicalMaterial const * material) { m_pMaterial = material; }

    void calculate(MassProperties const * record, double * volume, double * area, double * mass,
                   double * density, IComponentTraversalContext *, bool) override {
        auto const [a, b, c] = m_edges;
        double v = a * b * c;
        record->isVolumeOverridden(&v);
        double s = 2 * (a * b + b * c + c * a);
        record->isAreaOverridden(&s);
        double d = m_pMaterial->density();
        double m = 0;
        bool const hasDensity = record->isDensityOverridden(&d);
        if (!record->isMassOverridden(&m))
            m = d * v;
        else if (!hasDensity)
            d = m / v;
        if (volume) *volume = v;
        if (area) *area = s;
        if (mass) *mass = m;
        if (density) *density = d;
    }
    PhysicalMaterial const * commonPhysicalMaterial(IComponentTraversalContext *, bool) override {
        return m_pMaterial;
    }
    bool isMeasurable() const override { return true; }

private:
    friend class Managed::PersistedAccess;
    explicit Box(Segment * segment) : Persisted(segment) {
        m_record.installOwner(this);
        initializeMemberSetIfNeeded();
    }
    Box(Segment * segment, unsigned long long id) : Persisted(segment, id) {
        m_record.installOwner(this);
        initializeMemberSetIfNeeded();
    }
    void initializeMemberSet(unsigned, MemberSet * set) {
        Managed::addMember(set, "massProperties", m_record, MassProperties::s_metaType());
    }

    MassProperties m_record;
    std::array<double, 3> m_edges{};
    PhysicalMaterial const * m_pMaterial = nullptr;
};

class BoxMetaType final : public Managed::PersistedMetaType<Box> {};
BoxMetaType s_box;

EntityMetaType * Box::s_metaType() { return &s_box; }

// The units in which the quantities are shown, for numbers without one.
struct Shown {
    explicit Shown(StrongRef<Units::UnitSystem> const & system)
        : length(MassProperties::lengthUnit(system)), mass(MassProperties::massUnit(system)) {}

    // The length to a power, and the mass to another.
    ComplexUnit units(int lengths, int masses) const {
        ComplexUnit units;
        for (int i = 0; i < masses; ++i) units.addToNumerator(mass);
        for (int i = 0; i < lengths; ++i) units.addToNumerator(length);
        for (int i = lengths; i < 0; ++i) units.addToDenominator(length);
        return units;
    }

    SimpleUnit const * const length;
    SimpleUnit const * const mass;
};

// Reads a positive quantity of the dimension of `units`; what is wrong is told on `err`.
bool readQuantity(std::wstring const & text, wchar_t const * what, ComplexUnit const & units,
                  double & value, std::ostream & err) {
    UnitContext const context(&units);
    Expression const expression(text, context);
    if (!expression) {
        err << "vnconsole: "
            << messageUtf8(L"%1%: %2%", message(what), Text::fromUtf8(failureLines(expression)));
        return false;
    }
    std::optional<double> const read = expression.value();
    if (!read || !(*read > 0)) {
        wchar_t const * const why = read ? tr(L"%1% isn't above zero") : tr(L"%1% has no value");
        told(message(L"%1%: %2%", message(what), message(why, inQuotes(text))), err);
        return false;
    }
    value = *read;
    return true;
}

struct Quantity {
    wchar_t const * name;
    wchar_t const * option;
    int lengths;
    int masses;
    void (MassProperties::*override)(double);
};
constexpr Quantity c_quantities[] = {
    {L"volume", L"--override volume", 3, 0, &MassProperties::overrideVolume},
    {L"area", L"--override area", 2, 0, &MassProperties::overrideArea},
    {L"mass", L"--override mass", 0, 1, &MassProperties::overrideMass},
    {L"density", L"--override density", -3, 1, &MassProperties::overrideDensity}};

int readOverride(std::wstring const & text, Shown const & shown, MassProperties & record,
                 std::ostream & err) {
    std::size_t const equals = text.find(L'=');
    std::wstring_view const name = trimmed(std::wstring_view(text).substr(0, equals));
    for (Quantity const & quantity : c_quantities) {
        if (equals == text.npos || !Text::foldedEqual(name, std::wstring_view(quantity.name)))
            continue;
        double value = 0;
        if (!readQuantity(text.substr(equals + 1), quantity.option,
                          shown.units(quantity.lengths, quantity.masses), value, err))
            return ExitBadInput;
        (record.*quantity.override)(value);
        return ExitGood;
    }
    told(message(L"--override: %1% isn't volume=VALUE, area=VALUE, mass=VALUE or density=VALUE",
                 inQuotes(text)),
         err);
    return ExitBadUsage;
}

void write(std::map<std::wstring, std::wstring> const & all, bool json, std::ostream & out) {
    // In the order of the questions, and not of the map.
    struct Row {
        char const * key;
        wchar_t const * text;
    };
    constexpr Row c_rows[] = {
#define VN_MASS_PROPERTY_TEXT(key, text) {#key, text},
#include "Server/CommonData/MassProperties/MassPropertyTexts.inc"
    };
    Table table;
    nlohmann::ordered_json object;
    for (Row const & row : c_rows) {
        std::wstring const name =
            StringTable::getLocalizedString("VnCommonData", row.key, row.text);
        auto const found = all.find(name);
        if (found == all.end()) continue;
        table.add({name, printable(found->second)});
        std::string member = Text::toUtf8(row.text); // "Volume", which is "volume" there
        member.front() = static_cast<char>(member.front() - 'A' + 'a');
        object[member] = Text::toUtf8(found->second);
    }
    if (json)
        out << object.dump() << '\n';
    else
        out << table.toUtf8();
}

} // namespace

int runMass(MassOptions const & options, std::ostream & out, std::ostream & err) {
    OpenedUnits units;
    if (int const status = openUnits(options.units, units, err); status != ExitGood) return status;
    Shown const shown(units.system);
    std::array<double, 3> edges{};
    constexpr wchar_t const * c_names[] = {tr(L"the first edge"), tr(L"the second edge"),
                                           tr(L"the third edge")};
    for (std::size_t i = 0; i < edges.size(); ++i)
        if (!readQuantity(options.edges[i], c_names[i], shown.units(1, 0), edges[i], err))
            return ExitBadInput;
    double density = 0;
    if (!readQuantity(options.density, L"--density", shown.units(-3, 1), density, err))
        return ExitBadInput;
    PhysicalMaterial const material(options.material.value_or(message(L"unnamed")), density);

    StrongRef<Asset> asset;
    if (Status const status = makeDocument(asset); !status) return told(status, err);
    StrongRef<Box> const box = Box::make(asset->segment(SegmentType::DesignSegment));
    box->edges(edges);
    box->material(&material);
    for (std::wstring const & text : options.overrides)
        if (int const status = readOverride(text, shown, box->record(), err); status != ExitGood)
            return status;
    std::map<std::wstring, std::wstring> all;
    box->record().getAllMassProperties(all, units.system, nullptr, false);
    write(all, options.json, out);
    return ExitGood;
}

} // namespace Vn::Console
