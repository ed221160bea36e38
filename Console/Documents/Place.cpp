#include "Console/Documents/Place.h"

#include <algorithm>
#include <charconv>
#include <vector>

#include "Console/Documents/Session.h"
#include "Console/Texts.h"
#include "Platform/Base/InterfaceId.h"
#include "Platform/Base/Text.h"
#include "Platform/DataModel/ObjectPath.h"
#include "Platform/DataModel/Segment.h"
#include "Server/CommonData/Managed/Ancestors.h"
#include "Server/CommonData/Managed/ManagedEntity.h"
#include "Server/CommonData/Managed/ManagedEntityUtils.h"

namespace Vn::Console {

using Managed::AncestorWalk;
using Managed::ManagedEntity;
using Managed::ManagedGroupEntity;
using Managed::ManagedEntityUtils::parentOf;

namespace {

constexpr wchar_t c_child[] = L"CmnData";

bool isNumber(std::wstring_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](wchar_t c) {
        return Text::isDigit(static_cast<char32_t>(c));
    });
}

// The place among siblings that a name of a path tells; -1 if it isn't such a name.
int indexOf(Onk const & onk) {
    if (onk.strName() == c_child) return onk.repAsInt();
    Onk number;
    if (onk.rep().empty()) number.rep(onk.strName());
    return number.repAsInt();
}

std::wstring rootPath(std::wstring key) { return Onk(std::move(key)).toString(); }

std::wstring noChild(ManagedGroupEntity const & group, std::wstring const & path, Onk const & onk) {
    std::wstring const here = shownPath(path);
    if (indexOf(onk) < 0 && !isNumber(onk.strName()) && onk.strName() != c_child) {
        return inQuotes(onk.toString()) + L" isn't a child of " + here +
               L": children are called 0 or CmnData[0], 1 or CmnData[1], and so on";
    }
    unsigned const count = group.children();
    if (count == 0) return here + L" has no children";
    return here + L" has no child " + clipped(onk.toString()) + L": it has " +
           (count == 1 ? std::wstring(L"only 0") : L"0 to " + std::to_wstring(count - 1));
}

std::wstring noRoot(DocumentSession const & session, Onk const & onk) {
    std::vector<std::string> keys;
    session.design().rootEntityIds(keys);
    std::wstring text = L"the document has no root " + inQuotes(onk.toString());
    if (keys.empty()) return text;
    text += keys.size() == 1 ? L"; its root is " : L"; its roots are ";
    constexpr std::size_t c_most = 10;
    for (std::size_t i = 0; i < std::min(keys.size(), c_most); ++i) {
        if (i > 0) text += L", ";
        text += clipped(printable(rootPath(Text::fromUtf8(keys[i]))));
    }
    return keys.size() > c_most ? text + L" and others" : text;
}

std::wstring findById(DocumentSession const & session, std::wstring const & text,
                      DocumentPlace & place) {
    std::string const digits = Text::toUtf8(text.substr(1));
    unsigned long long id = 0;
    auto const [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), id);
    if (error != std::errc() || end != digits.data() + digits.size() || !isNumber(text.substr(1)))
        return inQuotes(text) + L" isn't an id: that is a number such as #12";
    StrongRef<Entity> const entity = session.asset().entity(id);
    if (!entity) return L"no entity has the id " + text;
    std::wstring path = entityPath(*entity);
    if (path.empty()) return text + L" isn't part of the tree";
    auto const * const managed = query<ManagedEntity>(entity.get());
    bool const isRoot = entity->segment()->rootKey(entity.get()) != nullptr;
    place = {entity, isRoot || !managed ? nullptr : managed->managedParent(), std::move(path)};
    return {};
}

} // namespace

void appendChild(std::wstring & path, std::size_t index) {
    path += L'/';
    path += c_child;
    path += L'[';
    path += std::to_wstring(index);
    path += L']';
}

std::wstring childPath(std::wstring path, std::size_t index) {
    appendChild(path, index);
    return path;
}

std::wstring shownPath(std::wstring const & path) {
    if (path.size() <= c_longestPath) return printable(path);
    std::size_t const longest = path.size() - c_longestPath;
    std::size_t const slash = path.find(L'/', longest);
    return L"..." + printable(path.substr(slash == path.npos ? longest : slash));
}

std::wstring entityPath(Entity const & entity) {
    if (!entity.segment()) return {};
    std::vector<int> places; // among their siblings, from below
    Onk onk;
    std::string const * key = nullptr;
    AncestorWalk walk{StrongRef<Entity>(const_cast<Entity *>(&entity))};
    for (; walk; walk.goTo(parentOf(*walk))) {
        key = entity.segment()->rootKey(&*walk);
        if (key) break;
        auto const * const managed = query<ManagedEntity>(&*walk);
        if (!managed) return {};
        onk.rep(std::wstring());
        managed->getOnk(onk);
        if (onk.repAsInt() < 0) return {};
        places.push_back(onk.repAsInt());
    }
    if (!key) return {}; // a damaged document may have parents that lead in a circle
    std::wstring path = rootPath(Text::fromUtf8(*key));
    for (auto place = places.rbegin(); place != places.rend(); ++place)
        appendChild(path, static_cast<std::size_t>(*place));
    return path;
}

bool isWithin(Entity const & entity, Entity const & above) {
    if (&entity == &above) return true;
    AncestorWalk walk(parentOf(entity));
    while (walk && !(walk.at() == &above)) walk.goTo(parentOf(*walk));
    return static_cast<bool>(walk);
}

std::wstring findPlace(DocumentSession const & session, std::wstring const & text,
                       DocumentPlace & place) {
    if (!text.empty() && text.front() == L'#') return findById(session, text, place);
    ObjectPath path;
    if (text != L"." && !ObjectPath::fromString(text, &session.design(), path)) {
        return inQuotes(text) + L" isn't a path: write it as 0/2, as Groups/CmnData[0]/CmnData[2], "
                                L"or as #12 with the "
                                L"id of the entity";
    }
    // A number in front counts the children of the root group.
    Onk first(Text::widen(DocumentSession::c_rootKey));
    bool isShort = true;
    if (!path.empty()) {
        Onk const & front = path.onks().front();
        isShort = isNumber(front.strName()) && front.rep().empty();
        if (!isShort) first = front;
    }
    StrongRef<Entity> root;
    if (first.rep().empty()) root = session.design().rootEntity(Text::toUtf8(first.strName()));
    if (!root) return noRoot(session, first);

    DocumentPlace found{root, nullptr, rootPath(first.strName())};
    for (std::size_t i = isShort ? 0 : 1; i < path.onks().size(); ++i) {
        Onk const & onk = path.onks()[i];
        auto * const group = query<ManagedGroupEntity>(found.entity.get());
        if (!group) return shownPath(found.path) + L" isn't a group and has no children";
        int const index = indexOf(onk);
        if (index < 0 || static_cast<unsigned>(index) >= group->children())
            return noChild(*group, found.path, onk);
        found.group = StrongRef<ManagedGroupEntity>(group);
        found.entity = group->child(static_cast<unsigned>(index));
        appendChild(found.path, static_cast<std::size_t>(index));
        if (!found.entity)
            return shownPath(found.path) + L" is empty: what stood there wasn't saved";
    }
    place = std::move(found);
    return {};
}

} // namespace Vn::Console
