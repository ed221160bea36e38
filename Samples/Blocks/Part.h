// The parts: a block, a cylinder and a sphere.

#ifndef VN_SAMPLES_BLOCKS_PART_H
#define VN_SAMPLES_BLOCKS_PART_H

#include <memory>
#include <string>
#include <vector>

#include "Platform/Graphics/LODGeometryNode.h"
#include "Samples/Blocks/Item.h"
#include "Samples/Blocks/Materials.h"
#include "Samples/Blocks/Shape.h"
#include "Server/CommonData/Components/IComponentObject.h"

namespace Vn::Blocks {

// A body of one material.  It stands in an assembly or by itself in the document.
class Part : public Managed::Persisted<Part, Item, CommonData::IComponentObject> {
public:
    static constexpr Managed::PersistedClass c_class{"Vn::Blocks::Part",
                                                     "6A3C1B70-4C55-4B0E-8F4B-52B6E9D10003", 0};
    static EntityMetaType * s_metaType();

    // What a part is made with.  The sizes are above 0 and the place is finite, as readLength sees
    // to.
    struct Plan {
        Sizes sizes{}; // cm
        std::vector<std::wstring> sizeTexts;
        TgPoint3d place; // cm
        std::vector<std::wstring> placeTexts;
        std::string material = c_defaultMaterial;
    };
    // A new part at the end of a group.  Null if the group is null or its document is closed.
    static StrongRef<Part> make(EShape kind, PassiveRef<Entity> const & group, Plan const & plan);

    // Which of the three it is, and its body.
    virtual EShape kind() const = 0;
    Shape shape() const { return {kind(), m_sizes}; }
    // The sizes in cm, and the same with the texts that were typed for them.
    Sizes const & sizes() const noexcept { return m_sizes; }
    void sizes(Sizes const & sizes, std::vector<std::wstring> texts);

    // The key of the material; and the material, null if the table doesn't have it.
    std::string const & materialKey() const noexcept { return m_material; }
    Material const * material() const { return findMaterial(m_material); }
    void material(std::string key);

protected:
    // As of Item.
    Part(PassiveRef<Entity> const & group, StrongRef<Input> input, Plan const & plan);
    Part(Segment * segment, unsigned long long id);

    void forgetNode() noexcept override;
    void show(Scene::NodeChange & node) override;
    Measures calculated(Measures const & below) const override;

    // Adds the sizes under the names of their kind.
    void addSizes(MemberSet * set);

private:
    friend class Managed::PersistedAccess;

    void initializeMemberSet(unsigned version, MemberSet * set);
    static Status setMaterial(Part & part, std::string const & key);

    Sizes m_sizes{}; // persisted by the derived classes, by their names
    std::string m_material = c_defaultMaterial;
    // Not persisted: what is drawn.
    StrongRef<Vrx::Graphics::LODGeometryNode> m_rGeometry;
    SharedMesh m_pMesh;
    Shape m_shown;
};

// The members "width", "depth" and "height".
class Block : public Managed::Persisted<Block, Part> {
public:
    static constexpr Managed::PersistedClass c_class{"Vn::Blocks::Block",
                                                     "6A3C1B70-4C55-4B0E-8F4B-52B6E9D10004", 0};
    static EntityMetaType * s_metaType();
    static StrongRefCreator<Block> make(PassiveRef<Entity> const & group, StrongRef<Input> input,
                                        Plan const & plan);

    EShape kind() const override { return EShape::Block; }

private:
    friend class Managed::PersistedAccess;

    Block(PassiveRef<Entity> const & group, StrongRef<Input> input, Plan const & plan);
    Block(Segment * segment, unsigned long long id);
    void initializeMemberSet(unsigned version, MemberSet * set);
};

// The members "diameter" and "height".
class Cylinder : public Managed::Persisted<Cylinder, Part> {
public:
    static constexpr Managed::PersistedClass c_class{"Vn::Blocks::Cylinder",
                                                     "6A3C1B70-4C55-4B0E-8F4B-52B6E9D10005", 0};
    static EntityMetaType * s_metaType();
    static StrongRefCreator<Cylinder> make(PassiveRef<Entity> const & group, StrongRef<Input> input,
                                           Plan const & plan);

    EShape kind() const override { return EShape::Cylinder; }

private:
    friend class Managed::PersistedAccess;

    Cylinder(PassiveRef<Entity> const & group, StrongRef<Input> input, Plan const & plan);
    Cylinder(Segment * segment, unsigned long long id);
    void initializeMemberSet(unsigned version, MemberSet * set);
};

// The member "diameter".
class Sphere : public Managed::Persisted<Sphere, Part> {
public:
    static constexpr Managed::PersistedClass c_class{"Vn::Blocks::Sphere",
                                                     "6A3C1B70-4C55-4B0E-8F4B-52B6E9D10006", 0};
    static EntityMetaType * s_metaType();
    static StrongRefCreator<Sphere> make(PassiveRef<Entity> const & group, StrongRef<Input> input,
                                         Plan const & plan);

    EShape kind() const override { return EShape::Sphere; }

private:
    friend class Managed::PersistedAccess;

    Sphere(PassiveRef<Entity> const & group, StrongRef<Input> input, Plan const & plan);
    Sphere(Segment * segment, unsigned long long id);
    void initializeMemberSet(unsigned version, MemberSet * set);
};

} // namespace Vn::Blocks

#endif
