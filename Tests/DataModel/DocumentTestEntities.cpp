#include "Tests/DataModel/DocumentTestEntities.h"

#include <bit>
#include <cmath>
#include <limits>
#include <map>
#include <random>
#include <sstream>

#include "Platform/Base/OS.h"
#include "Platform/Base/Text.h"
#include "Platform/DataModel/EntityMembers.h"

namespace Vn::Testing {

namespace {

constinit InterfaceId s_pieceId("Vn::Testing::Piece");
constinit InterfaceId s_everythingId("Vn::Testing::Everything");
constinit InterfaceId s_rowId("Vn::Testing::Row");
constinit InterfaceId s_changingId("Vn::Testing::Changing");

class SpotMetaType : public ValueMetaType {
public:
    SpotMetaType() : ValueMetaType("Test-Spot", "SpotMetaType", 0, "Spot", {}) {}

private:
    std::size_t doSizeInBytes(VisitorContext const &) const override { return sizeof(Spot); }
    void * doConstruct(void * memory, VisitorContext const &) const override {
        return memory ? new (memory) Spot : nullptr;
    }
    void * doConstruct() const override { return new Spot; }
    void doDestruct(void * value) const override { delete static_cast<Spot *>(value); }
    std::wstring doToString(void *, VisitorContext const &) const override { return L"Spot"; }
    void * doQueryMTInterface(void * value) const override { return value; }
    void onMigratingMemberSet(void * value, unsigned, MemberSet * set,
                              VisitorContext const &) const override {
        set->initialize(value, "Spot");
        Members members(set);
        auto & spot = *static_cast<Spot *>(value);
        members.add("x", spot.m_x);
        members.add("label", spot.m_label);
        members.add("at", spot.m_rAt);
    }
};

// Exactly: by the bits, but for NaN, of which there is one.
void put(std::ostream & out, double value) {
    if (std::isnan(value))
        out << "NaN";
    else
        out << std::hex << std::bit_cast<std::uint64_t>(value) << std::dec;
}
void put(std::ostream & out, float value) {
    if (std::isnan(value))
        out << "NaN";
    else
        out << std::hex << std::bit_cast<std::uint32_t>(value) << std::dec;
}
template <class Text>
void putText(std::ostream & out, Text const & text) {
    out << '"';
    for (auto const c : text) {
        auto const unit = static_cast<std::make_unsigned_t<typename Text::value_type>>(c);
        if (unit >= 32 && unit < 127 && unit != '\\')
            out << static_cast<char>(unit);
        else
            out << '\\' << std::hex << +unit << std::dec << ';';
    }
    out << '"';
}
void put(std::ostream & out, std::string const & text) { putText(out, text); }
void put(std::ostream & out, std::wstring const & text) { putText(out, text); }
void put(std::ostream & out, GlobalizedString const & text) {
    out << (text.isGlobalized() ? "globalized " : "plain ");
    put(out, text.module());
    put(out, text.key());
    put(out, text.defaultText());
}
template <class T>
void putReference(std::ostream & out, T const & reference) {
    out << (reference.get() ? std::to_string(reference.get()->id()) : "null");
}
template <class T>
void put(std::ostream & out, StrongRef<T> const & reference) {
    putReference(out, reference);
}
template <class T>
void put(std::ostream & out, PassiveRef<T> const & reference) {
    putReference(out, reference);
}
void put(std::ostream & out, Spot const & spot) {
    put(out, spot.m_x);
    out << '@';
    put(out, spot.m_label);
    out << '@';
    put(out, spot.m_rAt);
}
template <class T>
requires std::integral<T>
void put(std::ostream & out, T value) { out << +value; }
template <class T>
void put(std::ostream & out, std::vector<T> const & list) {
    out << '[';
    for (auto const & element : list) {
        put(out, element);
        out << ' ';
    }
    out << ']';
}
template <class... Fields>
void putAll(std::ostream & out, Fields const &... fields) {
    ((put(out, fields), out << ", "), ...);
}

std::unique_ptr<DocumentMetaType<Changing>> s_changing;

// Receives what version 0 of Changing had.
class ChangingHelper : public MigrationHelper {
public:
    using MigrationHelper::MigrationHelper;
    double m_first = 0;
    PassiveRef<Piece> m_rFriend;
};

} // namespace

ValueMetaType * Spot::s_metaType() {
    static SpotMetaType s_type;
    return &s_type;
}

// Static objects, as those of an add-in, in the order of the classes.
static DocumentMetaType<Piece> s_pieceType(0, Entity::s_metaTypeId(), EntityMetaType::TypeAbstract);
static DocumentMetaType<Everything> s_everythingType(3, Piece::s_metaTypeId());
static DocumentMetaType<Row> s_rowType(0, Piece::s_metaTypeId());

EntityMetaType * Piece::s_metaType() { return &s_pieceType; }
UniqueString const * Piece::interfaceId() { return s_pieceId.get(); }
Piece::Piece(Segment * segment) : Entity(segment) { initializeMemberSetIfNeeded<Piece>(this); }
Piece::Piece(Segment * segment, unsigned long long id) : Entity(segment, id) {
    initializeMemberSetIfNeeded<Piece>(this);
}
void Piece::initializeMembers(unsigned, MemberSet * set) {
    Members members(set);
    members.add("name", m_name);
    members.add("rParent", m_rParent);
}
std::string Piece::dump() const {
    std::ostringstream out;
    putAll(out, m_name, m_rParent);
    return out.str();
}

DocumentMetaType<Everything> * Everything::s_metaType() { return &s_everythingType; }
UniqueString const * Everything::interfaceId() { return s_everythingId.get(); }
Everything::Everything(Segment * segment) : Piece(segment) {
    initializeMemberSetIfNeeded<Everything>(this);
}
Everything::Everything(Segment * segment, unsigned long long id) : Piece(segment, id) {
    initializeMemberSetIfNeeded<Everything>(this);
}
StrongRef<Everything> Everything::make(Segment * segment) {
    StrongRef<Everything> made(new Everything(segment));
    made->postCreation(DataChange::TransactDirect);
    return made;
}
void Everything::initializeMembers(unsigned, MemberSet * set) {
    Members members(set);
    members.add("bool", m_bool);
    members.add("int", m_int);
    members.add("unsigned", m_unsigned);
    members.add("int64", m_int64);
    members.add("unsigned64", m_unsigned64);
    members.add("float", m_float);
    members.add("double", m_double);
    members.add("string", m_string);
    members.add("wide", m_wide);
    members.add("text", m_text);
    members.add("rOwned", m_rOwned);
    members.add("rFriend", m_rFriend);
    members.add("rRow", m_rRow);
    members.add("spot", m_spot);
    members.add("ints", m_ints);
    members.add("unsigneds", m_unsigneds);
    members.add("int64s", m_int64s);
    members.add("unsigned64s", m_unsigned64s);
    members.add("floats", m_floats);
    members.add("doubles", m_doubles);
    members.add("strings", m_strings);
    members.add("wides", m_wides);
    members.add("texts", m_texts);
    members.add("children", m_children);
    members.add("friends", m_friends);
    members.add("spots", m_spots);
    set->addNewMember("unsaved", &m_unsaved, typeid(int).name(), IntrinsicMetaType<int>::get(),
                      nullptr, nullptr)
        ->clear(Member::OptionPersisted);
}
std::string Everything::dump() const {
    std::ostringstream out;
    out << Piece::dump();
    putAll(out, m_bool, m_int, m_unsigned, m_int64, m_unsigned64, m_float, m_double, m_string,
           m_wide, m_text, m_rOwned, m_rFriend, m_rRow, m_spot);
    putAll(out, m_ints, m_unsigneds, m_int64s, m_unsigned64s, m_floats, m_doubles, m_strings,
           m_wides, m_texts, m_children, m_friends, m_spots);
    return out.str();
}

EntityMetaType * Row::s_metaType() { return &s_rowType; }
UniqueString const * Row::interfaceId() { return s_rowId.get(); }
Row::Row(Segment * segment) : Piece(segment) { initializeMemberSetIfNeeded<Row>(this); }
Row::Row(Segment * segment, unsigned long long id) : Piece(segment, id) {
    initializeMemberSetIfNeeded<Row>(this);
}
StrongRef<Row> Row::make(Segment * segment) {
    StrongRef<Row> made(new Row(segment));
    made->postCreation(DataChange::TransactDirect);
    return made;
}
void Row::initializeMembers(unsigned, MemberSet * set) {
    Members members(set);
    members.add("x", m_x);
    members.add("y", m_y);
    members.add("number", m_number);
    members.add("flag", m_flag);
}
std::string Row::dump() const {
    std::ostringstream out;
    out << Piece::dump();
    putAll(out, m_x, m_y, m_number, m_flag);
    return out.str();
}

void Changing::become(unsigned version) {
    end();
    s_changing = std::make_unique<DocumentMetaType<Changing>>(version, Piece::s_metaTypeId());
}
void Changing::end() { s_changing.reset(); }
EntityMetaType * Changing::s_metaType() { return s_changing.get(); }
UniqueString const * Changing::interfaceId() { return s_changingId.get(); }
Changing::Changing(Segment * segment) : Piece(segment) {
    initializeMemberSetIfNeeded<Changing>(this);
}
Changing::Changing(Segment * segment, unsigned long long id) : Piece(segment, id) {
    initializeMemberSetIfNeeded<Changing>(this);
}
Changing::~Changing() { delete m_pHelper; }
StrongRef<Changing> Changing::make(Segment * segment) {
    StrongRef<Changing> made(new Changing(segment));
    made->postCreation(DataChange::TransactDirect);
    return made;
}
void Changing::initializeMembers(unsigned version, MemberSet * set) {
    Members members(set);
    members.add("count", m_count);
    if (version == 0) {
        auto * const helper = static_cast<ChangingHelper *>(m_pHelper);
        members.add("first", helper ? helper->m_first : m_first);
        members.add("rFriend", helper ? helper->m_rFriend : m_rFirstFriend);
    } else {
        members.add("total", m_total);
        members.add("rTotalFriend", m_rTotalFriend);
    }
}
void Changing::createHelper() {
    if (m_pHelper) return;
    m_pHelper = new ChangingHelper(segment());
    segment()->registerMigrationHelper(this, s_metaType(), m_pHelper);
}
void Changing::doInitializeMigrationHelpers() {
    Piece::doInitializeMigrationHelpers();
    createHelper();
}
void Changing::doUninitializeMigrationHelpers() {
    Piece::doUninitializeMigrationHelpers();
    if (!m_pHelper) return;
    segment()->unregisterMigrationHelper(this, s_metaType());
    delete std::exchange(m_pHelper, nullptr);
}
void Changing::onPostMigrate() {
    Piece::onPostMigrate();
    if (migratingVersion(s_metaType()) >= s_metaType()->version()) return;
    auto const * const helper = static_cast<ChangingHelper *>(m_pHelper);
    m_total = helper->m_first;
    m_rTotalFriend = helper->m_rFriend;
    migratingVersion(s_metaType(), s_metaType()->version());
}
std::string Changing::dump() const {
    std::ostringstream out;
    out << Piece::dump();
    putAll(out, m_count, m_first, m_total, m_rFirstFriend, m_rTotalFriend);
    return out.str();
}

namespace {

// The members of an entity that others brought.
std::string dumpMembers(Entity const & entity) {
    std::ostringstream out;
    EntityMembers const members{StrongRef<Entity>(const_cast<Entity *>(&entity))};
    for (EntityMembers::Info const & member : members.all()) {
        std::wstring value;
        Status const status = members.get(member.name, value);
        out << ' ' << member.name << '=';
        put(out, status ? Text::toUtf8(value) : status.toString());
    }
    return out.str();
}

} // namespace

std::string dump(Asset const & asset, bool withTransient) {
    std::ostringstream out;
    for (std::size_t i = 0; i < asset.segments(); ++i) {
        Segment const & segment = *asset.segmentAt(i);
        if (segment.isTransient() && !withTransient) continue;
        out << "segment " << segment.segmentType()->type() << '\n';
        std::vector<std::string> keys;
        segment.rootEntityIds(keys);
        for (std::string const & key : keys) {
            out << "root ";
            put(out, key);
            out << ' ' << segment.rootEntity(key)->id() << '\n';
        }
    }
    for (Entity const * const entity : asset.allEntities()) {
        if (entity->segment()->isTransient() && !withTransient) continue;
        out << entity->id() << " in " << entity->segment()->segmentType()->type() << ' '
            << entity->metaType()->name() << ": ";
        auto const * const piece = dynamic_cast<Piece const *>(entity);
        out << (piece ? piece->dump() : dumpMembers(*entity)) << '\n';
    }
    return out.str();
}

Segment * design(Asset & asset) { return asset.segment(SegmentType::DesignSegment); }

StrongRef<Everything> makeExtremes(Asset & asset) {
    using Doubles = std::numeric_limits<double>;
    using Floats = std::numeric_limits<float>;
    StrongRef<Everything> const one = Everything::make(design(asset));
    StrongRef<Everything> const two = Everything::make(design(asset));
    design(asset)->addRoot(one, "one");
    std::wstring const odd{L'a',
                           static_cast<wchar_t>(0xD800),
                           L'\0',
                           static_cast<wchar_t>(0xDC00),
                           static_cast<wchar_t>(0x1F600),
                           static_cast<wchar_t>(0x110000),
                           static_cast<wchar_t>(0xFFFFFFFFU),
                           static_cast<wchar_t>(0x7FFFFFFF)};
    one->m_name = L"\u00E4\u6F22\U0001F600 \"quoted\" \\ \n";
    one->m_bool = true;
    one->m_int = std::numeric_limits<int>::min();
    one->m_unsigned = std::numeric_limits<unsigned>::max();
    one->m_int64 = std::numeric_limits<long long>::min();
    one->m_unsigned64 = std::numeric_limits<unsigned long long>::max();
    one->m_float = Floats::denorm_min();
    one->m_double = -0.0;
    one->m_string = std::string("bytes \0 \xFF\xC3", 10);
    one->m_wide = odd;
    one->m_text = GlobalizedString("module", "key", L"English");
    one->m_rOwned = StrongRef<Piece>(two);
    one->m_rFriend = PassiveRef<Entity>(one.get());
    one->m_spot = {Doubles::quiet_NaN(), odd, PassiveRef<Entity>(two.get())};
    one->m_ints = {0, -1, std::numeric_limits<int>::max()};
    one->m_unsigneds = {0, std::numeric_limits<unsigned>::max()};
    one->m_int64s = {std::numeric_limits<long long>::min(), 0};
    one->m_unsigned64s = {std::numeric_limits<unsigned long long>::max(), 1ULL << 63, 0};
    one->m_floats = {-0.0F, Floats::infinity(), Floats::quiet_NaN(), 0.1F, Floats::denorm_min()};
    one->m_doubles = {-0.0,
                      0.0,
                      Doubles::infinity(),
                      -Doubles::infinity(),
                      Doubles::quiet_NaN(),
                      0.1,
                      1.0,
                      1e22,
                      Doubles::denorm_min(),
                      Doubles::max(),
                      5e-324,
                      123456789.125};
    one->m_strings = {"", "text", std::string("\0", 1), "\x80", "\"\\\n\x1F\x7F"};
    one->m_wides = {L"", L"\u00E4\U0001F600", odd, std::wstring(1, L'\0'), L"\"\\/\b\f\n\r\t"};
    one->m_texts = {GlobalizedString(), GlobalizedString(odd), GlobalizedString("\x80", "", odd),
                    GlobalizedString("", "", L"")};
    one->m_children = {nullptr};
    one->m_friends = {PassiveRef<Entity>(two.get()), nullptr, PassiveRef<Entity>(one.get())};
    one->m_spots = {{1.5, L"a", PassiveRef<Entity>(one.get())}, {-0.0, odd, nullptr}};
    two->m_double = Doubles::infinity();
    two->m_float = Floats::quiet_NaN();
    two->m_spots.clear();
    one->m_unsaved = 11;
    return one;
}

namespace {

std::wstring randomWide(std::mt19937 & random) {
    std::wstring text;
    for (auto length = random() % 12; length; --length) {
        switch (random() % 12) {
        case 0:
            text += static_cast<wchar_t>(0xD800 + random() % 0x800);
            break;
        case 1:
            text += static_cast<wchar_t>(random() % 0x10000);
            break;
        case 2:
            text += static_cast<wchar_t>(random());
            break;
        case 3:
            text += L'\0';
            break;
        default:
            text += static_cast<wchar_t>(32 + random() % 95);
        }
        // As a whole the texts are no worse than what programs make.
        if (random() % 8)
            text.back() = static_cast<wchar_t>(L'a' + static_cast<int>(random() % 26));
    }
    return text;
}

std::string randomNarrow(std::mt19937 & random) {
    std::string text;
    for (auto length = random() % 12; length; --length)
        text += static_cast<char>(random() % 6 ? 'a' + random() % 26 : random() % 256);
    return text;
}

GlobalizedString randomText(std::mt19937 & random) {
    if (random() % 2) return GlobalizedString(randomWide(random));
    return GlobalizedString(randomNarrow(random), randomNarrow(random), randomWide(random));
}

double randomDouble(std::mt19937 & random) {
    constexpr double c_odd[] = {0.0,
                                -0.0,
                                std::numeric_limits<double>::infinity(),
                                -std::numeric_limits<double>::infinity(),
                                std::numeric_limits<double>::quiet_NaN(),
                                std::numeric_limits<double>::denorm_min(),
                                std::numeric_limits<double>::max(),
                                0.1,
                                1e22,
                                12345678.0};
    if (random() % 2) return c_odd[random() % std::size(c_odd)];
    return std::bit_cast<double>(static_cast<std::uint64_t>(random()) << 32 | random());
}

float randomFloat(std::mt19937 & random) {
    constexpr float c_odd[] = {0.0F,
                               -0.0F,
                               std::numeric_limits<float>::infinity(),
                               std::numeric_limits<float>::quiet_NaN(),
                               std::numeric_limits<float>::denorm_min(),
                               -std::numeric_limits<float>::max(),
                               0.1F};
    if (random() % 2) return c_odd[random() % std::size(c_odd)];
    return std::bit_cast<float>(static_cast<std::uint32_t>(random()));
}

Entity * anyone(Asset & asset, std::mt19937 & random) {
    auto const all = asset.allEntities();
    return all.empty() || random() % 8 == 0 ? nullptr : all[random() % all.size()];
}

Spot randomSpot(Asset & asset, std::mt19937 & random) {
    return {randomDouble(random), randomWide(random), PassiveRef<Entity>(anyone(asset, random))};
}

template <class T, class Make>
void fill(std::vector<T> & list, std::mt19937 & random, Make make) {
    list.resize(random() % 4 ? random() % 5 : 0);
    for (T & element : list) element = make();
}

void fillRandomly(Everything & target, Asset & asset, std::mt19937 & random) {
    auto const whole = [&] { return static_cast<unsigned long long>(random()) << 32 | random(); };
    target.m_name = randomWide(random);
    target.m_rParent = PassiveRef<Piece>(static_cast<Piece *>(anyone(asset, random)));
    target.m_bool = random() % 2;
    target.m_int = static_cast<int>(random());
    target.m_unsigned = static_cast<unsigned>(random());
    target.m_int64 = static_cast<long long>(whole());
    target.m_unsigned64 = whole();
    target.m_float = randomFloat(random);
    target.m_double = randomDouble(random);
    target.m_string = randomNarrow(random);
    target.m_wide = randomWide(random);
    target.m_text = randomText(random);
    target.m_rFriend = PassiveRef<Entity>(anyone(asset, random));
    target.m_spot = randomSpot(asset, random);
    fill(target.m_ints, random, [&] { return static_cast<int>(random()); });
    fill(target.m_unsigneds, random, [&] { return static_cast<unsigned>(random()); });
    fill(target.m_int64s, random, [&] { return static_cast<long long>(whole()); });
    fill(target.m_unsigned64s, random, whole);
    fill(target.m_floats, random, [&] { return randomFloat(random); });
    fill(target.m_doubles, random, [&] { return randomDouble(random); });
    fill(target.m_strings, random, [&] { return randomNarrow(random); });
    fill(target.m_wides, random, [&] { return randomWide(random); });
    fill(target.m_texts, random, [&] { return randomText(random); });
    fill(target.m_friends, random, [&] { return PassiveRef<Entity>(anyone(asset, random)); });
    fill(target.m_spots, random, [&] { return randomSpot(asset, random); });
}

void makeChild(Everything & parent, Asset & asset, std::mt19937 & random) {
    StrongRef<Piece> child;
    if (random() % 3) {
        StrongRef<Row> const row = Row::make(parent.segment());
        row->m_name = randomWide(random);
        row->m_x = randomDouble(random);
        row->m_rParent = PassiveRef<Piece>(&parent);
        parent.change([&] { parent.m_rRow = PassiveRef<Row>(row.get()); });
        child = row;
    } else {
        StrongRef<Everything> const made = Everything::make(parent.segment());
        fillRandomly(*made, asset, random);
        child = made;
    }
    parent.change([&] {
        parent.m_children.insert(
            parent.m_children.begin() +
                static_cast<std::ptrdiff_t>(random() % (parent.m_children.size() + 1)),
            child);
    });
}

Everything * anyParent(Asset & asset, std::mt19937 & random) {
    std::vector<Everything *> parents;
    for (Entity * const entity : asset.allEntities())
        if (entity->metaType() == Everything::s_metaType())
            parents.push_back(static_cast<Everything *>(entity));
    return parents.empty() ? nullptr : parents[random() % parents.size()];
}

} // namespace

StrongRef<Asset> randomDocument(unsigned seed, std::size_t entities) {
    std::mt19937 random(seed);
    StrongRef<Asset> asset = Asset::make(nullptr);
    StrongRef<Everything> const root = Everything::make(design(*asset));
    design(*asset)->addRoot(root, "root");
    while (asset->entities() < entities) makeChild(*anyParent(*asset, random), *asset, random);
    return asset;
}

void changeRandomly(Asset & asset, unsigned seed) {
    std::mt19937 random(seed);
    for (auto steps = 1 + random() % 8; steps; --steps) {
        Everything * const parent = anyParent(asset, random);
        switch (random() % 4) {
        case 0:
            makeChild(*parent, asset, random);
            break;
        case 1:
            if (!parent->m_children.empty())
                parent->change([&] {
                    parent->m_children.erase(
                        parent->m_children.begin() +
                        static_cast<std::ptrdiff_t>(random() % parent->m_children.size()));
                });
            break;
        case 2: {
            std::string const key = "root " + std::to_string(random() % 3);
            Segment * const segment = design(asset);
            segment->addRoot(random() % 2 ? StrongRef<Entity>(parent) : nullptr, key);
            break;
        }
        default:
            parent->change([&] { fillRandomly(*parent, asset, random); });
        }
    }
}

} // namespace Vn::Testing
