#include "Tests/DataModel/DocumentWalk.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

#include <sqlite3.h>

#include "Platform/DataModel/DocumentFile.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace Vn::Testing {

namespace {

constexpr std::size_t c_mostSteps = 40;
constexpr std::size_t c_mostHeld = 12;

unsigned long long idOf(Entity const * entity) { return entity ? entity->id() : 0; }

std::string idText(unsigned long long id) { return std::to_string(id); }

// Not Sql of DocumentSql.h, which needs the test framework: the fuzzer, which walks too, has none.
bool runSql(std::filesystem::path const & file, char const * sql) {
    sqlite3 * database = nullptr;
    bool const isDone = sqlite3_open(utf8(file).c_str(), &database) == SQLITE_OK &&
                        sqlite3_exec(database, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
    sqlite3_close(database);
    return isDone;
}

} // namespace

// What is let go may end, which is told here too: the list is in order before.
void DocumentWalk::Keeper::keep(Entity * entity) {
    switch (m_walk.below(6)) {
    case 0:
        if (m_kept.size() < c_mostHeld) m_kept.emplace_back(entity);
        break;
    case 1:
        if (auto const * const thing = query<Thing>(entity);
            thing && !thing->m_children.empty() && m_kept.size() < c_mostHeld)
            m_kept.emplace_back(thing->m_children.front().get());
        break;
    case 2: {
        auto const all = std::exchange(m_kept, {});
        break;
    }
    case 3:
        if (!m_kept.empty()) {
            StrongRef<Entity> const last = std::move(m_kept.back());
            m_kept.pop_back();
        }
        break;
    default:
        break;
    }
}

DocumentWalk::DocumentWalk(Source source, std::filesystem::path file)
    : m_source(std::move(source)), m_file(std::move(file)),
      m_pKeeper(std::make_unique<Keeper>(*this)) {
    StrongRef<Asset> const made = Asset::make(nullptr);
    StrongRef<Thing> const root = Thing::make(*made, L"root");
    made->segment(SegmentType::DesignSegment)->addRoot(root, "root");
    start(made);
}

DocumentWalk::~DocumentWalk() {
    for (PassiveRef<Thing> const & observed : m_observed)
        if (StrongRef<Thing> const entity = observed.lock()) entity->unsubscribe(m_pKeeper.get());
    m_rAsset.reset(); // before what is held
    std::error_code ignored;
    if (!m_file.empty()) std::filesystem::remove(m_file, ignored);
}

void DocumentWalk::start(StrongRef<Asset> asset) {
    // References to entities of the document before, which is closed, stay.
    m_observed.clear();
    m_rAsset = std::move(asset);
    m_rAsset->history().stepLimit(c_mostSteps);
    m_model = readAll();
    m_states = {m_model};
    m_present = 0;
    std::set<Id> reached;
    for (auto const & [key, id] : m_model.roots) reach(id, reached);
    m_unowned.clear();
    for (auto const & [id, node] : m_model.nodes)
        if (!reached.contains(id)) m_unowned.push_back(id);
}

// Adds what an entity owns, and itself.
void DocumentWalk::reach(Id from, std::set<Id> & reached) const {
    std::vector<Id> way{from};
    while (!way.empty()) {
        Id const id = way.back();
        way.pop_back();
        if (!id || !reached.insert(id).second) continue;
        auto const node = m_model.nodes.find(id);
        if (node == m_model.nodes.end()) continue;
        way.insert(way.end(), node->second.children.begin(), node->second.children.end());
        way.push_back(node->second.owned);
    }
}

DocumentWalk::Model DocumentWalk::readAll() const {
    Model model;
    for (Entity * const entity : m_rAsset->allEntities()) {
        Thing const & thing = *query<Thing>(entity);
        Node & node = model.nodes[thing.id()];
        node.number = thing.m_int;
        node.name = thing.m_name;
        node.words = thing.m_words;
        node.owned = idOf(thing.m_rOwned.get());
        node.companion = idOf(thing.m_rFriend.get());
        for (auto const & child : thing.m_children) node.children.push_back(idOf(child.get()));
        for (auto const & other : thing.m_friends) node.friends.push_back(idOf(other.get()));
    }
    Segment const & design = *m_rAsset->segment(SegmentType::DesignSegment);
    std::vector<std::string> keys;
    design.rootEntityIds(keys);
    for (std::string const & key : keys) model.roots[key] = idOf(design.rootEntity(key).get());
    return model;
}

// --- What is done ------------------------------------------------------------------------------

bool DocumentWalk::step() {
    m_did.clear();
    unsigned const what = below(100);
    if (what < 45)
        transaction(0);
    else if (what < 62)
        undo(true);
    else if (what < 74)
        undo(false);
    else if (what < 83)
        hold();
    else if (what < 95)
        letGo();
    else if (what < 97)
        quietChange();
    else if (!m_file.empty())
        save(what == 97 ? After::Nothing : what == 98 ? After::Load : After::Migrate);
    if (m_wrong.empty()) check();
    return m_wrong.empty();
}

StrongRef<Thing> DocumentWalk::thing(Id id) const {
    return StrongRef<Thing>(query<Thing>(m_rAsset->entity(id).get()));
}

// An entity that is alive.
DocumentWalk::Id DocumentWalk::pick() const {
    auto const all = m_rAsset->allEntities();
    return all.empty() ? 0 : all[m_source(static_cast<unsigned>(all.size()))]->id();
}

bool DocumentWalk::reaches(Id from, Id to) const {
    std::set<Id> reached;
    reach(from, reached);
    return reached.contains(to);
}

void DocumentWalk::transaction(unsigned depth) {
    Model const before = m_model;
    bool isStep = false;
    {
        Transaction transaction(*m_rAsset, L"walk");
        for (unsigned n = below(4) + 1; n--;)
            if (depth < 2 && below(8) == 0)
                this->transaction(depth + 1);
            else
                change();
        if (below(5) == 0) {
            m_did += "abort; ";
            transaction.abort();
            m_model = before;
        } else {
            m_did += "commit; ";
            isStep = transaction.commit();
        }
    }
    if (depth) return;
    if (!isStep) {
        m_states[m_present] = m_model;
        return;
    }
    m_states.resize(m_present + 1);
    m_states.push_back(m_model);
    ++m_present;
    if (m_present > c_mostSteps) {
        m_states.erase(m_states.begin());
        --m_present;
    }
}

void DocumentWalk::change() {
    Id const id = pick();
    if (!id) return;
    StrongRef<Thing> entity = thing(id);
    auto const say = [&](std::string const & what) { m_did += what + ' ' + idText(id) + "; "; };
    switch (below(14)) {
    case 0:
    case 1:
    case 2: {
        std::wstring const name(below(12), static_cast<wchar_t>(L'a' + below(26)));
        StrongRef<Thing> made = Thing::make(*m_rAsset, name);
        Id const child = made->id();
        say("make " + idText(child) + " in");
        m_model.nodes[child].name = name;
        if (below(8)) {
            auto & children = m_model.nodes[id].children;
            unsigned const place = below(static_cast<unsigned>(children.size()) + 1);
            entity->insert(made, place);
            children.insert(children.begin() + place, child);
        }
        if (below(4) == 0) m_held.emplace_back(made);
        break;
    }
    case 3:
    case 4: {
        auto & children = m_model.nodes[id].children;
        if (children.empty()) break;
        unsigned const place = below(static_cast<unsigned>(children.size()));
        say("remove " + idText(children[place]) + " from");
        if (below(3) == 0) m_held.emplace_back(entity->m_children[place].get());
        entity->remove(place);
        children.erase(children.begin() + place);
        break;
    }
    case 5:
    case 6: {
        Id const other = pick();
        StrongRef<Thing> const listed = thing(other);
        if (reaches(other, id)) break;
        say("list " + idText(other) + " in");
        auto & children = m_model.nodes[id].children;
        unsigned const place = below(static_cast<unsigned>(children.size()) + 1);
        entity->insert(listed, place);
        children.insert(children.begin() + place, other);
        break;
    }
    case 7: {
        Id const other = below(2) ? pick() : 0;
        if (other && reaches(other, id)) break;
        say("let own " + idText(other) + ':');
        entity->set(&Thing::m_rOwned, other ? thing(other) : StrongRef<Thing>());
        m_model.nodes[id].owned = other;
        break;
    }
    case 8: {
        say("rename");
        std::wstring const name(below(20), static_cast<wchar_t>(L'a' + below(26)));
        entity->set(&Thing::m_name, name);
        m_model.nodes[id].name = name;
        break;
    }
    case 9: {
        say("number");
        int const number = static_cast<int>(below(5));
        entity->set(&Thing::m_int, number);
        m_model.nodes[id].number = number;
        break;
    }
    case 10: {
        Id const other = pick();
        say("befriend " + idText(other) + " by");
        entity->set(&Thing::m_rFriend, PassiveRef<Entity>(thing(other)));
        m_model.nodes[id].companion = other;
        auto friends = entity->m_friends;
        friends.emplace_back(thing(other));
        entity->set(&Thing::m_friends, std::move(friends));
        m_model.nodes[id].friends.push_back(other);
        break;
    }
    case 11: {
        Segment & design = *m_rAsset->segment(SegmentType::DesignSegment);
        std::string const key = "r" + std::to_string(below(3));
        if (below(2)) {
            say("root " + key);
            design.addRoot(entity, key);
            m_model.roots[key] = id;
        } else {
            m_did += "no root " + key + "; ";
            design.addRoot(nullptr, key);
            m_model.roots.erase(key);
        }
        break;
    }
    case 12: {
        say("reverse");
        auto children = entity->m_children;
        std::reverse(children.begin(), children.end());
        entity->set(&Thing::m_children, std::move(children));
        auto & ids = m_model.nodes[id].children;
        std::reverse(ids.begin(), ids.end());
        break;
    }
    default:
        entity.reset();
        below(2) ? hold() : letGo();
    }
}

// A change outside of a transaction, which ends the history.
void DocumentWalk::quietChange() {
    Id const id = pick();
    if (!id) return;
    m_did += "quiet change of " + idText(id) + "; ";
    int const number = static_cast<int>(below(1000)) + 10;
    thing(id)->set(&Thing::m_int, number);
    m_model.nodes[id].number = number;
    m_states = {m_model};
    m_present = 0;
}

void DocumentWalk::undo(bool undoing) {
    m_did += undoing ? "undo; " : "redo; ";
    ChangeHistory & history = m_rAsset->history();
    bool const can = undoing ? m_present > 0 : m_present + 1 < m_states.size();
    if ((undoing ? history.undo() : history.redo()).ok() != can) {
        fail("it is done exactly if there is a step");
        return;
    }
    if (can) undoing ? --m_present : ++m_present;
    m_model = m_states[m_present];
}

void DocumentWalk::hold() {
    if (m_held.size() >= c_mostHeld) return;
    Id const id = pick();
    m_did += "hold " + idText(id) + "; ";
    StrongRef<Thing> const entity = thing(id);
    m_held.emplace_back(entity);
    if (entity && below(3) == 0) {
        entity->subscribe(m_pKeeper.get());
        m_observed.emplace_back(entity);
    }
}

void DocumentWalk::letGo() {
    if (m_held.empty()) return;
    auto const i = m_held.begin() + below(static_cast<unsigned>(m_held.size()));
    m_did += "let go " + idText((*i)->id()) + "; ";
    StrongRef<Entity> const last = std::move(*i); // goes once the list is in order
    m_held.erase(i);
}

void DocumentWalk::save(After after) {
    m_did += after == After::Nothing ? "save; "
             : after == After::Load  ? "save and load; "
                                     : "save, load and migrate; ";
    Status const saved = m_rAsset->file().empty() ? DocumentFile::saveAs(*m_rAsset, m_file)
                                                  : DocumentFile::save(*m_rAsset);
    if (!saved) {
        fail("a save: " + saved.toString());
        return;
    }
    if (m_rAsset->isDirty()) {
        fail("what was saved is clean");
        return;
    }
    StrongRef<Asset> loaded;
    Status const status = DocumentFile::load(m_file, nullptr, loaded);
    if (!status) {
        fail("a load: " + status.toString());
        return;
    }
    if (dump(*loaded) != dump(*m_rAsset)) {
        fail("what was saved is the document");
        return;
    }
    if (after == After::Load) start(loaded);
    if (after != After::Migrate) return;

    // The members of version 0 are those of the present one.
    if (!runSql(m_file, "UPDATE types SET version=0 WHERE id='Test-Thing'")) {
        fail("the file can be made an old one");
        return;
    }
    bool isChanged = false;
    Thing::s_migrate = [&](Thing & entity) { isChanged = migrate(entity) || isChanged; };
    Status const migrated = DocumentFile::load(m_file, nullptr, loaded);
    Thing::s_migrate = nullptr;
    if (!migrated)
        fail("a load with a migration: " + migrated.toString());
    else if (loaded->isDirty() != isChanged)
        fail("what hooks of a migration changed isn't clean, and the rest is");
    else
        start(loaded);
}

bool DocumentWalk::migrate(Thing & entity) {
    switch (below(8)) {
    case 0:
        entity.set(&Thing::m_name, std::wstring(L"migrated"));
        return true;
    case 1:
        entity.m_int = static_cast<int>(below(1000));
        entity.markModified(&entity.m_int);
        return true;
    case 2:
        entity.add(Thing::make(entity.segment(), L"made"));
        return true;
    case 3:
        if (entity.m_children.empty()) return false;
        entity.remove(entity.m_children.size() - 1);
        return true;
    case 4:
        if (m_held.size() < c_mostHeld) m_held.emplace_back(&entity);
        return false;
    default:
        return false;
    }
}

// --- The laws ----------------------------------------------------------------------------------

bool DocumentWalk::fail(std::string why) {
    if (m_wrong.empty()) m_wrong = std::move(why);
    return false;
}

bool DocumentWalk::checkEntity(Thing const & entity, Node const & node) {
    std::string const which = "entity " + idText(entity.id()) + ": ";
    if (entity.m_int != node.number) return fail(which + "its number");
    if (entity.m_name != node.name) return fail(which + "its name");
    if (idOf(entity.m_rOwned.get()) != node.owned) return fail(which + "what it owns");
    if (entity.m_rOwned && !entity.m_rOwned->isAlive()) return fail(which + "owns a dead entity");
    std::vector<Id> children;
    for (auto const & child : entity.m_children) {
        if (!child || !child->isAlive()) return fail(which + "lists a dead entity");
        children.push_back(child->id());
    }
    if (children != node.children) return fail(which + "its children");
    auto const isRight = [&](PassiveRef<Entity> const & reference, Id id) {
        return idOf(reference.get()) == (m_rAsset->entity(id) ? id : 0);
    };
    if (!isRight(entity.m_rFriend, node.companion)) return fail(which + "its friend");
    if (entity.m_friends.size() != node.friends.size()) return fail(which + "its friends");
    for (std::size_t i = 0; i < node.friends.size(); ++i)
        if (!isRight(entity.m_friends[i], node.friends[i])) return fail(which + "its friends");
    return true;
}

bool DocumentWalk::check() {
    ChangeHistory const & history = m_rAsset->history();
    if (history.undoSteps() != m_present || history.redoSteps() != m_states.size() - m_present - 1)
        return fail("the number of steps: " + std::to_string(history.undoSteps()) + " and " +
                    std::to_string(history.redoSteps()) + ", not " + std::to_string(m_present) +
                    " and " + std::to_string(m_states.size() - m_present - 1));
    Segment const & design = *m_rAsset->segment(SegmentType::DesignSegment);
    std::vector<std::string> keys;
    design.rootEntityIds(keys);
    if (keys.size() != m_model.roots.size()) return fail("the number of roots");
    std::set<Id> reached;
    for (auto const & [key, id] : m_model.roots) {
        if (idOf(design.rootEntity(key).get()) != id) return fail("the root " + key);
        reach(id, reached);
    }
    for (Id const id : reached)
        if (!m_rAsset->entity(id)) return fail("entity " + idText(id) + " is owned, and dead");
    for (auto const * const kept : {&m_held, &m_pKeeper->m_kept})
        for (StrongRef<Entity> const & held : *kept)
            if (held->asset() == m_rAsset.get() && held->isAlive()) reach(held->id(), reached);
    for (Id const id : m_unowned) reach(id, reached);
    for (Entity * const entity : m_rAsset->allEntities()) {
        if (!reached.contains(entity->id()))
            return fail("entity " + idText(entity->id()) + " is alive without an owner, by " +
                        std::to_string(entity->refCount()) + " references");
        auto const node = m_model.nodes.find(entity->id());
        if (node == m_model.nodes.end())
            return fail("entity " + idText(entity->id()) + " isn't made yet");
        if (!checkEntity(*query<Thing>(entity), node->second)) return false;
    }
    return true;
}

} // namespace Vn::Testing
