// The command that writes what a document shows as a model.

#include <memory>
#include <string>

#include "Console/Documents/EntityTexts.h"
#include "Console/Documents/Equipment.h"
#include "Console/Documents/Interruption.h"
#include "Console/Documents/Operations.h"
#include "Console/Documents/OutputFile.h"
#include "Console/Documents/Session.h"
#include "Console/Documents/ShownViews.h"
#include "Console/Messages.h"
#include "Console/Texts.h"
#include "Platform/Base/InterfaceId.h"
#include "Platform/Base/Text.h"
#include "Platform/DataModel/IRenameTarget.h"
#include "Platform/Picture/Gltf.h"
#include "Platform/Picture/ShownParts.h"
#include "Platform/Scene/SceneAssetAdapter.h"
#include "Server/CommonData/AddIn/CommonDataAssetSettings.h"
#include "Server/CommonData/MassProperties/IMassPropertyCalculator.h"
#include "Server/CommonData/MassProperties/MassProperties.h"
#include "Server/CommonData/NamedViews/NamedViews.h"

namespace Vn::Console {

namespace {

using CommonData::IMassPropertyCalculator;
using CommonData::MassProperties;
using Parameters = TextCommandParameters;
using Picture::NodeFacts;
using Result = TextCommandResult;

constexpr wchar_t c_refusal[] = L"cannot export: %1%";

// What is known of the entities that show themselves.  Nothing depends on the user's language.
class EntityFacts final : public Picture::INodeFacts {
public:
    NodeFacts facts(Scene::INodeSource & source, bool isPart) override {
        endIfInterrupted();
        NodeFacts facts;
        Entity * const entity = query<Entity>(&source);
        if (!entity) return facts;
        std::string const kind = className(*entity);
        if (auto * const named = query<DataModel::IRenameTarget>(entity))
            facts.name = named->renameText();
        if (facts.name.empty()) facts.name = Text::fromUtf8(kind);
        facts.values.emplace_back("entity", std::uint64_t{entity->id()});
        facts.values.emplace_back("class", Text::fromUtf8(kind));
        if (isPart) addMeasures(*entity, facts.measures);
        return facts;
    }

private:
    static void addMeasures(Entity & entity, NodeFacts::Values & measures) {
        auto * const calculator = query<IMassPropertyCalculator>(&entity);
        MassProperties const * const record = calculator ? MassProperties::of(&entity) : nullptr;
        if (!record || record->owningEntity() != &entity || !calculator->isMeasurable()) return;
        struct Quantity {
            char const * name;
            double value;
        };
        for (auto const & [name, value] : {Quantity{"volume", record->volume(nullptr, false)},
                                           Quantity{"area", record->area(nullptr, false)},
                                           Quantity{"mass", record->mass(nullptr, false)},
                                           Quantity{"density", record->density(nullptr, false)}})
            if (value >= 0) measures.emplace_back(name, value); // -1 is what isn't known
        if (PhysicalMaterial const * const material =
                record->getCommonPhysicalMaterial(nullptr, false))
            measures.emplace_back("material", material->name());
    }
};

// Those that have a camera.  One that can't be fitted has no size, and is left out by the format.
std::vector<Picture::GltfView> viewsOf(DocumentSession const & session,
                                       Vrx::Graphics::GroupNode const * top) {
    std::vector<Picture::GltfView> found;
    Segment const & design = session.design();
    StrongRef<NameView::NamedViews> const views = Console::viewsOf(design);
    if (!views) return found;
    auto const bounds = Picture::ShownParts(top).bounds();
    for (unsigned i = 0; i < views->children(); ++i) {
        endIfInterrupted();
        StrongRef<NameView::NamedView> const view = views->namedView(i);
        if (!view || !view->camera()) continue;
        Aim const aim = shownAim(design, *view);
        Picture::View shown = shownView(design, aim);
        static_cast<void>(fitIfNeeded(aim, bounds, 1, shown));
        found.push_back({view->name(), shown});
    }
    return found;
}

} // namespace

Result exportModel(DocumentSession & session, Parameters const & parameters) {
    std::wstring const & name = parameters.parameter(0);
    if (std::wstring const why = whyNoOutput(name, {L".gltf", L".glb"}, session.asset().file());
        !why.empty())
        return cannot(c_refusal, why);
    auto const * const adapter = query<Scene::SceneAssetAdapter>(session.asset().adapter());
    if (!adapter || !adapter->scene())
        return cannot(c_refusal, message(L"%1% has no graph", session.name()));
    EntityFacts facts;
    Picture::GltfOptions options;
    options.binary = hasExtension(name, L".glb");
    if (auto const settings = settingsOf(session.design())) {
        options.up = settings->sceneUp();
        options.front = settings->sceneFront();
    }
    if (parameters.hasFlag(L"Views")) options.views = viewsOf(session, adapter->scene());
    options.facts = &facts;
    options.generator = "vnconsole";
    Picture::GltfModel model;
    if (Status const status = Picture::makeGltf(adapter->scene(), options, model); !status)
        return cannot(c_refusal, printable(statusText(status)));
    if (std::wstring const why = writeOutput(name, model.bytes); !why.empty())
        return cannot(c_refusal, why);
    std::wstring text = counted(model.parts, tr(L"exported %1% shape to %2%"),
                                tr(L"exported %1% shapes to %2%"), shown(pathOf(name)));
    if (model.leftOut > 0)
        text += L'\n' +
                counted(model.leftOut,
                        tr(L"left out: %1% shape with numbers that are too large or not finite"),
                        tr(L"left out: %1% shapes with numbers that are too large or not finite"));
    if (model.badViews > 0)
        text += L'\n' + counted(model.badViews, tr(L"left out: %1% view that shows nothing"),
                                tr(L"left out: %1% views that show nothing"));
    return {0, text};
}

} // namespace Vn::Console
