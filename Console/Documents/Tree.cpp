#include "Console/Documents/Tree.h"

#include <ostream>
#include <string>
#include <unordered_set>
#include <vector>

#include <nlohmann/json.hpp>

#include "Console/Documents/EntityTexts.h"
#include "Console/Documents/Interruption.h"
#include "Console/Documents/Place.h"
#include "Console/Documents/Session.h"
#include "Console/Messages.h"
#include "Console/Texts.h"
#include "Platform/Base/InterfaceId.h"
#include "Platform/Base/Text.h"
#include "Platform/DataModel/ObjectPath.h"
#include "Platform/DataModel/Segment.h"
#include "Platform/Scene/Camera.h"
#include "Server/CommonData/Managed/ManagedGroupEntity.h"
#include "Server/CommonData/NamedViews/NamedView.h"

namespace Vn::Console {

using Managed::ManagedGroupEntity;

namespace {

// Goes through entities and all below them, without depending on how deep they stand or on whether
// groups list each other in a circle.
class TreeWalk {
public:
    // An entity on the way.
    struct Step {
        Entity const & entity;
        ManagedGroupEntity const * parent; // that lists it; null for a root
        unsigned index;                    // among the children of `parent`
        ManagedGroupEntity const * group;  // the entity itself, if it is one
        bool repeated;                     // a group that was there before, and isn't entered again
        std::wstring const & path;
    };

    // Begins at an entity, which is the child at `place` of `group`, or a root if that is null.
    template <class Visit>
    void from(Entity const & first, ManagedGroupEntity const * group, unsigned place,
              std::wstring const & path, Visit && visit) {
        m_path = path;
        enter(first, group, place, visit);
        while (!m_open.empty()) {
            endIfInterrupted();
            Level & level = m_open.back();
            m_path.resize(level.pathLength);
            if (level.next == level.group->children()) {
                m_open.pop_back();
                continue;
            }
            unsigned const index = level.next++;
            ManagedGroupEntity const * const parent = level.group;
            Entity const * const child = parent->child(index).get();
            if (!child) continue; // it wasn't saved, and left its place empty
            appendChild(m_path, index);
            enter(*child, parent, index, visit);
        }
    }

private:
    struct Level {
        ManagedGroupEntity const * group;
        std::size_t pathLength;
        unsigned next;
    };

    template <class Visit>
    void enter(Entity const & entity, ManagedGroupEntity const * parent, unsigned index,
               Visit && visit) {
        auto const * const group = query<ManagedGroupEntity>(&entity);
        bool const repeated = group && !m_entered.insert(group).second;
        visit(Step{entity, parent, index, group, repeated, m_path});
        if (group && !repeated) m_open.push_back({group, m_path.size(), 0});
    }

    std::vector<Level> m_open;
    std::unordered_set<ManagedGroupEntity const *> m_entered;
    std::wstring m_path;
};

// Which of the children of its group a place is, by the last name of its path; 0 for a root.
unsigned indexIn(DocumentPlace const & place) {
    ObjectPath path;
    if (!place.group || !ObjectPath::fromString(place.path, nullptr, path)) return 0;
    return static_cast<unsigned>(Managed::siblingIndex(path.onks().back()));
}

std::string jsonLine(TreeWalk::Step const & step, std::wstring const & text) {
    nlohmann::ordered_json line;
    if (step.path.size() <= c_longestPath)
        line["path"] = Text::toUtf8(step.path);
    else
        line["path"] = nullptr;
    line["id"] = step.entity.id();
    if (step.parent) {
        line["parent"] = step.parent->id();
        line["index"] = step.index;
    } else {
        line["parent"] = nullptr;
        line["index"] = nullptr;
    }
    line["class"] = className(step.entity);
    if (step.group)
        line["children"] = step.group->children();
    else
        line["children"] = nullptr;
    if (step.repeated) line["repeated"] = true;
    line["text"] = Text::toUtf8(text);
    return line.dump();
}

void writeLine(TreeWalk::Step const & step, ETreeForm form, std::ostream & out) {
    if (form == ETreeForm::Json) {
        out << jsonLine(step, step.entity.toString()) << '\n';
        return;
    }
    out << Text::toUtf8(shownPath(step.path)) << "  #" << step.entity.id() << "  ";
    if (form == ETreeForm::Verbose) {
        out << Text::toUtf8(printable(step.entity.toString()));
    } else {
        std::wstring const gist = gistOf(step.entity);
        out << Text::toUtf8(kindOf(step.entity) + (gist.empty() ? L"" : L"  ") + gist);
    }
    if (step.repeated && step.group->children() > 0)
        out << Text::toUtf8(message(L"  (its children are shown above)"));
    out << '\n';
}

// A camera is a part of its view.
void markSeen(Entity const & entity, std::unordered_set<Entity const *> & seen) {
    seen.insert(&entity);
    auto const * const view = query<NameView::NamedView>(&entity);
    if (view && view->camera()) seen.insert(view->camera().get());
}

} // namespace

void writeTree(DocumentSession const & session, ETreeForm form, std::ostream & out) {
    TreeWalk walk;
    std::unordered_set<Entity const *> seen;
    std::vector<std::string> keys;
    session.design().rootEntityIds(keys);
    for (std::string const & key : keys) {
        StrongRef<Entity> const root = session.design().rootEntity(key);
        walk.from(*root, nullptr, 0, Onk(Text::fromUtf8(key)).toString(),
                  [&](TreeWalk::Step const & step) {
                      if (form != ETreeForm::Json) markSeen(step.entity, seen);
                      writeLine(step, form, out);
                  });
    }
    if (form == ETreeForm::Json) return;
    std::size_t const outside = session.asset().entities() - seen.size();
    if (outside == 0) return;
    out << Text::toUtf8(counted(outside, tr(L"%1% entity stands outside the tree"),
                                tr(L"%1% entities stand outside the tree")))
        << '\n';
}

void writeTree(DocumentPlace const & place, ETreeForm form, std::ostream & out) {
    TreeWalk().from(*place.entity, place.group.get(), indexIn(place), place.path,
                    [&](TreeWalk::Step const & step) { writeLine(step, form, out); });
}

std::size_t entitiesBelow(Entity const & entity) {
    std::unordered_set<Entity const *> below;
    TreeWalk().from(entity, nullptr, 0, {},
                    [&](TreeWalk::Step const & step) { below.insert(&step.entity); });
    return below.size() - 1;
}

} // namespace Vn::Console
