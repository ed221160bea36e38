#ifndef VN_SAMPLES_BLOCKS_ITEM_H
#define VN_SAMPLES_BLOCKS_ITEM_H

#include <optional>
#include <string>
#include <vector>

#include "Platform/Geometry/Tg.h"
#include "Platform/Graphics/RenderNode.h"
#include "Platform/Scene/INodeSource.h"
#include "Platform/Scene/NodeChange.h"
#include "Samples/Blocks/Input.h"
#include "Server/CommonData/Managed/CommonBaseGroupEntity.h"
#include "Server/CommonData/MassProperties/IMassPropertyCalculator.h"
#include "Server/CommonData/MassProperties/MassProperties.h"

namespace Vn::Blocks {

// What is known of an item, or of several together: nothing of what can't be told, such as the
// density of an empty assembly.
struct Measures {
    std::optional<double> volume;  // cm^3
    std::optional<double> area;    // cm^2
    std::optional<double> mass;    // kg
    std::optional<double> density; // kg/cm^3; never the sum of several
    // The one that everything is made of; null if there is none, or if there are several.
    PhysicalMaterial const * material = nullptr;
    std::size_t parts = 0; // how many were measured

    // Of nothing, to which the measures of several are added.
    static Measures ofNothing() { return {0.0, 0.0, 0.0, std::nullopt, nullptr, 0}; }
    // What isn't known of one isn't known of all.
    void add(Measures const & other);
    // As they are once a record has its say.  An overridden density makes the mass, an overridden
    // mass the density; with both overridden each stays as it is.
    void apply(CommonData::MassProperties const & record);
};

class Item;

// An item in the list of an item and all that stands below it.
struct ItemBelow {
    Item * item;
    std::size_t parent; // where its group stands in the list; the first item is its own
    std::size_t depth;  // 0 for the first
    std::size_t number; // its place among the children of its group, from 1; 0 for the first
};

// An item and all items below it, each before those below it and once, however it is listed.  The
// stack doesn't grow with the depth.
std::vector<ItemBelow> itemsFrom(Item & top);

// What parts and assemblies have in common: a place within what they stand in, the client object
// with what was typed for them, their mass properties, and a node of the render graph.
//
// The node is a group that is placed as the item is.  It is made when it is first asked for, which
// for an item that is loaded is when the adapter of the document makes the graph.  From then on the
// item itself keeps it in step: every change, and every replay of one, ends with the node as the
// item is.  What stands in which group is kept in step by the groups.
class Item : public Managed::Persisted<Item, CommonData::CommonBaseGroupEntity, Scene::INodeSource,
                                       CommonData::IMassPropertyCalculator> {
public:
    static constexpr Managed::PersistedClass c_class{"Vn::Blocks::Item",
                                                     "6A3C1B70-4C55-4B0E-8F4B-52B6E9D10002", 0};
    static EntityMetaType * s_metaType();

    // Where the item stands in its assembly, or in the document, in cm; and the same with the texts
    // that were typed for it.
    TgPoint3d const & place() const noexcept { return m_place; }
    void place(TgPoint3d const & place, std::vector<std::wstring> texts);

    // What was typed for the item.
    StrongRef<Input> const & input() const noexcept { return m_rInput; }

    // What the user says of the mass instead of what is calculated.  Whoever changes it opens a
    // bracket on the item.
    CommonData::MassProperties & massProperties() noexcept { return m_massProperties; }
    CommonData::MassProperties const & massProperties() const noexcept { return m_massProperties; }
    // Takes over what the user says of the mass of another item.
    void copyMassProperties(Item const & from);
    // The measures with all that is overridden here and below.
    Measures measures() const { return measures(m_massProperties); }
    // The same with another record for this item itself.
    Measures measures(CommonData::MassProperties const & record) const;

    // As of INodeSource; the two are the same group.  Null once the item isn't in its document.
    Vrx::Graphics::ARenderNode * renderNode() const override;
    Vrx::Graphics::GroupNode * groupNode() const override;

    // As of IMassPropertyCalculator: all four overrides of `record` are heeded.  What can't be told
    // isn't written.  The context and the flag mean nothing.
    void calculate(CommonData::MassProperties const * record, double * volume, double * area,
                   double * mass, double * density,
                   CommonData::IComponentTraversalContext * context, bool flag) override;
    PhysicalMaterial const *
    commonPhysicalMaterial(CommonData::IComponentTraversalContext * context, bool flag) override;
    bool isMeasurable() const override;

protected:
    // A new one at the end of a group, with a client object that it takes over, null for a client
    // that is still to come; and one that is being loaded.
    Item(PassiveRef<Entity> const & group, StrongRef<Input> input, TgPoint3d const & place);
    Item(Segment * segment, unsigned long long id);

    void onPreDelete() override;
    void onPreDeletion(DataChange::ETransact transact) override;
    void onPostChange(DataChange::ETransact transact, DataChange::EChangeType type,
                      DataChange * details) override;

    // Whether the node was made.
    bool isShown() const noexcept { return static_cast<bool>(m_rNode); }
    // The node was made, or something has changed: it is to show the item as it is.
    virtual void show(Scene::NodeChange & node);

    // Lets go of the node, which is made anew when it is asked for.
    virtual void forgetNode() noexcept { m_rNode.reset(); }

    // The measures before any override, of which the density makes the mass unless it is unknown.
    // `below` are those of the items below.
    virtual Measures calculated(Measures const & below) const = 0;

private:
    friend class Managed::PersistedAccess;

    void initializeMemberSet(unsigned version, MemberSet * set);
    void makeNode();
    void makeNodes();

    TgPoint3d m_place;
    StrongRef<Input> m_rInput;
    CommonData::MassProperties m_massProperties;
    StrongRef<Vrx::Graphics::GroupNode> m_rNode; // not persisted
};

} // namespace Vn::Blocks

#endif
