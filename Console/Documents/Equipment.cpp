#include "Console/Documents/Equipment.h"

#include "Console/Messages.h"
#include "Platform/Base/InterfaceId.h"
#include "Platform/Base/Text.h"
#include "Platform/DataModel/AssetAdapter.h"
#include "Server/CommonData/Units/SimpleUnits.h"
#include "Server/CommonData/Units/UnitDisplaySettings.h"
#include "Server/CommonData/Units/UnitSystem.h"
#include "Server/CommonData/Units/UnitSystemChoice.h"

namespace Vn::Console {

using CommonData::CommonDataAssetSettings;
using NameView::NamedViews;
using Units::SimpleUnit;
using Units::UnitDisplaySettings;
using Units::UnitSystem;
using Units::UnitSystems;

namespace {

SimpleUnit const * unitOf(UnitDisplaySettings::UNIT_TYPE type) {
    switch (type) {
    case UnitDisplaySettings::Centimeter:
        return Units::UnitMeter::get(0.01);
    case UnitDisplaySettings::Meter:
        return Units::UnitMeter::get(1.0);
    case UnitDisplaySettings::Inch:
        return Units::UnitInch::get();
    case UnitDisplaySettings::Foot:
        return Units::UnitFoot::get();
    default:
        return Units::UnitMeter::get(0.001);
    }
}

std::wstring elseUnder(std::string const & key) {
    return message(L"something else stands under \"%1%\"", Text::widen(key));
}

} // namespace

StrongRef<CommonDataAssetSettings> settingsOf(Segment const & design) {
    StrongRef<Entity> const root = design.rootEntity(AssetSettings::segmentRootId());
    return StrongRef<CommonDataAssetSettings>(query<CommonDataAssetSettings>(root.get()));
}

StrongRef<NamedViews> viewsOf(Segment const & design) {
    StrongRef<CommonDataAssetSettings> const settings = settingsOf(design);
    return settings ? settings->namedViews() : nullptr;
}

std::wstring whyNoSettings(Segment const & design) {
    bool const isFree = !design.rootEntity(AssetSettings::segmentRootId());
    return isFree || settingsOf(design) ? L"" : elseUnder(AssetSettings::segmentRootId());
}

std::wstring whyNoViews(Segment const & design) {
    if (std::wstring why = whyNoSettings(design); !why.empty()) return why;
    StrongRef<Entity> const root = design.rootEntity(c_viewsKey);
    return !root || query<NamedViews>(root.get()) || viewsOf(design) ? L"" : elseUnder(c_viewsKey);
}

void equip(Segment & design) {
    if (!whyNoSettings(design).empty()) return;
    StrongRef<CommonDataAssetSettings> settings = settingsOf(design);
    if (!settings) settings = CommonDataAssetSettings::make(&design);
    if (settings->namedViews() || !whyNoViews(design).empty()) return;
    StrongRef<Entity> const root = design.rootEntity(c_viewsKey);
    if (root) return settings->namedViews(StrongRef<NamedViews>(query<NamedViews>(root.get())));
    StrongRef<NamedViews> const views = NamedViews::make(&design);
    design.addRoot(views, c_viewsKey);
    settings->namedViews(views);
    NamedViews::makeDefaultNamedViews(views);
}

void makePreferredUnitSystem(Segment & design) {
    StrongRef<CommonDataAssetSettings> const settings = settingsOf(design);
    if (!settings || design.rootEntity(UnitSystems::segmentRootId())) return;
    StrongRef<UnitSystems> const systems = UnitSystems::make(&design);
    StrongRef<UnitSystem> const system =
        UnitSystem::make(systems, std::wstring(L"Document units"), "document");
    auto const type = UnitDisplaySettings::get().generalUnit();
    StrongRef<Units::UnitSystemChoice> const length =
        Units::UnitSystemChoiceByUnit::make(system, unitOf(type));
    // The length that was chosen stays.
    if (type == UnitDisplaySettings::Inch || type == UnitDisplaySettings::Foot)
        system->completeAsImperial();
    else
        system->completeAsMKS();
    settings->activateUnitSystem(system);
}

} // namespace Vn::Console
