#include "Samples/Blocks/Modelling.h"

#include <algorithm>
#include <array>
#include <utility>

#include "Platform/Base/InterfaceId.h"
#include "Platform/Base/Text.h"
#include "Platform/Base/Utility.h"
#include "Platform/DataModel/ChangeHistory.h"
#include "Platform/DataModel/Segment.h"
#include "Samples/Blocks/Texts.h"
#include "Samples/Blocks/Workbench.h"
#include "Server/CommonData/Managed/Ancestors.h"
#include "Server/CommonData/Managed/TreePlace.h"

namespace Vn::Blocks {

using Managed::ManagedGroupEntity;
using Units::UnitContext;

namespace {

Status invalid(char const * operation, std::wstring const & why) {
    return Status::invalidArgument(operation, {}, Text::toUtf8(why));
}

// Reads lengths of one kind into values and texts; ends at the first that is refused.
Status readLengths(std::vector<std::wstring> const & typed, ELength kind,
                   UnitContext const & context, std::array<double, 3> & values,
                   std::vector<std::wstring> & texts, Fault * fault) {
    for (std::size_t i = 0; i < typed.size(); ++i) {
        Length length;
        Status status = readLength(typed[i], kind, context, length, fault);
        if (!status) return status;
        values[i] = length.value;
        texts.push_back(std::move(length.text));
    }
    return Status::success();
}

Status readPlace(std::vector<std::wstring> const & typed, UnitContext const & context,
                 TgPoint3d & place, std::vector<std::wstring> & texts, Fault * fault) {
    if (!typed.empty() && typed.size() != 3)
        return invalid("read a place", tr(L"a place has three coordinates"));
    std::array<double, 3> values{};
    Status status = readLengths(typed, ELength::Coordinate, context, values, texts, fault);
    if (status) place = {values[0], values[1], values[2]};
    return status;
}

Status checkMaterial(std::string const & key) {
    if (findMaterial(key)) return Status::success();
    if (!materialsStatus()) return materialsStatus();
    return Status::notFound(
        "find the material", key,
        Text::toUtf8(message(L"\"%1%\" isn't a material", {Text::fromUtf8(key)})));
}

// Whether an item can be changed: not once it has left its document.
Status checkAlive(Item const & item) {
    if (item.isAlive() && item.asset()) return Status::success();
    return invalid("change the item", tr(L"it isn't in a document any more"));
}

// Where items go: an assembly of the document, or the workbench, which is made if need be.
Status groupFor(Asset & asset, Assembly * assembly, StrongRef<ManagedGroupEntity> & group) {
    if (assembly) {
        if (!assembly->isAlive() || assembly->asset() != &asset)
            return invalid("find the assembly", tr(L"the assembly isn't in the document"));
        group = StrongRef<ManagedGroupEntity>(assembly);
        return Status::success();
    }
    group = Workbench::make(asset);
    if (group) return Status::success();
    return invalid("make the workbench", tr(L"something else has its place in the document"));
}

std::vector<StrongRef<Item>> itemsIn(ManagedGroupEntity const & group) {
    std::vector<StrongRef<Item>> items;
    for (StrongRef<Managed::ManagedEntity> const & child : group.childrenVector())
        if (auto * const item = query<Item>(child.get())) items.emplace_back(item);
    return items;
}

// A copy of an item alone at the end of a group.
StrongRef<Item> copyOf(Item const & item, PassiveRef<Entity> const & group) {
    std::vector<std::wstring> const place =
        item.input() ? item.input()->place() : std::vector<std::wstring>();
    StrongRef<Item> copy;
    if (auto const * const part = query<Part>(&item)) {
        Part::Plan plan{part->sizes(), {}, part->place(), place, part->materialKey()};
        if (part->input()) plan.sizeTexts = part->input()->sizes();
        copy = Part::make(part->kind(), group, plan);
    } else if (auto const * const assembly = query<Assembly>(&item)) {
        copy = Assembly::make(group, assembly->name());
        if (copy) copy->place(item.place(), place);
    }
    if (copy) copy->copyMassProperties(item);
    return copy;
}

} // namespace

Status makePart(Asset & asset, EShape kind, PartTexts const & texts, Assembly * assembly,
                StrongRef<Part> & part, Fault * fault) {
    if (texts.sizes.size() != sizeNames(kind).size())
        return invalid("make a part", tr(L"another number of sizes is needed"));
    UnitContext const context = lengthContext(asset);
    Part::Plan plan;
    plan.material = texts.material;
    Status status =
        readLengths(texts.sizes, ELength::Size, context, plan.sizes, plan.sizeTexts, fault);
    if (status) status = readPlace(texts.place, context, plan.place, plan.placeTexts, fault);
    if (status) status = checkMaterial(plan.material);
    if (!status) return status;

    Transaction transaction(asset, kind == EShape::Block      ? tr(L"New block")
                                   : kind == EShape::Cylinder ? tr(L"New cylinder")
                                                              : tr(L"New sphere"));
    StrongRef<ManagedGroupEntity> group;
    status = groupFor(asset, assembly, group);
    if (!status) return status;
    part = Part::make(kind, PassiveRef<Entity>(group), plan);
    transaction.commit();
    return status;
}

Status setSize(Part & part, std::string const & name, std::wstring const & text, Fault * fault) {
    Status status = checkAlive(part);
    if (!status) return status;
    auto const names = sizeNames(part.kind());
    auto const found =
        std::find_if(names.begin(), names.end(), [&](char const * known) { return name == known; });
    if (found == names.end())
        return Status::notFound("find the size", name,
                                Text::toUtf8(message(L"a part of this kind has no size \"%1%\"",
                                                     {Text::fromUtf8(name)})));
    Length length;
    status = readLength(text, ELength::Size, lengthContext(*part.asset()), length, fault);
    if (!status) return status;

    auto const place = static_cast<std::size_t>(found - names.begin());
    Sizes sizes = part.sizes();
    sizes[place] = length.value;
    std::vector<std::wstring> texts =
        part.input() ? part.input()->sizes() : std::vector<std::wstring>();
    texts.resize(names.size());
    texts[place] = length.text;
    Transaction transaction(*part.asset(), tr(L"Set a size"));
    part.sizes(sizes, std::move(texts));
    transaction.commit();
    return status;
}

Status setPlace(Item & item, std::vector<std::wstring> const & typed, Fault * fault) {
    Status status = checkAlive(item);
    if (!status) return status;
    TgPoint3d place;
    std::vector<std::wstring> texts;
    status = readPlace(typed, lengthContext(*item.asset()), place, texts, fault);
    if (!status) return status;
    Transaction transaction(*item.asset(), tr(L"Place"));
    item.place(place, std::move(texts));
    transaction.commit();
    return status;
}

Status setMaterial(Part & part, std::string const & key) {
    Status status = checkAlive(part);
    if (status) status = checkMaterial(key);
    if (!status) return status;
    Transaction transaction(*part.asset(), tr(L"Set the material"));
    part.material(key);
    transaction.commit();
    return status;
}

Status assemble(Asset & asset, std::wstring const & name,
                std::vector<StrongRef<Item>> const & items, StrongRef<Assembly> & assembly) {
    Transaction transaction(asset, tr(L"Assemble"));
    StrongRef<ManagedGroupEntity> group;
    Status status = groupFor(asset, nullptr, group);
    if (!status) return status;
    StrongRef<Assembly> made = Assembly::make(PassiveRef<Entity>(group), name);
    for (StrongRef<Item> const & item : items) {
        if (status = moveItem(*item, made.get()); !status) return status;
    }
    transaction.commit();
    assembly = std::move(made);
    return status;
}

Status moveItem(Item & item, Assembly * assembly) {
    Status status = checkAlive(item);
    if (!status) return status;
    StrongRef<Item> const kept(&item);
    StrongRef<Asset> const asset(item.asset());
    Transaction transaction(*asset, tr(L"Move"));
    StrongRef<ManagedGroupEntity> group;
    status = groupFor(*asset, assembly, group);
    if (!status) return status;
    if (Managed::isWithin(*group, item))
        return invalid("move the item", tr(L"an assembly can't stand within itself"));
    // An assembly by itself is a root too, so its group has to be told.
    status =
        Managed::moveEntity({StrongRef<Entity>(&item), item.managedParent()}, Managed::EMove::Into,
                            {StrongRef<Entity>(group), nullptr}, tr(L"Move"));
    if (status) transaction.commit();
    return status;
}

Status deleteItem(StrongRef<Item> item) {
    if (!item) return invalid("delete the item", tr(L"it stands nowhere in the document"));
    Status status = checkAlive(*item);
    if (!status) return status;
    StrongRef<ManagedGroupEntity> const group = item->managedParent();
    if (!group) return invalid("delete the item", tr(L"it stands nowhere in the document"));
    StrongRef<Asset> const asset(item->asset());
    Transaction transaction(*asset, tr(L"Delete"));
    group->removeChild(item);
    item.reset();
    transaction.commit();
    return status;
}

Status duplicate(Item & item, std::size_t count, std::vector<StrongRef<Item>> & copies) {
    Status status = checkAlive(item);
    if (!status) return status;
    StrongRef<ManagedGroupEntity> const group = item.managedParent();
    if (!group) return invalid("copy the item", tr(L"it stands nowhere in the document"));
    std::vector<ItemBelow> const items = itemsFrom(item);
    if (count == 0 || count > c_mostCopies / items.size())
        return invalid("copy the item",
                       message(L"that would make %1% items; from 1 to %2% can be made at once",
                               {Utility::decimalText(static_cast<double>(count) *
                                                     static_cast<double>(items.size())),
                                std::to_wstring(c_mostCopies)}));
    StrongRef<Asset> const asset(item.asset());
    Transaction transaction(*asset, tr(L"Duplicate"));
    std::vector<StrongRef<Item>> made;
    std::vector<StrongRef<Item>> of(items.size());
    for (std::size_t n = 0; n < count; ++n) {
        for (std::size_t i = 0; i < items.size(); ++i) {
            StrongRef<Entity> const to =
                i == 0 ? StrongRef<Entity>(group) : StrongRef<Entity>(of[items[i].parent]);
            of[i] = copyOf(*items[i].item, PassiveRef<Entity>(to));
            if (!of[i]) return invalid("copy the item", tr(L"it isn't in a document any more"));
        }
        made.push_back(of.front());
    }
    transaction.commit();
    copies = std::move(made);
    return status;
}

std::vector<StrongRef<Item>> itemsOf(Asset const & asset) {
    StrongRef<Workbench> const bench = Workbench::find(asset);
    return bench ? itemsIn(*bench) : std::vector<StrongRef<Item>>();
}

std::vector<StrongRef<Item>> itemsOf(Assembly const & assembly) { return itemsIn(assembly); }

std::wstring pathOf(Item const & item) {
    std::vector<std::size_t> places;
    StrongRef<Entity> at(const_cast<Item *>(&item));
    for (Managed::AncestorWalk walk(at); walk && query<Item>(&*walk);) {
        StrongRef<ManagedGroupEntity> const group = query<Item>(&*walk)->managedParent();
        if (!group) return {};
        // From the end, where what was made last stands.
        std::vector<StrongRef<Managed::ManagedEntity>> const & children = group->childrenVector();
        auto const found = std::find(children.rbegin(), children.rend(), walk.at());
        if (found == children.rend()) return {};
        places.push_back(static_cast<std::size_t>(children.rend() - found));
        at = StrongRef<Entity>(group);
        walk.goTo(at);
    }
    if (!query<Workbench>(at.get())) return {};
    std::wstring path;
    for (std::size_t i = places.size(); i-- > 0;)
        path += std::to_wstring(places[i]) + (i ? L"/" : L"");
    return path;
}

Status findItem(Asset const & asset, std::wstring const & path, StrongRef<Item> & item) {
    StrongRef<Item> found;
    StrongRef<ManagedGroupEntity> group(Workbench::find(asset));
    for (std::size_t begin = 0; begin <= path.size();) {
        std::size_t const end = std::min(path.find(L'/', begin), path.size());
        int place = 0;
        if (group &&
            Utility::wholeNumberLexicalCast(std::wstring_view(path).substr(begin, end - begin),
                                            place) &&
            place >= 1 && static_cast<unsigned>(place) <= group->children())
            found = StrongRef<Item>(
                query<Item>(group->child(static_cast<unsigned>(place) - 1).get()));
        else
            found.reset();
        if (!found)
            return Status::notFound(
                "find the item", Text::toUtf8(path),
                Text::toUtf8(message(L"there is no item %1%; Blocks.List shows all", {path})));
        group = found;
        begin = end + 1;
    }
    item = std::move(found);
    return Status::success();
}

} // namespace Vn::Blocks
