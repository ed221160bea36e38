#include "Console/Documents/Place.h"

#include <algorithm>
#include <charconv>
#include <vector>

#include "Console/Documents/Session.h"
#include "Console/Messages.h"
#include "Console/Texts.h"
#include "Platform/Base/InterfaceId.h"
#include "Platform/Base/Text.h"
#include "Platform/DataModel/ObjectPath.h"
#include "Platform/DataModel/Segment.h"
#include "Server/CommonData/Managed/ManagedEntityUtils.h"

namespace Vn::Console {

using Managed::EPathFault;
using Managed::ManagedGroupEntity;
using Managed::siblingIndex;
using Managed::ManagedEntityUtils::c_childName;

namespace {

bool isNumber(std::wstring_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](wchar_t c) {
        return Text::isDigit(static_cast<char32_t>(c));
    });
}

std::wstring rootPath(std::wstring key) { return Onk(std::move(key)).toString(); }

std::wstring noChild(ManagedGroupEntity const & group, std::wstring const & path, Onk const & onk) {
    std::wstring const here = shownPath(path);
    if (siblingIndex(onk) < 0 && !isNumber(onk.strName()) && onk.strName() != c_childName) {
        return message(L"%1% isn't a child of %2%: children are called 0 or CmnData[0], 1 or "
                       L"CmnData[1], and so on",
                       inQuotes(onk.toString()), here);
    }
    unsigned const count = group.children();
    if (count == 0) return message(L"%1% has no children", here);
    std::wstring const child = clipped(onk.toString());
    if (count == 1) return message(L"%1% has no child %2%: it has only 0", here, child);
    return message(L"%1% has no child %2%: it has 0 to %3%", here, child, count - 1);
}

std::wstring noRoot(DocumentSession const & session, Onk const & onk) {
    std::vector<std::string> keys;
    session.design().rootEntityIds(keys);
    std::wstring const root = inQuotes(onk.toString());
    if (keys.empty()) return message(L"the document has no root %1%", root);
    constexpr std::size_t c_most = 10;
    std::wstring roots;
    for (std::size_t i = 0; i < std::min(keys.size(), c_most); ++i) {
        if (i > 0) roots += L", ";
        roots += clipped(printable(rootPath(Text::fromUtf8(keys[i]))));
    }
    if (keys.size() == 1)
        return message(L"the document has no root %1%; its root is %2%", root, roots);
    if (keys.size() <= c_most)
        return message(L"the document has no root %1%; its roots are %2%", root, roots);
    return message(L"the document has no root %1%; its roots are %2% and others", root, roots);
}

std::wstring findById(DocumentSession const & session, std::wstring const & text,
                      DocumentPlace & place) {
    std::string const digits = Text::toUtf8(text.substr(1));
    unsigned long long id = 0;
    auto const [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), id);
    if (error != std::errc() || end != digits.data() + digits.size() || !isNumber(text.substr(1)))
        return message(L"%1% isn't an id: that is a number such as #12", inQuotes(text));
    StrongRef<Entity> const entity = session.asset().entity(id);
    if (!entity) return message(L"no entity has the id %1%", text);
    std::wstring path = entityPath(*entity);
    if (path.empty()) return message(L"%1% isn't part of the tree", text);
    place = {Managed::placeOf(entity), std::move(path)};
    return {};
}

} // namespace

void appendChild(std::wstring & path, std::size_t index) {
    path += L'/';
    path += c_childName;
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
    return Managed::ManagedEntityUtils::objectPath(entity).toString();
}

std::wstring findPlace(DocumentSession const & session, std::wstring const & text,
                       DocumentPlace & place) {
    if (!text.empty() && text.front() == L'#') return findById(session, text, place);
    ObjectPath path;
    if (text != L"." && !ObjectPath::fromString(text, &session.design(), path)) {
        return message(L"%1% isn't a path: write it as 0/2, as Groups/CmnData[0]/CmnData[2], "
                       L"or as #12 with the id of the entity",
                       inQuotes(text));
    }
    // A number in front counts the children of the root group.
    std::vector<Onk> onks = path.onks();
    if (onks.empty() || (isNumber(onks.front().strName()) && onks.front().rep().empty()))
        onks.insert(onks.begin(), Onk(Text::widen(DocumentSession::c_rootKey)));
    Managed::PathEnd const end =
        Managed::followPath(session.design(), ObjectPath(&session.design(), onks));
    if (end.fault == EPathFault::NoRoot) return noRoot(session, onks.front());

    std::wstring found = rootPath(onks.front().strName());
    for (std::size_t i = 1; i < end.onks; ++i)
        appendChild(found, static_cast<std::size_t>(siblingIndex(onks[i])));
    switch (end.fault) {
    case EPathFault::NotAGroup:
        return message(L"%1% isn't a group and has no children", shownPath(found));
    case EPathFault::NoChild:
        return noChild(*query<ManagedGroupEntity>(end.place.entity.get()), found, onks[end.onks]);
    case EPathFault::EmptyPlace:
        appendChild(found, static_cast<std::size_t>(siblingIndex(onks[end.onks])));
        return message(L"%1% is empty: what stood there wasn't saved", shownPath(found));
    default:
        break;
    }
    place = {end.place, std::move(found)};
    return {};
}

} // namespace Vn::Console
