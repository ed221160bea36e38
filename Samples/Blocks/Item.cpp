#include "Samples/Blocks/Item.h"

#include <cmath>
#include <unordered_set>
#include <utility>

#include "Platform/Base/InterfaceId.h"
#include "Platform/DataModel/EntityChange.h"
#include "Platform/DataModel/GeometryMetaTypes.h"

namespace Vn::Blocks {

using CommonData::MassProperties;
using Scene::INodeSource;
using Scene::NodeChange;
using Vrx::Graphics::GroupNode;

void Measures::add(Measures const & other) {
    auto const add = [](std::optional<double> & sum, std::optional<double> const & value) {
        sum = sum && value ? std::optional(*sum + *value) : std::nullopt;
    };
    add(volume, other.volume);
    add(area, other.area);
    add(mass, other.mass);
    if (!other.parts) return;
    if (!parts)
        material = other.material;
    else if (material != other.material)
        material = nullptr;
    parts += other.parts;
}

void Measures::apply(MassProperties const & record) {
    double value = 0;
    if (record.isVolumeOverridden(&value)) volume = value;
    if (record.isAreaOverridden(&value)) area = value;
    bool const hasDensity = record.isDensityOverridden(&value);
    if (hasDensity) density = value;
    bool const hasMass = record.isMassOverridden(&value);
    if (hasMass)
        mass = value;
    else if (density)
        mass = volume ? std::optional(*density * *volume) : std::nullopt;
    if (hasDensity || (density && !hasMass)) return;
    bool const isKnown = mass && volume && *volume > 0;
    density = isKnown ? std::optional(*mass / *volume) : std::nullopt;
}

std::vector<ItemBelow> itemsFrom(Item & top) {
    std::vector<ItemBelow> items;
    std::unordered_set<Item const *> met{&top};
    // What is still to come, the next one last.
    std::vector<ItemBelow> open{{&top, 0, 0, 0}};
    while (!open.empty()) {
        std::size_t const place = items.size();
        items.push_back(open.back());
        open.pop_back();
        ItemBelow const here = items.back();
        for (unsigned i = here.item->children(); i-- > 0;) {
            auto * const child = query<Item>(here.item->child(i).get());
            if (child && met.insert(child).second)
                open.push_back({child, place, here.depth + 1, i + std::size_t{1}});
        }
    }
    return items;
}

Item::Item(PassiveRef<Entity> const & group, StrongRef<Input> input, TgPoint3d const & place)
    : Persisted(group), m_place(place), m_rInput(std::move(input)) {
    m_rClientObject = PassiveRef<Entity>(m_rInput);
    m_massProperties.installOwner(this);
    initializeMemberSetIfNeeded();
}

Item::Item(Segment * segment, unsigned long long id) : Persisted(segment, id) {
    m_massProperties.installOwner(this);
    initializeMemberSetIfNeeded();
}

void Item::initializeMemberSet(unsigned, MemberSet * set) {
    Managed::addMember(set, "place", m_place, TgPoint3dMetaType::get())
        ->readOnly("it follows what was typed; Blocks.Place changes it");
    Managed::addMember(set, "rInput", m_rInput);
    Managed::addMember(set, "massProperties", m_massProperties, MassProperties::s_metaType());
}

void Item::place(TgPoint3d const & place, std::vector<std::wstring> texts) {
    EntityChange const change(this, DataChange::TransactDirect, DataChange::ChangeValue,
                              DataChange::TimingPreAndPost, nullptr, true);
    m_place = place;
    if (m_rInput) m_rInput->place(std::move(texts));
}

void Item::copyMassProperties(Item const & from) {
    EntityChange const change(this, DataChange::TransactDirect, DataChange::ChangeValue,
                              DataChange::TimingPreAndPost, nullptr, true);
    m_massProperties = from.m_massProperties;
    m_massProperties.installOwner(this);
}

// The node goes from wherever it stands, since a host may hold the graph.
void Item::onPreDelete() {
    CommonBaseGroupEntity::onPreDelete();
    if (!m_rNode) return;
    if (GroupNode * const group = m_rNode->parent()) {
        NodeChange change(group, false);
        change.removeChild(m_rNode.get());
    }
    forgetNode();
}

// The client goes with its common data.
void Item::onPreDeletion(DataChange::ETransact transact) {
    CommonBaseGroupEntity::onPreDeletion(transact);
    m_rInput.reset();
}

void Item::onPostChange(DataChange::ETransact transact, DataChange::EChangeType type,
                        DataChange * details) {
    CommonBaseGroupEntity::onPostChange(transact, type, details);
    if (!m_rNode) return;
    NodeChange change(m_rNode.get(), false);
    show(change);
}

Vrx::Graphics::ARenderNode * Item::renderNode() const { return groupNode(); }

GroupNode * Item::groupNode() const {
    if (!m_rNode && isAlive()) const_cast<Item *>(this)->makeNodes();
    return m_rNode.get();
}

void Item::makeNode() {
    NodeChange change;
    m_rNode =
        StrongRef<GroupNode>(change.createGroupNode(this, Vrx::Scene::WorldModel, true, true));
    show(change);
}

// The nodes of all that stands below too.  Each group gets a child before that gets its own.
void Item::makeNodes() {
    NodeChange all; // made at once, and dropped at once if memory runs out
    std::vector<Item *> items{this};
    try {
        makeNode();
        for (std::size_t i = 0; i < items.size(); ++i) {
            Item const & item = *items[i];
            NodeChange group(item.m_rNode.get(), false);
            for (StrongRef<Managed::ManagedEntity> const & child : item.childrenVector()) {
                auto * const below = query<Item>(child.get());
                if (below && !below->m_rNode) {
                    items.push_back(below);
                    below->makeNode();
                }
                if (auto const * const source = query<INodeSource>(child.get()))
                    group.addChild(source->renderNode());
            }
        }
    } catch (...) {
        for (Item * const item : items) item->forgetNode();
        throw;
    }
}

void Item::show(NodeChange & node) {
    bool const isFinite =
        std::isfinite(m_place.x) && std::isfinite(m_place.y) && std::isfinite(m_place.z);
    node.transform(isFinite ? TgMatrix3d::translation(m_place.asVector()) : TgMatrix3d::kIdentity);
}

Measures Item::measures(MassProperties const & record) const {
    std::vector<ItemBelow> const items = itemsFrom(const_cast<Item &>(*this));
    std::vector<Measures> below(items.size(), Measures::ofNothing());
    for (std::size_t i = items.size(); i-- > 0;) {
        Item const & item = *items[i].item;
        Measures measures = item.calculated(below[i]);
        measures.apply(i == 0 ? record : item.m_massProperties);
        if (i == 0) return measures;
        below[items[i].parent].add(measures);
    }
    return {};
}

void Item::calculate(MassProperties const * record, double * volume, double * area, double * mass,
                     double * density, CommonData::IComponentTraversalContext *, bool) {
    Measures const known = measures(*record);
    auto const write = [](double * to, std::optional<double> const & value) {
        if (to && value) *to = *value;
    };
    write(volume, known.volume);
    write(area, known.area);
    write(mass, known.mass);
    write(density, known.density);
}

PhysicalMaterial const * Item::commonPhysicalMaterial(CommonData::IComponentTraversalContext *,
                                                      bool) {
    return measures().material;
}

bool Item::isMeasurable() const { return measures().parts > 0; }

} // namespace Vn::Blocks
