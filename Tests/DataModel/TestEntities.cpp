#include "Tests/DataModel/TestEntities.h"

#include <bit>
#include <sstream>

namespace Vn::Testing {

class ThingMetaType : public EntityMetaType {
public:
    ThingMetaType()
        : EntityMetaType("Test", Thing::s_metaTypeId(), "ThingMetaType", 1, Entity::s_metaTypeId(),
                         TypeConcrete) {}

private:
    void onMigratingMemberSet(Entity * entity, unsigned, MemberSet * set) override {
        set->initialize(entity, "Thing");
        static_cast<Thing *>(entity)->initializeMemberSet(set);
    }
    StrongRef<Entity> onCreateEntity(Segment * segment, unsigned long long id) override {
        return StrongRef<Entity>(new Thing(segment, id));
    }
    std::size_t onInstanceSize() const override { return sizeof(Thing); }
};

namespace {

ThingMetaType s_thingMetaType;
constinit InterfaceId s_thingId("Vn::Testing::Thing");

void heard(Entity const & entity, char const * what, DataChange::ETransact transact) {
    if (!Thing::s_log) return;
    Thing::s_log->push_back(
        std::string(what) + ' ' + std::to_string(entity.id()) +
        (DataChange::test(transact, DataChange::TransactReplay) ? " replay" : ""));
}

} // namespace

EntityMetaType * Thing::s_metaType() { return &s_thingMetaType; }
UniqueString const * Thing::interfaceId() { return s_thingId.get(); }

Thing::Thing(Segment * segment) : Entity(segment) { initializeMemberSetIfNeeded(); }
Thing::Thing(Segment * segment, unsigned long long id) : Entity(segment, id) {
    initializeMemberSetIfNeeded();
}

StrongRef<Thing> Thing::make(Segment * segment, std::wstring const & name) {
    StrongRef<Thing> thing(new Thing(segment));
    thing->m_name = name;
    thing->postCreation(DataChange::TransactDirect);
    return thing;
}

void Thing::initializeMemberSetIfNeeded() {
    MemberSet * const set = s_metaType()->memberSet(c_latestVersion);
    tbb::spin_rw_mutex_v3::scoped_lock lock(set->mutex(), false);
    if (set->initialized()) return;
    if (!lock.upgrade_to_writer() && set->initialized()) return;
    set->initialize(this, "Thing");
    initializeMemberSet(set);
}

void Thing::initializeMemberSet(MemberSet * set) {
    auto const plain = [&](char const * name, void * field, MemberMetaType * type) {
        set->addNewMember(name, field, type->kindName().c_str(), type, nullptr, nullptr);
    };
    plain("bool", &m_bool, IntrinsicMetaType<bool>::get());
    plain("int", &m_int, IntrinsicMetaType<int>::get());
    plain("unsigned", &m_unsigned, IntrinsicMetaType<unsigned int>::get());
    plain("int64", &m_int64, IntrinsicMetaType<long long>::get());
    plain("unsigned64", &m_unsigned64, IntrinsicMetaType<unsigned long long>::get());
    plain("float", &m_float, IntrinsicMetaType<float>::get());
    plain("double", &m_double, IntrinsicMetaType<double>::get());
    plain("string", &m_string, IntrinsicMetaType<std::string>::get());
    plain("name", &m_name, IntrinsicMetaType<std::wstring>::get());
    plain("text", &m_text, MemberMetaType::find("GlobalizedString"));
    plain("owned", &m_rOwned, StrongRefMetaType::get());
    plain("friend", &m_rFriend, PassiveRefMetaType::get());
    MemberMetaType * const vector = MemberMetaType::find("Vector");
    set->addNewMember("children", &m_children, "vector", vector,
                      TemplatizedFunctions::makeVector<StrongRef<Thing>>(StrongRefMetaType::get()),
                      nullptr);
    set->addNewMember(
        "friends", &m_friends, "vector", vector,
        TemplatizedFunctions::makeVector<PassiveRef<Entity>>(PassiveRefMetaType::get()), nullptr);
    set->addNewMember("numbers", &m_numbers, "vector", vector,
                      TemplatizedFunctions::makeVector<double>(IntrinsicMetaType<double>::get()),
                      nullptr);
    set->addNewMember(
        "words", &m_words, "vector", vector,
        TemplatizedFunctions::makeVector<std::wstring>(IntrinsicMetaType<std::wstring>::get()),
        nullptr);
}

void Thing::insert(StrongRef<Thing> const & child, std::size_t index) {
    ListChange change(this, &m_children, DataChange::ChangeChildren, nullptr);
    m_children.insert(m_children.begin() + static_cast<std::ptrdiff_t>(index), child);
    change.inserted(index);
}

void Thing::remove(std::size_t index) {
    ListChange change(this, &m_children, DataChange::ChangeChildren, nullptr);
    change.erasing(index);
    m_children.erase(m_children.begin() + static_cast<std::ptrdiff_t>(index));
}

void Thing::onPreChange(DataChange::ETransact transact, DataChange::EChangeType type,
                        DataChange * details) {
    Entity::onPreChange(transact, type, details);
    heard(*this, "pre", transact);
}

void Thing::onPostChange(DataChange::ETransact transact, DataChange::EChangeType type,
                         DataChange * details) {
    Entity::onPostChange(transact, type, details);
    heard(*this, "post", transact);
}

void Thing::onPreDeletion(DataChange::ETransact transact) {
    heard(*this, "delete", transact);
    Entity::onPreDeletion(transact);
}

void Thing::onPostMigrate() {
    Entity::onPostMigrate();
    if (s_migrate) s_migrate(*this);
    migratingVersion(s_metaType(), s_metaType()->version());
}

void Thing::onPostCreation(DataChange::ETransact transact) {
    Entity::onPostCreation(transact);
    heard(*this, "create", transact);
}

std::wstring dump(Asset const & asset) {
    std::wostringstream out;
    auto const id = [](Entity const * entity) { return entity ? entity->id() : 0; };
    for (std::size_t s = 0; s < asset.segments(); ++s) {
        std::vector<std::string> keys;
        asset.segmentAt(s)->rootEntityIds(keys);
        for (std::string const & key : keys)
            out << L"root " << std::wstring(key.begin(), key.end()) << L' '
                << id(asset.segmentAt(s)->rootEntity(key).get()) << L'\n';
    }
    for (Entity * const entity : asset.allEntities()) {
        auto const * const t = query<Thing>(entity);
        if (!t) continue;
        out << t->id() << L' ' << t->m_bool << L' ' << t->m_int << L' ' << t->m_unsigned << L' '
            << t->m_int64 << L' ' << t->m_unsigned64 << L' ' << std::bit_cast<unsigned>(t->m_float)
            << L' ' << std::bit_cast<unsigned long long>(t->m_double) << L' '
            << std::wstring(t->m_string.begin(), t->m_string.end()) << L' ' << t->m_name << L' '
            << t->m_text.value() << L" owned " << id(t->m_rOwned.get()) << L" friend "
            << id(t->m_rFriend.get()) << L" children";
        for (auto const & child : t->m_children) out << L' ' << id(child.get());
        out << L" friends";
        for (auto const & other : t->m_friends) out << L' ' << id(other.get());
        out << L" numbers";
        for (double const number : t->m_numbers)
            out << L' ' << std::bit_cast<unsigned long long>(number);
        out << L" words";
        for (auto const & word : t->m_words) out << L' ' << word;
        out << L'\n';
    }
    return out.str();
}

} // namespace Vn::Testing
