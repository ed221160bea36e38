// The meta types of the sample, by which documents know its classes.

#include "Samples/Blocks/Assembly.h"
#include "Samples/Blocks/Input.h"
#include "Samples/Blocks/Part.h"
#include "Samples/Blocks/Workbench.h"

namespace Vn::Blocks {

namespace {

// The name of a meta type is that of its class.
template <class X>
class BlocksMetaType : public Managed::PersistedMetaType<X> {
public:
    BlocksMetaType() : Managed::PersistedMetaType<X>("Blocks") {}
};

class AssemblyMetaType final : public BlocksMetaType<Assembly> {
} s_assembly;
class BlockMetaType final : public BlocksMetaType<Block> {
} s_block;
class CylinderMetaType final : public BlocksMetaType<Cylinder> {
} s_cylinder;
class InputMetaType final : public BlocksMetaType<Input> {
} s_input;
class ItemMetaType final : public BlocksMetaType<Item> {
} s_item;
class LoosePartsMetaType final : public BlocksMetaType<LooseParts> {
} s_looseParts;
class OriginMetaType final : public BlocksMetaType<Origin> {
} s_origin;
class PartMetaType final : public BlocksMetaType<Part> {
} s_part;
class SphereMetaType final : public BlocksMetaType<Sphere> {
} s_sphere;
class WorkbenchMetaType final : public BlocksMetaType<Workbench> {
} s_workbench;

} // namespace

EntityMetaType * Assembly::s_metaType() { return &s_assembly; }
EntityMetaType * Block::s_metaType() { return &s_block; }
EntityMetaType * Cylinder::s_metaType() { return &s_cylinder; }
EntityMetaType * Input::s_metaType() { return &s_input; }
EntityMetaType * Item::s_metaType() { return &s_item; }
EntityMetaType * LooseParts::s_metaType() { return &s_looseParts; }
EntityMetaType * Origin::s_metaType() { return &s_origin; }
EntityMetaType * Part::s_metaType() { return &s_part; }
EntityMetaType * Sphere::s_metaType() { return &s_sphere; }
EntityMetaType * Workbench::s_metaType() { return &s_workbench; }

} // namespace Vn::Blocks
