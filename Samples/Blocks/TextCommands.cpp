#include "Samples/Blocks/TextCommands.h"

#include <algorithm>
#include <array>
#include <cwctype>
#include <limits>
#include <string>
#include <utility>

#include "Platform/Base/InterfaceId.h"
#include "Platform/Base/Text.h"
#include "Platform/Base/Utility.h"
#include "Platform/DataModel/ActiveAsset.h"
#include "Samples/Blocks/Modelling.h"
#include "Samples/Blocks/Texts.h"
#include "Samples/Blocks/Workbench.h"
#include "Server/CommonData/MassProperties/MassProperties.h"

namespace Vn::Blocks {

using CommonData::MassProperties;
using Parameters = TextCommandParameters;
using Result = TextCommandResult;

namespace {

constexpr wchar_t c_area[] = L"Blocks";
constexpr EShape c_shapes[] = {EShape::Block, EShape::Cylinder, EShape::Sphere};

// The deepest items that a list shows: the paths of deeper ones would fill the screen.
constexpr std::size_t c_deepestShown = 40;

Result good(std::wstring text) { return {0, std::move(text)}; }
Result bad(std::wstring text) { return {1, std::move(text)}; }

// A refusal: the reason, and below it the text that is at fault with a caret.
Result refused(Status const & status, Fault const & fault = {}) {
    std::wstring text = Text::fromUtf8(status.cause().empty() ? status.toString() : status.cause());
    if (!fault.reason.empty()) text += L'\n' + fault.excerpt();
    return bad(std::move(text));
}

// The names of kinds as they are typed: "block".
std::wstring typedName(EShape kind) {
    std::wstring name = Text::widen(shapeName(kind));
    name.front() += L'a' - L'A';
    return name;
}

std::wstring shownName(EShape kind) {
    return kind == EShape::Block      ? tr(L"Block")
           : kind == EShape::Cylinder ? tr(L"Cylinder")
                                      : tr(L"Sphere");
}

std::wstring shownPlace(Item const & item, Units::UnitContext const & units) {
    TgPoint3d const & at = item.place();
    return L"(" + shownLength(at.x, units) + L"; " + shownLength(at.y, units) + L"; " +
           shownLength(at.z, units) + L")";
}

// One line on an item: "Block, 2 in x 1 in x 1 ft, Steel, at (0 in; 0 in; 0 in)".
std::wstring describe(Item const & item, Units::UnitContext const & units) {
    auto const * const part = query<Part>(&item);
    if (!part) {
        auto const & assembly = static_cast<Assembly const &>(item);
        return message(L"Assembly \"%1%\" at %2%",
                       {Text::printable(Text::clipped(assembly.name())), shownPlace(item, units)});
    }
    std::wstring sizes;
    for (std::size_t i = 0; i < sizeNames(part->kind()).size(); ++i)
        sizes += (i ? L" x " : L"") + shownLength(part->sizes()[i], units);
    Material const * const material = part->material();
    return message(L"%1%, %2%, %3%, at %4%",
                   {shownName(part->kind()), sizes,
                    material ? shownMaterial(*material) : Text::fromUtf8(part->materialKey()),
                    shownPlace(item, units)});
}

// What was typed for an item, as it is kept.
std::wstring typedTexts(Item const & item) {
    std::wstring text;
    if (!item.input()) return text;
    for (std::wstring const & size : item.input()->sizes())
        text += (text.empty() ? L"" : L" x ") + size;
    for (std::size_t i = 0; i < item.input()->place().size(); ++i)
        text += (i ? L"; " : text.empty() ? L"(" : L" (") + item.input()->place()[i];
    return item.input()->place().empty() ? text : text + L")";
}

Result described(Item const & item) {
    return good(pathOf(item) + L"  " + describe(item, lengthContext(*item.asset())));
}

std::vector<std::wstring> parametersFrom(Parameters const & parameters, unsigned first) {
    std::vector<std::wstring> rest;
    for (unsigned i = first; i < parameters.parameters(); ++i)
        rest.push_back(parameters.parameter(i));
    return rest;
}

Result makeNew(Asset & asset, Parameters const & parameters) {
    std::wstring const & name = parameters.parameter(0);
    for (EShape const kind : c_shapes) {
        if (!Text::foldedEqual(std::wstring_view(name), typedName(kind))) continue;
        PartTexts texts{parametersFrom(parameters, 1), {}};
        std::size_t const sizes = sizeNames(kind).size();
        // Without quotes "2 in" is two words, of which the second would be a size of an inch.
        bool const hasUnitAlone =
            std::any_of(texts.sizes.begin(), texts.sizes.end(), [](std::wstring const & text) {
                return !text.empty() && Units::UnitContext::parse(text);
            });
        if (hasUnitAlone || (texts.sizes.size() != sizes && texts.sizes.size() != sizes + 3)) {
            std::wstring needed;
            for (char const * const size : sizeNames(kind)) needed += L' ' + Text::widen(size);
            return bad(message(L"a part of this kind is made so, and an expression with blanks "
                               L"goes in quotes: Blocks.New %1%%2% [x y z]",
                               {typedName(kind), needed}));
        }
        auto const place = texts.sizes.begin() + static_cast<std::ptrdiff_t>(sizes);
        texts.place.assign(place, texts.sizes.end());
        texts.sizes.erase(place, texts.sizes.end());
        StrongRef<Part> part;
        Fault fault;
        Status const status = makePart(asset, kind, texts, nullptr, part, &fault);
        return status ? described(*part) : refused(status, fault);
    }
    return bad(message(L"\"%1%\" is none of block, cylinder and sphere", {Text::clipped(name)}));
}

// Finds an item and does something to it.
template <class What>
Result withItem(Asset const & asset, std::wstring const & path, What && what) {
    StrongRef<Item> item;
    Status const status = findItem(asset, path, item);
    return status ? what(*item) : refused(status);
}

// The same for parts.
template <class What>
Result withPart(Asset const & asset, std::wstring const & path, What && what) {
    return withItem(asset, path, [&](Item & item) {
        auto * const part = query<Part>(&item);
        return part ? what(*part) : bad(message(L"%1% is an assembly, not a part", {path}));
    });
}

Result set(Asset & asset, Parameters const & parameters) {
    return withPart(asset, parameters.parameter(0), [&](Part & part) {
        Fault fault;
        Status const status =
            setSize(part, Text::toUtf8(parameters.parameter(1)), parameters.parameter(2), &fault);
        return status ? described(part) : refused(status, fault);
    });
}

Result place(Asset & asset, Parameters const & parameters) {
    return withItem(asset, parameters.parameter(0), [&](Item & item) {
        Fault fault;
        Status const status = setPlace(item, parametersFrom(parameters, 1), &fault);
        return status ? described(item) : refused(status, fault);
    });
}

Result material(Asset & asset, Parameters const & parameters) {
    return withPart(asset, parameters.parameter(0), [&](Part & part) {
        Status const status = setMaterial(part, Text::toUtf8(parameters.parameter(1)));
        return status ? described(part) : refused(status);
    });
}

Result assembleItems(Asset & asset, Parameters const & parameters) {
    std::vector<StrongRef<Item>> items;
    for (std::wstring const & path : parametersFrom(parameters, 1)) {
        StrongRef<Item> item;
        if (Status const status = findItem(asset, path, item); !status) return refused(status);
        items.push_back(std::move(item));
    }
    StrongRef<Assembly> assembly;
    Status const status = assemble(asset, parameters.parameter(0), items, assembly);
    return status ? described(*assembly) : refused(status);
}

Result move(Asset & asset, Parameters const & parameters) {
    return withItem(asset, parameters.parameter(0), [&](Item & item) {
        StrongRef<Item> target;
        if (parameters.parameters() > 1) {
            Status const status = findItem(asset, parameters.parameter(1), target);
            if (!status) return refused(status);
            if (!query<Assembly>(target.get()))
                return bad(message(L"%1% is a part, not an assembly", {parameters.parameter(1)}));
        }
        Status const status = moveItem(item, query<Assembly>(target.get()));
        return status ? described(item) : refused(status);
    });
}

Result remove(Asset & asset, Parameters const & parameters) {
    StrongRef<Item> item;
    Status status = findItem(asset, parameters.parameter(0), item);
    if (status) status = deleteItem(std::move(item));
    return status ? good({}) : refused(status);
}

Result copy(Asset & asset, Parameters const & parameters) {
    int count = 0;
    if (!Utility::wholeNumberLexicalCast(parameters.parameter(1), count) || count < 1)
        return bad(
            message(L"\"%1%\" isn't a number of copies", {Text::clipped(parameters.parameter(1))}));
    return withItem(asset, parameters.parameter(0), [&](Item & item) {
        std::vector<StrongRef<Item>> copies;
        Status const status = duplicate(item, static_cast<std::size_t>(count), copies);
        if (!status) return refused(status);
        return good(copies.size() == 1 ? pathOf(*copies.front())
                                       : message(L"%1% to %2%", {pathOf(*copies.front()),
                                                                 pathOf(*copies.back())}));
    });
}

// The items of a document in the order of the list, with their paths; those that are too deep are
// only counted.
template <class Visit>
std::size_t forEachItem(Asset const & asset, Visit && visit) {
    std::size_t deeper = 0;
    StrongRef<Workbench> const bench = Workbench::find(asset);
    for (unsigned i = 0; bench && i < bench->children(); ++i) {
        auto * const top = query<Item>(bench->child(i).get());
        if (!top) continue;
        std::vector<std::wstring> way{std::to_wstring(i + 1)}; // the paths down to the item
        for (ItemBelow const & below : itemsFrom(*top)) {
            if (below.depth > c_deepestShown) {
                ++deeper;
                continue;
            }
            if (below.depth > 0) {
                way.resize(below.depth);
                way.push_back(way.back() + L'/' + std::to_wstring(below.number));
            }
            visit(*below.item, below.depth, way.back());
        }
    }
    return deeper;
}

Result list(Asset & asset, Parameters const & parameters) {
    Units::UnitContext const units = lengthContext(asset);
    bool const isTyped = parameters.hasFlag(L"Typed");
    std::wstring text;
    std::size_t const deeper =
        forEachItem(asset, [&](Item const & item, std::size_t depth, std::wstring const & path) {
            text += std::wstring(2 * depth, L' ') + path + L"  " + describe(item, units);
            if (std::wstring const typed = isTyped ? typedTexts(item) : L""; !typed.empty())
                text += L"  = " + typed;
            text += L'\n';
        });
    if (deeper)
        text += message(L"... and %1% that stand deeper", {std::to_wstring(deeper)}) + L'\n';
    return good(text.empty() ? tr(L"there are no blocks in the document") : text);
}

Result mass(Asset & asset, Parameters const & parameters) {
    Measures measures = Measures::ofNothing();
    if (parameters.parameters() == 0) {
        for (StrongRef<Item> const & item : itemsOf(asset)) measures.add(item->measures());
        measures.apply(MassProperties());
    } else {
        StrongRef<Item> item;
        Status const status = findItem(asset, parameters.parameter(0), item);
        if (!status) return refused(status);
        measures = item->measures();
    }
    StrongRef<Units::UnitSystem> const system = unitSystemOf(asset);
    using Show = std::wstring (*)(double, StrongRef<Units::UnitSystem>,
                                  CommonData::IComponentTraversalContext *, bool);
    auto const shown = [&](std::optional<double> const & value, Show show) {
        return value ? show(*value, system, nullptr, true) : tr(L"not known");
    };
    bool const isEmpty = measures.parts == 0;
    std::wstring const material = measures.material ? shownMaterial(*measures.material)
                                  : isEmpty         ? tr(L"none, for there are no parts")
                                                    : tr(L"(Various)");
    std::wstring const density = isEmpty && !measures.density
                                     ? tr(L"none, for there are no parts")
                                     : shown(measures.density, &MassProperties::densityString);
    std::pair<std::wstring, std::wstring> const rows[] = {
        {tr(L"Material"), material},
        {tr(L"Volume"), shown(measures.volume, &MassProperties::volumeString)},
        {tr(L"Area"), shown(measures.area, &MassProperties::areaString)},
        {tr(L"Mass"), shown(measures.mass, &MassProperties::massString)},
        {tr(L"Density"), density}};
    std::wstring text;
    for (auto const & [name, value] : rows) text += message(L"%1%: %2%", {name, value}) + L'\n';
    return good(std::move(text));
}

Result summaries(Asset & asset, Parameters const &) {
    std::wstring text;
    forEachItem(asset, [&](Item const & item, std::size_t, std::wstring const & path) {
        auto const * const assembly = query<Assembly>(&item);
        if (!assembly) return;
        Assembly::Summaries const & told = assembly->summaries();
        text += message(L"%1%  \"%2%\" was told %3% times before and %4% times after a change",
                        {path, Text::printable(Text::clipped(assembly->name())),
                         std::to_wstring(told.before), std::to_wstring(told.after)}) +
                L'\n';
    });
    return good(text.empty() ? tr(L"there are no assemblies in the document") : text);
}

// What can be typed in the places of parameters.

using Words = std::vector<std::wstring>;

Words paths(bool partsOnly, bool assembliesOnly) {
    Words words;
    Asset const * const asset = ActiveAsset::get();
    if (!asset) return words;
    forEachItem(*asset, [&](Item const & item, std::size_t, std::wstring const & path) {
        bool const isPart = query<Part>(&item) != nullptr;
        if (isPart ? !assembliesOnly : !partsOnly) words.push_back(path);
    });
    return words;
}

Words kinds(Parameters const & before) {
    Words words;
    if (before.parameters() == 0)
        for (EShape const kind : c_shapes) words.push_back(typedName(kind));
    return words;
}

Words pathThenSize(Parameters const & before) {
    if (before.parameters() == 0) return paths(true, false);
    Words words;
    StrongRef<Item> item;
    if (before.parameters() != 1 || !ActiveAsset::get() ||
        !findItem(*ActiveAsset::get(), before.parameter(0), item))
        return words;
    if (auto const * const part = query<Part>(item.get()))
        for (char const * const name : sizeNames(part->kind())) words.push_back(Text::widen(name));
    return words;
}

Words pathThenMaterial(Parameters const & before) {
    if (before.parameters() == 0) return paths(true, false);
    Words words;
    if (before.parameters() == 1)
        for (Material const & each : materials()) words.push_back(Text::fromUtf8(each.key()));
    return words;
}

Words pathAlone(Parameters const & before) {
    return before.parameters() == 0 ? paths(false, false) : Words();
}

Words pathThenAssembly(Parameters const & before) {
    if (before.parameters() == 1) return paths(false, true);
    return pathAlone(before);
}

Words pathsAfterName(Parameters const & before) {
    return before.parameters() > 0 ? paths(false, false) : Words();
}

Words nothing(Parameters const &) { return {}; }

// Marks a text that is translated when it is shown.
constexpr wchar_t const * marked(wchar_t const * text) { return text; }

struct Row {
    wchar_t const * name;
    wchar_t const * usage;
    wchar_t const * meaning;
    unsigned least; // parameters
    unsigned most;
    wchar_t const * flag; // null for none
    Result (*run)(Asset & asset, Parameters const & parameters);
    Words (*complete)(Parameters const & before);
};

constexpr unsigned c_any = std::numeric_limits<unsigned>::max();

constexpr Row c_rows[] = {
    {L"New", L"block|cylinder|sphere EXPRESSION...",
     marked(L"Makes a part with these sizes, and at that place if x, y and z follow"), 1, c_any,
     nullptr, &makeNew, &kinds},
    {L"Set", L"PATH SIZE EXPRESSION", marked(L"Changes a size of a part"), 3, 3, nullptr, &set,
     &pathThenSize},
    {L"Place", L"PATH X Y Z", marked(L"Places an item, within its assembly if it stands in one"), 4,
     4, nullptr, &place, &pathAlone},
    {L"Material", L"PATH MATERIAL", marked(L"Makes a part of another material"), 2, 2, nullptr,
     &material, &pathThenMaterial},
    {L"Assemble", L"NAME PATH...", marked(L"Puts items together in a new assembly"), 1, c_any,
     nullptr, &assembleItems, &pathsAfterName},
    {L"Move", L"PATH [ASSEMBLY]", marked(L"Moves an item into an assembly, or out of all of them"),
     1, 2, nullptr, &move, &pathThenAssembly},
    {L"Delete", L"PATH", marked(L"Deletes an item with all that stands in it"), 1, 1, nullptr,
     &remove, &pathAlone},
    {L"Duplicate", L"PATH N", marked(L"Makes copies of an item"), 2, 2, nullptr, &copy, &pathAlone},
    {L"List", L"[/Typed]",
     marked(L"Lists all items with their paths, and with /Typed what was typed for them"), 0, 0,
     L"Typed", &list, &nothing},
    {L"Mass", L"[PATH]", marked(L"Tells the mass of an item, or of all of them"), 0, 1, nullptr,
     &mass, &pathAlone},
    {L"Summaries", L"", marked(L"Tells how often assemblies were told of changes of their parts"),
     0, 0, nullptr, &summaries, &nothing},
};

class Command final : public TextCommand {
public:
    explicit Command(Row const & row)
        : TextCommand(c_area, row.name,
                      row.usage + std::wstring(*row.usage ? L" " : L"") + tr(row.meaning)),
          m_rRow(row) {}

private:
    Result onRun(Parameters const & parameters) override {
        std::wstring const usage = std::wstring(c_area) + L'.' + m_rRow.name + L' ' + m_rRow.usage;
        if (parameters.parameters() < m_rRow.least)
            return bad(message(L"more is needed: %1%", {usage}));
        if (parameters.parameters() > m_rRow.most)
            return bad(message(L"that is too much, and an expression with blanks goes in quotes: "
                               L"%1%",
                               {usage}));
        for (std::wstring const & flag : parameters.flags())
            if (!m_rRow.flag || !Text::foldedEqual(std::wstring_view(flag), m_rRow.flag))
                return bad(message(L"/%1% isn't a flag of it: %2%", {flag, usage}));
        Asset * const asset = ActiveAsset::get();
        return asset ? m_rRow.run(*asset, parameters) : bad(tr(L"no document is open"));
    }
    std::vector<std::wstring> onComplete(Parameters const & before) override {
        return m_rRow.complete(before);
    }

    Row const & m_rRow;
};

} // namespace

BlocksTextCommands::BlocksTextCommands()
    : m_pArea(std::make_unique<TextCommandSubjectArea>(
          c_area, tr(L"Commands that make blocks, cylinders and spheres"))) {
    for (Row const & row : c_rows) m_commands.push_back(std::make_unique<Command>(row));
}

BlocksTextCommands::~BlocksTextCommands() = default;

} // namespace Vn::Blocks
