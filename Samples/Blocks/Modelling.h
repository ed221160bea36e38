// What can be done to the blocks of a document.
//
// Each operation is one step of the document's history, with a name in the user's language; within
// a transaction it is a part of that.  An operation that is refused has changed nothing and says
// why: StatusInvalidArgument for what has no meaning, StatusNotFound for what isn't there.  Lengths
// are texts as people type them; `fault`, which may be null, tells which of them is refused, and
// where.
//
// If memory runs out, all is taken back, and std::bad_alloc goes to the caller.

#ifndef VN_SAMPLES_BLOCKS_MODELLING_H
#define VN_SAMPLES_BLOCKS_MODELLING_H

#include <cstddef>
#include <string>
#include <vector>

#include "Platform/Base/Status.h"
#include "Platform/DataModel/Asset.h"
#include "Samples/Blocks/Assembly.h"
#include "Samples/Blocks/Lengths.h"
#include "Samples/Blocks/Part.h"

namespace Vn::Blocks {

// How many copies an operation makes at most.
inline constexpr std::size_t c_mostCopies = 100'000;

// What a part is to be, as it was typed.
struct PartTexts {
    std::vector<std::wstring> sizes; // as many as the kind has
    std::vector<std::wstring> place; // x, y and z, or nothing for the origin
    std::string material = c_defaultMaterial;
};

// Makes a part in an assembly, or by itself for null.  The assembly must be in the document.
Status makePart(Asset & asset, EShape kind, PartTexts const & texts, Assembly * assembly,
                StrongRef<Part> & part, Fault * fault);

// Sets the size with a name, as sizeNames has it.
Status setSize(Part & part, std::string const & name, std::wstring const & text, Fault * fault);
// Sets the place: x, y and z.
Status setPlace(Item & item, std::vector<std::wstring> const & texts, Fault * fault);
// Sets the material, by its key.
Status setMaterial(Part & part, std::string const & key);

// Makes an assembly by itself, and moves items into it.  The name may be empty.
Status assemble(Asset & asset, std::wstring const & name,
                std::vector<StrongRef<Item>> const & items, StrongRef<Assembly> & assembly);
// Moves an item to the end of an assembly, or out of all of them for null.  It keeps its place,
// which is then counted from where it comes to stand.  Refused within itself.
Status moveItem(Item & item, Assembly * assembly);
// Takes an item out of the document, with all that stands in it.  The reference is let go within
// the step: if it is the last one, the item goes in that step, and an undo leaves nothing to save.
Status deleteItem(StrongRef<Item> item);
// Makes copies of an item, with all that stands in it, after its siblings.
Status duplicate(Item & item, std::size_t count, std::vector<StrongRef<Item>> & copies);

// The items by themselves, and those in an assembly, in order.
std::vector<StrongRef<Item>> itemsOf(Asset const & asset);
std::vector<StrongRef<Item>> itemsOf(Assembly const & assembly);
// The path of an item: its places among the children of its groups from the top, counted from 1,
// such as "2/1"; empty if it doesn't stand in the document.
std::wstring pathOf(Item const & item);
// Finds an item by its path.
Status findItem(Asset const & asset, std::wstring const & path, StrongRef<Item> & item);

} // namespace Vn::Blocks

#endif
