// What the commands of the subject area "Groups" do.

#include <string_view>
#include <utility>

#include "Console/Documents/Interruption.h"
#include "Console/Documents/Operations.h"
#include "Console/Documents/Place.h"
#include "Console/Documents/Session.h"
#include "Console/Documents/Tree.h"
#include "Console/Messages.h"
#include "Console/Texts.h"
#include "Platform/Base/InterfaceId.h"
#include "Platform/Base/Text.h"
#include "Platform/DataModel/Segment.h"
#include "Server/CommonData/Managed/TreePlace.h"
#include "Server/CommonData/NamedViews/NamedViews.h"

namespace Vn::Console {

using Managed::EMove;
using Managed::EMoveFault;
using Managed::ManagedEntity;
using Managed::ManagedGroupEntity;

using Parameters = TextCommandParameters;

namespace {

constexpr unsigned c_mostAtOnce = 1'000'000;

std::wstring withId(std::wstring const & path, unsigned long long id) {
    return shownPath(path) + L" (#" + std::to_wstring(id) + L')';
}

std::wstring entities(std::size_t count) {
    return counted(count, tr(L"%1% entity"), tr(L"%1% entities"));
}

ManagedGroupEntity * groupAt(DocumentPlace const & place) {
    return query<ManagedGroupEntity>(place.entity.get());
}

// Why nothing can be put into a group or taken out of it: the named views have commands of their
// own, which keep those that are built in.
std::wstring whyNotIn(ManagedGroupEntity * group, std::wstring const & command) {
    if (!group || !query<NameView::NamedViews>(group)) return {};
    return message(L"the group holds the named views, and %1% is for these", L"Views." + command);
}

// Finds a group that is to get children.  The root group is the one without a name, and is made by
// the change if the document came without it: there is no entity then.
std::wstring findGroup(DocumentSession const & session, std::wstring const & text,
                       DocumentPlace & place) {
    bool const isRoot =
        text.empty() || text == L"." || text == Text::widen(DocumentSession::c_rootKey);
    if (isRoot && !session.root()) {
        place = {{nullptr, nullptr}, Text::widen(DocumentSession::c_rootKey)};
        return {};
    }
    DocumentPlace found;
    std::wstring why = findPlace(session, isRoot ? L"." : text, found);
    if (!why.empty()) return why;
    if (!groupAt(found)) return message(L"%1% isn't a group", shownPath(found.path));
    why = whyNotIn(groupAt(found), L"New");
    if (why.empty()) place = std::move(found);
    return why;
}

// The group at a place, made if it isn't there yet.
StrongRef<Entity> groupFor(DocumentSession & session, DocumentPlace const & place) {
    if (place.entity) return place.entity;
    return makeRootGroup(session.design());
}

std::size_t children(DocumentPlace const & place) {
    return place.entity ? groupAt(place)->children() : 0;
}

} // namespace

TextCommandResult makeGroupAt(DocumentSession & session, Parameters const & parameters) {
    DocumentPlace parent;
    std::wstring const why = findGroup(session, parameters.parameter(0), parent);
    if (!why.empty()) return cannot(L"cannot make a group: %1%", why);
    std::wstring const path = childPath(parent.path, children(parent));
    unsigned long long id = 0;
    bool const isCustom = parameters.hasFlag(L"Custom");
    session.change(message(L"make %1%", shownPath(path)), [&] {
        StrongRef<Entity> const group = groupFor(session, parent);
        id = isCustom ? makeCustomGroups(group)->id() : makeGroup(group)->id();
    });
    return {0, message(L"made %1%", withId(path, id))};
}

namespace {

// Zero for what isn't a number of entities.
unsigned readCount(std::wstring const & text) {
    unsigned count = 0;
    for (wchar_t const c : text) {
        if (!Text::isDigit(static_cast<char32_t>(c)) || count > c_mostAtOnce) return 0;
        count = 10 * count + static_cast<unsigned>(c - L'0');
    }
    return count <= c_mostAtOnce ? count : 0;
}

} // namespace

TextCommandResult addEntities(DocumentSession & session, Parameters const & parameters) {
    DocumentPlace parent;
    std::wstring const why = findGroup(session, parameters.parameter(0), parent);
    if (!why.empty()) return cannot(L"cannot add entities: %1%", why);
    unsigned count = 1;
    if (parameters.parameters() > 1) count = readCount(parameters.parameter(1));
    if (count == 0) {
        return cannot(L"cannot add entities: %1%",
                      message(L"%1% isn't a whole number from 1 to %2%",
                              inQuotes(parameters.parameter(1)), c_mostAtOnce));
    }
    std::size_t const first = children(parent);
    unsigned long long id = 0;
    session.change(message(L"add %1% to %2%", entities(count), shownPath(parent.path)), [&] {
        StrongRef<Entity> const group = groupFor(session, parent);
        for (unsigned i = 0; i < count; ++i) {
            endIfInterrupted();
            id = makeEntity(group)->id();
        }
    });
    if (count == 1) return {0, message(L"added %1%", withId(childPath(parent.path, first), id))};
    return {0, message(L"added %1%: %2% to %3%", entities(count),
                       shownPath(childPath(parent.path, first)),
                       shownPath(childPath(parent.path, first + count - 1)))};
}

namespace {

// Finds an entity that is to be taken out of the group that lists it.
std::wstring findMember(DocumentSession const & session, std::wstring const & text,
                        DocumentPlace & place) {
    std::wstring const why = findPlace(session, text, place);
    if (!why.empty()) return why;
    if (!place.group) return message(L"%1% is a root of the tree", shownPath(place.path));
    return whyNotIn(place.group.get(), L"Delete");
}

// Takes an entity out of the group that lists it.  The answer tells whether it has gone.
bool takeOut(DocumentSession & session, std::wstring const & name, DocumentPlace & place) {
    unsigned long long const id = place.entity->id();
    session.change(name, [&] {
        StrongRef<ManagedEntity> child(query<ManagedEntity>(place.entity.get()));
        place.entity.reset();
        place.group->removeChild(child);
    });
    return !session.asset().entity(id);
}

// What was done, and that the entity is there all the same if it hasn't gone.
std::wstring unlessHeld(std::wstring const & done, bool gone) {
    return gone ? done
                : message(L"%1%; something else holds it, and it stays in the document", done);
}

} // namespace

TextCommandResult removeEntity(DocumentSession & session, Parameters const & parameters) {
    DocumentPlace place;
    std::wstring const why = findMember(session, parameters.parameter(0), place);
    if (!why.empty()) return cannot(L"cannot remove: %1%", why);
    std::wstring const path = shownPath(place.path);
    if (auto const * const group = groupAt(place); group && group->children() > 0) {
        std::size_t const below = entitiesBelow(*place.entity);
        return cannot(L"cannot remove: %1%",
                      message(L"%1% is a group with %2% below it; Groups.Delete deletes them all",
                              path, entities(below)));
    }
    std::wstring const answer = message(L"removed %1%", withId(place.path, place.entity->id()));
    return {0, unlessHeld(answer, takeOut(session, message(L"remove %1%", path), place))};
}

TextCommandResult deleteGroup(DocumentSession & session, Parameters const & parameters) {
    DocumentPlace place;
    std::wstring const why = findMember(session, parameters.parameter(0), place);
    if (!why.empty()) return cannot(L"cannot delete: %1%", why);
    std::wstring const path = shownPath(place.path);
    if (!groupAt(place))
        return cannot(L"cannot delete: %1%",
                      message(L"%1% isn't a group; Groups.Remove takes it out of its own", path));
    std::size_t const below = entitiesBelow(*place.entity);
    std::wstring const answer =
        below > 0 ? message(L"deleted %1% and %2% below it", withId(place.path, place.entity->id()),
                            entities(below))
                  : message(L"deleted %1%", withId(place.path, place.entity->id()));
    return {0, unlessHeld(answer, takeOut(session, message(L"delete %1%", path), place))};
}

namespace {

bool readWhere(std::wstring const & text, EMove & where) {
    constexpr std::pair<std::wstring_view, EMove> c_words[] = {
        {L"before", EMove::Before}, {L"after", EMove::After}, {L"into", EMove::Into}};
    for (auto const & [word, meaning] : c_words) {
        if (!Text::foldedEqual(std::wstring_view(text), word)) continue;
        where = meaning;
        return true;
    }
    return false;
}

// Why an entity can't go to a place.
std::wstring whyNotMove(DocumentPlace const & moved, DocumentPlace const & target, EMove where) {
    std::wstring const from = shownPath(moved.path);
    std::wstring const to = shownPath(target.path);
    switch (Managed::whyNotMove(moved, where, target)) {
    case EMoveFault::None:
        break;
    case EMoveFault::Same:
        return message(L"an entity has no place beside or within itself");
    case EMoveFault::Root:
        return message(L"%1% is a root of the tree", from);
    case EMoveFault::NotAGroup:
        return message(L"%1% isn't a group", to);
    case EMoveFault::NoSiblings:
        return message(L"%1% is a root and has no siblings", to);
    case EMoveFault::Foreign:
        return message(L"%1% has another parent than the group that lists it", from);
    case EMoveFault::TargetForeign:
        return message(L"%1% has another parent than the group that lists it", to);
    case EMoveFault::Within:
        return message(L"%1% stands within %2%", to, from);
    case EMoveFault::Dead: // not what a path leads to
    case EMoveFault::OtherDocument:
        return message(L"%1% isn't in the same document", to);
    }
    std::wstring const why = whyNotIn(moved.group.get(), L"Move");
    if (!why.empty()) return why;
    return whyNotIn(where == EMove::Into ? groupAt(target) : target.group.get(), L"Move");
}

} // namespace

TextCommandResult moveEntity(DocumentSession & session, Parameters const & parameters) {
    DocumentPlace moved;
    DocumentPlace target;
    EMove where = EMove::Before;
    std::wstring why = findPlace(session, parameters.parameter(0), moved);
    if (why.empty() && !readWhere(parameters.parameter(1), where)) {
        why = message(L"an entity goes before or after another, or into a group, not %1%",
                      inQuotes(parameters.parameter(1)));
    }
    if (why.empty()) why = findPlace(session, parameters.parameter(2), target);
    if (why.empty()) why = whyNotMove(moved, target, where);
    if (!why.empty()) return cannot(L"cannot move: %1%", why);

    std::wstring const before = shownPath(moved.path);
    std::wstring const name =
        message(L"move %1% %2% %3%", before, parameters.parameter(1), shownPath(target.path));
    Status status;
    session.change(name, [&] { status = Managed::moveEntity(moved, where, target, name); });
    if (!status) return {1, statusText(status)};
    std::wstring const now = entityPath(*moved.entity);
    if (now == moved.path) return {0, message(L"%1% is there already", before)};
    return {0, message(L"moved %1% to %2%", before, withId(now, moved.entity->id()))};
}

} // namespace Vn::Console
