// Our documents: a managed group and its children.

#include <cstdio>
#include <cstdlib>
#include <utility>

#include "Benchmarks/Document/DocumentBenchmarks.h"
#include "Platform/DataModel/Asset.h"
#include "Platform/DataModel/DocumentFile.h"
#include "Platform/DataModel/EntityChange.h"
#include "Server/CommonData/Managed/ManagedGroupEntity.h"

namespace Vn::Benchmarks {

namespace {

using Managed::PersistedClass;

class Group : public Managed::Persisted<Group, Managed::ManagedGroupEntity> {
public:
    static constexpr PersistedClass c_class{"Vn::Benchmarks::Group", "Benchmark-Group", 0};
    static EntityMetaType * s_metaType();
    static StrongRefCreator<Group> make(Segment * segment) { return create(segment); }

protected:
    explicit Group(Segment * segment) : Persisted(segment) { initializeMemberSetIfNeeded(); }
    Group(Segment * segment, unsigned long long id) : Persisted(segment, id) {
        initializeMemberSetIfNeeded();
    }

private:
    friend class Managed::PersistedAccess;
    void initializeMemberSet(unsigned, MemberSet *) {}
};

class Child : public Managed::Persisted<Child, Managed::ManagedEntity> {
public:
    static constexpr PersistedClass c_class{"Vn::Benchmarks::Child", "Benchmark-Child", 0};
    static EntityMetaType * s_metaType();
    static StrongRefCreator<Child> make(PassiveRef<Entity> const & parent, Record const & record) {
        return create(parent, record);
    }

    double weight() const { return Benchmarks::weight(m_text, m_x, m_y, m_number, m_bFlag); }
    void x(double x) {
        EntityChange const change(this, DataChange::TransactDirect, DataChange::ChangeValue,
                                  DataChange::TimingPreAndPost, nullptr, true);
        m_x = x;
    }

protected:
    Child(PassiveRef<Entity> const & parent, Record const & record)
        : Persisted(parent), m_text(record.text), m_x(record.x), m_y(record.y),
          m_number(record.number), m_bFlag(record.flag) {
        initializeMemberSetIfNeeded();
    }
    Child(Segment * segment, unsigned long long id) : Persisted(segment, id) {
        initializeMemberSetIfNeeded();
    }

private:
    friend class Managed::PersistedAccess;
    void initializeMemberSet(unsigned, MemberSet * set) {
        Managed::addMember(set, "text", m_text, IntrinsicMetaType<std::wstring>::get());
        Managed::addMember(set, "x", m_x, IntrinsicMetaType<double>::get());
        Managed::addMember(set, "y", m_y, IntrinsicMetaType<double>::get());
        Managed::addMember(set, "number", m_number, IntrinsicMetaType<unsigned int>::get());
        Managed::addMember(set, "flag", m_bFlag, IntrinsicMetaType<bool>::get());
    }

    std::wstring m_text;
    double m_x = 0;
    double m_y = 0;
    unsigned m_number = 0;
    bool m_bFlag = false;
};

class GroupMetaType final : public Managed::PersistedMetaType<Group> {};
class ChildMetaType final : public Managed::PersistedMetaType<Child> {};
GroupMetaType s_groupMetaType;
ChildMetaType s_childMetaType;

} // namespace

EntityMetaType * Group::s_metaType() { return &s_groupMetaType; }
EntityMetaType * Child::s_metaType() { return &s_childMetaType; }

namespace {

class VnDocument {
public:
    static constexpr char const * c_name = "ours";
    static constexpr char const * c_extension = ".vnd";
    static constexpr bool c_firstSaveWaits = true;
    static constexpr bool c_laterSaveWaits = true;

    VnDocument() : m_rAsset(Asset::make(nullptr)) {}

    void create(std::span<Record const> records) {
        Transaction transaction(*m_rAsset, L"Create");
        Segment & segment = *m_rAsset->segment(SegmentType::DesignSegment);
        StrongRef<Group> const group = Group::make(&segment);
        segment.addRoot(group, "group");
        PassiveRef<Entity> const parent(group);
        for (Record const & record : records)
            static_cast<void>(Child::make(parent, record)); // the group has it now
        transaction.commit();
        m_rGroup = group;
    }

    double walk() {
        double sum = 0;
        for (auto const & child : m_rGroup->childrenVector())
            sum += static_cast<Child const &>(*child).weight();
        return sum;
    }

    void changeAll(double x) {
        Transaction transaction(*m_rAsset, L"Change all");
        for (auto const & child : m_rGroup->childrenVector()) static_cast<Child &>(*child).x(x);
        transaction.commit();
    }

    void changeOne(std::size_t i, double x) {
        Transaction transaction(*m_rAsset, L"Change one");
        static_cast<Child &>(*m_rGroup->child(static_cast<unsigned>(i))).x(x);
        transaction.commit();
    }

    void undo() { expect(m_rAsset->history().undo()); }
    void redo() { expect(m_rAsset->history().redo()); }

    void saveAs(std::filesystem::path const & file) {
        expect(DocumentFile::saveAs(*m_rAsset, file));
    }
    void save() { expect(DocumentFile::save(*m_rAsset)); }
    void load(std::filesystem::path const & file) {
        expect(DocumentFile::load(file, nullptr, m_rAsset));
        m_rGroup = StrongRef<Group>(
            query<Group>(m_rAsset->segment(SegmentType::DesignSegment)->rootEntity("group").get()));
    }

private:
    static void expect(Status const & status) {
        if (status.ok()) return;
        std::fprintf(stderr, "%s\n", status.toString().c_str());
        std::exit(1);
    }

    StrongRef<Asset> m_rAsset;
    StrongRef<Group> m_rGroup;
};

int registerAll() {
    registerCreation<VnDocument>();
    registerChangeAll<VnDocument>();
    registerChangeEach<VnDocument>();
    registerUndoOfCreation<VnDocument>();
    registerUndoOfChanges<VnDocument>();
    registerFiles<VnDocument>();
    return 0;
}
[[maybe_unused]] int const s_registered = registerAll();

} // namespace

} // namespace Vn::Benchmarks
