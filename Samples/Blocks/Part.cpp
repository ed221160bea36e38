#include "Samples/Blocks/Part.h"

#include <utility>

#include "Platform/Base/InterfaceId.h"
#include "Platform/DataModel/EntityChange.h"
#include "Samples/Blocks/Texts.h"

namespace Vn::Blocks {

using Scene::NodeChange;
using Vrx::Graphics::LODGeometryNode;

Part::Part(PassiveRef<Entity> const & group, StrongRef<Input> input, Plan const & plan)
    : Persisted(group, std::move(input), plan.place), m_sizes(plan.sizes),
      m_material(plan.material) {
    initializeMemberSetIfNeeded();
}

Part::Part(Segment * segment, unsigned long long id) : Persisted(segment, id) {
    initializeMemberSetIfNeeded();
}

StrongRef<Part> Part::make(EShape kind, PassiveRef<Entity> const & group, Plan const & plan) {
    if (!group || !group->segment()) return nullptr;
    StrongRef<Input> input = Input::make(group->segment(), plan.sizeTexts, plan.placeTexts);
    StrongRef<Part> part;
    switch (kind) {
    case EShape::Block:
        part = StrongRef<Block>(Block::make(group, input, plan));
        break;
    case EShape::Cylinder:
        part = StrongRef<Cylinder>(Cylinder::make(group, input, plan));
        break;
    case EShape::Sphere:
        part = StrongRef<Sphere>(Sphere::make(group, input, plan));
        break;
    }
    if (part && input) input->commonData(query<CommonData::ICommonData>(part.get()));
    return part;
}

void Part::initializeMemberSet(unsigned, MemberSet * set) {
    Managed::addMember(set, "material", m_material)->setter(&setMaterial);
}

void Part::addSizes(MemberSet * set) {
    std::size_t i = 0;
    for (char const * const name : sizeNames(kind()))
        Managed::addMember(set, name, m_sizes[i++])
            ->readOnly("it follows what was typed; Blocks.Set changes it");
}

void Part::sizes(Sizes const & sizes, std::vector<std::wstring> texts) {
    EntityChange const change(this, DataChange::TransactDirect, DataChange::ChangeValue,
                              DataChange::TimingPreAndPost, nullptr, true);
    m_sizes = sizes;
    if (input()) input()->sizes(std::move(texts));
}

void Part::material(std::string key) {
    EntityChange const change(this, DataChange::TransactDirect, DataChange::ChangeValue,
                              DataChange::TimingPreAndPost, nullptr, true);
    m_material = std::move(key);
}

Status Part::setMaterial(Part & part, std::string const & key) {
    if (!findMaterial(key))
        return Status::notFound("set the material", key, "there is no such material");
    part.material(key);
    return Status::success();
}

void Part::forgetNode() noexcept {
    Item::forgetNode();
    m_rGeometry.reset();
    m_pMesh.reset();
}

void Part::show(NodeChange & node) {
    Item::show(node);
    bool const isNew = !m_rGeometry;
    NodeChange change(m_rGeometry.get(), false);
    if (isNew) {
        m_rGeometry = StrongRef<LODGeometryNode>(change.createLODGeometryNode(this, true));
        node.addChild(m_rGeometry.get());
    }
    if (Shape const now = shape(); isNew || now != m_shown) {
        m_shown = now;
        m_pMesh = meshOf(now);
        change.geometry(m_pMesh ? m_pMesh->get() : nullptr, Vrx::Graphics::LevelAll);
    }
    if (Material const * const known = material())
        change.colorEffect(known->color(), false, 0);
    else
        change.removeEffect();
}

Measures Part::calculated(Measures const &) const {
    Shape const body = shape();
    Material const * const known = material();
    Measures measures{body.volume(), body.area(), std::nullopt, std::nullopt, known, 1};
    if (known) measures.density = known->density();
    return measures;
}

Block::Block(PassiveRef<Entity> const & group, StrongRef<Input> input, Plan const & plan)
    : Persisted(group, std::move(input), plan) {
    initializeMemberSetIfNeeded();
}

Block::Block(Segment * segment, unsigned long long id) : Persisted(segment, id) {
    initializeMemberSetIfNeeded();
}

StrongRefCreator<Block> Block::make(PassiveRef<Entity> const & group, StrongRef<Input> input,
                                    Plan const & plan) {
    return create(group, std::move(input), plan);
}

void Block::initializeMemberSet(unsigned, MemberSet * set) { addSizes(set); }

Cylinder::Cylinder(PassiveRef<Entity> const & group, StrongRef<Input> input, Plan const & plan)
    : Persisted(group, std::move(input), plan) {
    initializeMemberSetIfNeeded();
}

Cylinder::Cylinder(Segment * segment, unsigned long long id) : Persisted(segment, id) {
    initializeMemberSetIfNeeded();
}

StrongRefCreator<Cylinder> Cylinder::make(PassiveRef<Entity> const & group, StrongRef<Input> input,
                                          Plan const & plan) {
    return create(group, std::move(input), plan);
}

void Cylinder::initializeMemberSet(unsigned, MemberSet * set) { addSizes(set); }

Sphere::Sphere(PassiveRef<Entity> const & group, StrongRef<Input> input, Plan const & plan)
    : Persisted(group, std::move(input), plan) {
    initializeMemberSetIfNeeded();
}

Sphere::Sphere(Segment * segment, unsigned long long id) : Persisted(segment, id) {
    initializeMemberSetIfNeeded();
}

StrongRefCreator<Sphere> Sphere::make(PassiveRef<Entity> const & group, StrongRef<Input> input,
                                      Plan const & plan) {
    return create(group, std::move(input), plan);
}

void Sphere::initializeMemberSet(unsigned, MemberSet * set) { addSizes(set); }

} // namespace Vn::Blocks
