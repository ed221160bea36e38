#include "Console/Documents/EntityTexts.h"

#include <iterator>

#include "Console/Documents/UnitSystems.h"
#include "Console/Messages.h"
#include "Console/Texts.h"
#include "Console/UnitTexts.h"
#include "Platform/Base/InterfaceId.h"
#include "Platform/Base/Text.h"
#include "Platform/DataModel/IRenameTarget.h"
#include "Platform/DataModel/MetaType.h"
#include "Server/CommonData/Managed/ManagedGroupEntity.h"
#include "Server/CommonData/Units/UnitDisplaySettings.h"

namespace Vn::Console {

namespace {

struct Kind {
    std::string_view className;
    wchar_t const * word; // a message
};

constexpr Kind c_kinds[] = {
    {"CommonBaseEntity", tr(L"entity")},
    {"CommonBaseGroupEntity", tr(L"group")},
    {"CommonBaseRootCollection", tr(L"root collection")},
    {"CommonDataAssetSettings", tr(L"settings")},
    {"CustomGroup", tr(L"custom group")},
    {"CustomGroups", tr(L"custom groups")},
    {"ManagedRootCollection", tr(L"root collection")},
    {"NamedView", tr(L"view")},
    {"NamedViews", tr(L"views")},
    {"UnitSystem", tr(L"unit system")},
    {"UnitSystemChoiceById", tr(L"unit")},
    {"UnitSystemChoiceByUnit", tr(L"unit")},
    {"UnitSystems", tr(L"unit systems")},
};

std::wstring gistOf(Units::UnitSystemChoice const & choice) {
    std::wstring const purpose = purposeOf(choice);
    std::wstring const unit = unitText(choice.units(), Units::UnitDisplaySettings::standard());
    return message(L"%1%: %2%", purpose.empty() ? choice.name() : purpose,
                   unit.empty() ? choice.storedUnitString() : unit);
}

std::wstring gistOf(Units::UnitSystem const & system) {
    system.initializeIfNeeded(); // the choices below it have their units from then on
    return Text::fromUtf8(system.id()) + (system.name().empty() ? L"" : L", ") +
           (system.name().empty() ? L"" : inQuotes(system.name()));
}

std::wstring gistOf(Managed::ManagedGroupEntity const & group) {
    unsigned const count = group.children();
    if (count == 0) return message(L"empty");
    return counted(count, tr(L"%1% entity"), tr(L"%1% entities"));
}

} // namespace

std::string className(Entity const & entity) {
    std::string name(entity.metaType()->name());
    constexpr std::string_view c_end = "MetaType";
    if (name.ends_with(c_end)) name.resize(name.size() - c_end.size());
    return name;
}

std::wstring kindOf(Entity const & entity) {
    std::string const name = className(entity);
    for (Kind const & kind : c_kinds)
        if (kind.className == name) return message(kind.word);
    return printable(Text::fromUtf8(name));
}

std::wstring gistOf(Entity const & entity) {
    std::wstring text;
    if (auto const * const choice = query<Units::UnitSystemChoice>(&entity))
        text = gistOf(*choice);
    else if (auto const * const system = query<Units::UnitSystem>(&entity))
        text = gistOf(*system);
    else if (auto const * const group = query<Managed::ManagedGroupEntity>(&entity))
        text = gistOf(*group);
    // What has a name: a view, or an entity of another add-in.
    auto * const named = query<DataModel::IRenameTarget>(const_cast<Entity *>(&entity));
    std::wstring const name = named ? named->renameText() : L"";
    if (text.empty())
        text = name;
    else if (!name.empty() && name != text)
        text = message(L"%1%, %2%", inQuotes(name), text);
    return printable(clipped(text));
}

} // namespace Vn::Console
