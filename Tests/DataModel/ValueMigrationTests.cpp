// Values inside entities whose class has another version than in the file.  Members of the same
// name are read, others of the file are dropped, and new ones stay what the constructor made them;
// then the class migrates each value.

#include <deque>
#include <memory>
#include <optional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Platform/DataModel/DocumentFile.h"
#include "Tests/DataModel/DocumentSql.h"
#include "Tests/DataModel/DocumentTestEntities.h"

namespace Vn::Testing {

namespace {

using ::testing::HasSubstr;

// Version 0 had "amount" in centimetres and "unit"; version 1 has "amount" in millimetres and
// "source".
struct Reading {
    double m_amount = 0;
    std::wstring m_unit;
    std::wstring m_source = L"new";
    PassiveRef<Entity> m_rFrom;
    unsigned m_migratedFrom = 99; // not persisted

    static ValueMetaType * s_metaType();
};

// A value with values inside, which always had the same members.
struct Range {
    Reading m_least;
    Reading m_most;

    static ValueMetaType * s_metaType();
};

template <class Value>
class TestValueMetaType : public ValueMetaType {
public:
    using ValueMetaType::ValueMetaType;

private:
    std::size_t doSizeInBytes(VisitorContext const &) const override { return sizeof(Value); }
    void * doConstruct(void * memory, VisitorContext const &) const override {
        return memory ? new (memory) Value : nullptr;
    }
    void * doConstruct() const override { return new Value; }
    void doDestruct(void * value) const override { delete static_cast<Value *>(value); }
    std::wstring doToString(void *, VisitorContext const &) const override { return {}; }
    void * doQueryMTInterface(void * value) const override { return value; }
};

class ReadingMetaType : public TestValueMetaType<Reading> {
public:
    explicit ReadingMetaType(unsigned version)
        : TestValueMetaType("Test-Reading", "ReadingMetaType", version, "Reading", {}) {}

    static inline bool s_bRefusing = false;

private:
    void onMigratingMemberSet(void * value, unsigned version, MemberSet * set,
                              VisitorContext const &) const override {
        set->initialize(value, "Reading");
        Members members(set);
        auto & reading = *static_cast<Reading *>(value);
        members.add("amount", reading.m_amount);
        members.add("rFrom", reading.m_rFrom);
        if (version == 0)
            members.add("unit", reading.m_unit);
        else
            members.add("source", reading.m_source);
    }
    void doMigratingVersion(void * value, unsigned version, VisitorContext const &) const override {
        static_cast<Reading *>(value)->m_migratedFrom = version;
    }
    EMigrationStatusValue onPostMigrate(void * value, unsigned version,
                                        VisitorContext const &) const override {
        if (s_bRefusing) return MigrationFailed;
        if (version == 0) static_cast<Reading *>(value)->m_amount *= 10;
        return MigrationDone;
    }
};

class RangeMetaType : public TestValueMetaType<Range> {
public:
    RangeMetaType() : TestValueMetaType("Test-Range", "RangeMetaType", 0, "Range", {}) {}

private:
    void onMigratingMemberSet(void * value, unsigned, MemberSet * set,
                              VisitorContext const &) const override {
        set->initialize(value, "Range");
        Members members(set);
        members.add("least", static_cast<Range *>(value)->m_least);
        members.add("most", static_cast<Range *>(value)->m_most);
    }
};

// What has them all.
class Gauge : public Piece {
public:
    static constexpr char c_className[] = "Gauge";
    static std::string s_metaTypeId() { return "Test-Gauge"; }
    static EntityMetaType * s_metaType();
    static StrongRef<Gauge> make(Segment * segment) {
        StrongRef<Gauge> made(new Gauge(segment));
        made->postCreation(DataChange::TransactDirect);
        return made;
    }
    Gauge(Segment * segment, unsigned long long id) : Piece(segment, id) {
        initializeMemberSetIfNeeded(this);
    }
    void initializeMembers(unsigned, MemberSet * set) {
        Members members(set);
        members.add("last", m_last);
        members.add("all", m_all);
        members.add("range", m_range);
        members.add("ranges", m_ranges);
    }

    // Every reading, wherever it stands.
    template <class Visit>
    void forEach(Visit && visit) {
        visit(m_last);
        for (Reading & reading : m_all) visit(reading);
        visit(m_range.m_least);
        visit(m_range.m_most);
        for (Range & range : m_ranges) {
            visit(range.m_least);
            visit(range.m_most);
        }
    }

    Reading m_last;
    std::vector<Reading> m_all;
    Range m_range;
    std::vector<Range> m_ranges;

protected:
    explicit Gauge(Segment * segment) : Piece(segment) { initializeMemberSetIfNeeded(this); }
    EntityMetaType * onMetaType() const override { return s_metaType(); }
};

// The types of one version of Reading.  Types are known by their addresses to the end of the
// process, so that none has one that another had.
struct Types {
    explicit Types(unsigned version) : m_reading(version), m_gauge(0, Piece::s_metaTypeId()) {}

    ReadingMetaType m_reading;
    RangeMetaType m_range;
    DocumentMetaType<Gauge> m_gauge;
};

std::deque<std::optional<Types>> s_types;

void become(unsigned version) {
    if (!s_types.empty()) s_types.back().reset();
    s_types.emplace_back().emplace(version);
}

} // namespace

ValueMetaType * Reading::s_metaType() { return &s_types.back()->m_reading; }
ValueMetaType * Range::s_metaType() { return &s_types.back()->m_range; }
EntityMetaType * Gauge::s_metaType() { return &s_types.back()->m_gauge; }

namespace {

class ValueMigrationTests : public ::testing::Test {
protected:
    // Saves a gauge with seven readings, 1 to 7 centimetres.
    void SetUp() override {
        become(0);
        StrongRef<Asset> const asset = Asset::make(nullptr);
        StrongRef<Gauge> const gauge = Gauge::make(design(*asset));
        design(*asset)->addRoot(gauge, "root");
        gauge->m_all.resize(2);
        gauge->m_ranges.resize(1);
        double amount = 0;
        gauge->forEach([&](Reading & reading) {
            reading.m_amount = ++amount;
            reading.m_unit = L"cm";
            reading.m_rFrom = PassiveRef<Entity>(gauge.get());
        });
        EXPECT_EQ(amount, 7);
        EXPECT_TRUE(DocumentFile::saveAs(*asset, m_file.path()));
    }
    void TearDown() override {
        ReadingMetaType::s_bRefusing = false;
        if (!s_types.empty()) s_types.back().reset();
    }

    Status load() { return DocumentFile::load(m_file.path(), nullptr, m_rAsset); }
    Gauge & gauge() { return static_cast<Gauge &>(*design(*m_rAsset)->rootEntity("root")); }
    // How often each reading was migrated is seen by its amount.
    void expectReadings(double firstAmount, unsigned migratedFrom) {
        double amount = 0;
        gauge().forEach([&](Reading const & reading) {
            EXPECT_EQ(reading.m_amount, amount += firstAmount);
            EXPECT_EQ(reading.m_source, L"new");
            EXPECT_EQ(reading.m_unit, L"");
            EXPECT_EQ(reading.m_rFrom.get(), &gauge());
            EXPECT_EQ(reading.m_migratedFrom, migratedFrom);
        });
    }

    TemporaryFile m_file;
    StrongRef<Asset> m_rAsset;
};

} // namespace

TEST_F(ValueMigrationTests, EachValueOfAnOlderVersionIsMigratedOnceWhereverItStands) {
    become(1);
    Status const status = load();
    ASSERT_TRUE(status) << status.toString();
    expectReadings(10, 0);
    EXPECT_FALSE(m_rAsset->isDirty());
    // The next save writes the present version, which needs no migration.
    gauge().change([&] { gauge().m_name = L"changed"; });
    EXPECT_TRUE(DocumentFile::save(*m_rAsset));
    EXPECT_EQ(query(m_file.path(), "SELECT version FROM types WHERE id='Test-Reading'")[0][0], "1");
    ASSERT_TRUE(load());
    expectReadings(10, 99);
    m_rAsset.reset();
}

TEST_F(ValueMigrationTests, AValueThatCantBeMigratedIsNamedAndThereIsNoDocument) {
    become(1);
    ReadingMetaType::s_bRefusing = true;
    Status const status = load();
    EXPECT_EQ(status.code(), StatusFailed);
    EXPECT_THAT(status.toString(), HasSubstr("a value of entity 1 can't be migrated"));
    EXPECT_FALSE(m_rAsset);
}

TEST_F(ValueMigrationTests, ALaterVersionOfAValueIsRefusedWithTheReason) {
    Sql(m_file.path()).run("UPDATE types SET version=2 WHERE id='Test-Reading'");
    become(1);
    Status const status = load();
    EXPECT_EQ(status.code(), StatusNewerFormat);
    EXPECT_THAT(status.toString(),
                HasSubstr("ReadingMetaType (Test-Reading) has version 2, and 1"));
    EXPECT_FALSE(m_rAsset);
}

// Another set of members is no matter only where a version explains it.
TEST_F(ValueMigrationTests, OtherMembersInTheSameVersionAreDamage) {
    Sql(m_file.path()).run("UPDATE types SET version=1 WHERE id='Test-Reading'");
    become(1);
    EXPECT_EQ(load().code(), StatusCorrupt);
    EXPECT_FALSE(m_rAsset);
}

} // namespace Vn::Testing
