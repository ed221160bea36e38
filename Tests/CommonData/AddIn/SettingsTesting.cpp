#include "Tests/CommonData/AddIn/SettingsTesting.h"

#include <bit>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <utility>

#include <gtest/gtest.h>

#include "Platform/Base/InterfaceId.h"
#include "Platform/DataModel/AssetAdapter.h"
#include "Platform/DataModel/DocumentFile.h"
#include "Platform/DataModel/GeometryMetaTypes.h"
#include "Platform/DataModel/Segment.h"

namespace Vn::CommonData {

namespace {

using Settings = CommonDataAssetSettings;

Bits bits(bool flag) { return {flag}; }
Bits bits(unsigned number) { return {number}; }
Bits bits(double number) { return {std::bit_cast<std::uint64_t>(number)}; }
Bits bits(Entity const * entity) { return {entity ? entity->id() : 0}; }
template <class Place>
Bits placeBits(Place const & place) {
    return {bits(place.x)[0], bits(place.y)[0], bits(place.z)[0]};
}
Bits bits(TgPoint3d const & point) { return placeBits(point); }
Bits bits(TgVector3d const & vector) { return placeBits(vector); }

template <class Value>
Setting row(char const * name, MemberMetaType * kind, Value (Settings::*get)() const,
            void (Settings::*set)(Value), Value standard, Value other) {
    return {name,
            kind,
            bits(standard),
            [get](Settings const & settings) { return bits((settings.*get)()); },
            [set, other](SettingsDocument const & document) { (document.settings().*set)(other); },
            true};
}

Setting vector(char const * name, TgVector3d (Settings::*get)() const,
               void (Settings::*set)(TgVector3d), TgVector3d standard) {
    return row(name, TgVector3dMetaType::get(), get, set, standard, TgVector3d(0.5, -3, 2));
}
Setting point(char const * name, TgPoint3d (Settings::*get)() const,
              void (Settings::*set)(TgPoint3d), TgPoint3d standard) {
    return row(name, TgPoint3dMetaType::get(), get, set, standard, TgPoint3d(4, 0.1, -7));
}
Setting number(char const * name, double (Settings::*get)() const, void (Settings::*set)(double),
               double standard) {
    return row(name, IntrinsicMetaType<double>::get(), get, set, standard, 2.75);
}
Setting projection(char const * name, unsigned (Settings::*get)() const,
                   void (Settings::*set)(unsigned), unsigned standard) {
    return row(name, IntrinsicMetaType<unsigned>::get(), get, set, standard, 4000000000U);
}
Setting flag(char const * name, bool (Settings::*get)() const, void (Settings::*set)(bool),
             bool standard) {
    return row(name, IntrinsicMetaType<bool>::get(), get, set, standard, !standard);
}
Setting mark(char const * name, bool (Settings::*get)() const, void (Settings::*set)(bool)) {
    Setting setting = flag(name, get, set, false);
    setting.isChange = false;
    return setting;
}

Setting activeUnitSystem() {
    return {"activeUnitSystem",
            PassiveRefMetaType::get(),
            {0},
            [](Settings const & settings) { return bits(settings.activeUnitSystem().get()); },
            [](SettingsDocument const & document) {
                document.settings().activateUnitSystem(document.system());
            },
            true};
}

Setting namedViews() {
    return {
        "namedViews",
        StrongRefMetaType::get(),
        {0},
        [](Settings const & settings) { return bits(settings.namedViews().get()); },
        [](SettingsDocument const & document) { document.settings().namedViews(document.views()); },
        false};
}

void expectDone(Status const & status) { EXPECT_TRUE(status.ok()) << status.toString(); }

} // namespace

SettingsDocument::SettingsDocument() : m_rAsset(Asset::make(nullptr)) {
    m_rAsset->adapter(std::make_unique<AssetAdapter>(m_rAsset.get()));
    StrongRef<Units::UnitSystems> const systems = Units::UnitSystems::make(segment());
    StrongRef<Units::UnitSystem> const system =
        Units::UnitSystem::make(systems, std::wstring(L"Millimeters"), "mm");
    segment()->addRoot(NameView::NamedViews::make(segment()), "NamedViews");
    StrongRef<Settings> const settings = Settings::make(segment());
}

SettingsDocument::SettingsDocument(std::filesystem::path const & file) {
    Status const status = DocumentFile::load(file, nullptr, m_rAsset);
    if (!status) throw std::runtime_error(status.toString());
    m_rAsset->adapter(std::make_unique<AssetAdapter>(m_rAsset.get()));
}

Segment * SettingsDocument::segment() const {
    return m_rAsset->segment(SegmentType::DesignSegment);
}
CommonDataAssetSettings * SettingsDocument::found() const {
    return query<Settings>(m_rAsset->adapter()->assetSettings().get());
}
StrongRef<Units::UnitSystem> SettingsDocument::system() const {
    return Units::UnitSystems::find(segment())->unitSystem(0);
}
StrongRef<NameView::NamedViews> SettingsDocument::views() const {
    StrongRef<Entity> const root = segment()->rootEntity("NamedViews");
    return StrongRef<NameView::NamedViews>(query<NameView::NamedViews>(root.get()));
}

void SettingsDocument::undo() const { expectDone(history().undo()); }
void SettingsDocument::redo() const { expectDone(history().redo()); }
void SettingsDocument::saveAs(TemporaryFile const & file) const {
    expectDone(DocumentFile::saveAs(*m_rAsset, file.path()));
}
void SettingsDocument::save() const { expectDone(DocumentFile::save(*m_rAsset)); }

std::vector<Bits> SettingsDocument::values() const {
    std::vector<Bits> values;
    for (Setting const & setting : allSettings()) values.push_back(setting.get(settings()));
    return values;
}

std::vector<Bits> valuesIn(std::filesystem::path const & file) {
    return SettingsDocument(file).values();
}

void PrintTo(Setting const & setting, std::ostream * out) { *out << setting.name; }

std::vector<Setting> const & allSettings() {
    using S = Settings;
    static std::vector<Setting> const s_settings{
        activeUnitSystem(),
        mark("settingsInitialized", &S::settingsInitialized, &S::settingsInitialized),
        vector("defaultSceneFront", &S::defaultSceneFront, &S::defaultSceneFront, {-1, 0, 0}),
        vector("sceneFront", &S::sceneFront, &S::sceneFront, {-1, 0, 0}),
        vector("defaultSceneUp", &S::defaultSceneUp, &S::defaultSceneUp, {0, 0, 1}),
        vector("sceneUp", &S::sceneUp, &S::sceneUp, {0, 0, 1}),
        number("sceneBoundRadius", &S::sceneBoundRadius, &S::sceneBoundRadius, 1.8),
        number("globalBoundRadius", &S::globalBoundRadius, &S::globalBoundRadius, 1.8),
        point("sceneBoundBoxCenter", &S::sceneBoundBoxCenter, &S::sceneBoundBoxCenter, {0, 0, 0}),
        vector("sceneBoundBoxExtent", &S::sceneBoundBoxExtent, &S::sceneBoundBoxExtent,
               {1.8, 1.8, 1.8}),
        flag("locktoSelection", &S::locktoSelection, &S::locktoSelection, false),
        flag("fitHome", &S::fitHome, &S::fitHome, true),
        flag("perspWithOrthoFaces", &S::perspWithOrthoFaces, &S::perspWithOrthoFaces, false),
        point("defaultHomePos", &S::defaultHomePosition, &S::defaultHomePosition,
              {11.75, -3.15, 6.75}),
        point("defaultHomeTarget", &S::defaultHomeTarget, &S::defaultHomeTarget, {-1.5, 5.45, 2.0}),
        vector("defaultHomeUp", &S::defaultHomeUp, &S::defaultHomeUp, {0, 0, 1}),
        projection("defaultHomeProjection", &S::defaultHomeProjection, &S::defaultHomeProjection,
                   2),
        number("defaultHomeExtentsWidth", &S::defaultHomeExtentsWidth, &S::defaultHomeExtentsWidth,
               0.6),
        number("defaultHomeExtentsHeight", &S::defaultHomeExtentsHeight,
               &S::defaultHomeExtentsHeight, 0.6),
        point("currHomePos", &S::currentHomePosition, &S::currentHomePosition,
              {11.75, -3.15, 6.75}),
        point("currHomeTarget", &S::currentHomeTarget, &S::currentHomeTarget, {-1.5, 5.45, 2.0}),
        vector("currHomeUp", &S::currentHomeUp, &S::currentHomeUp, {0, 0, 1}),
        projection("currHomeProjection", &S::currHomeProjection, &S::currHomeProjection, 2),
        number("currHomeExtentsWidth", &S::currHomeExtentsWidth, &S::currHomeExtentsWidth, 0.6),
        number("currHomeExtentsHeight", &S::currHomeExtentsHeight, &S::currHomeExtentsHeight, 0.6),
        namedViews()};
    return s_settings;
}

} // namespace Vn::CommonData
