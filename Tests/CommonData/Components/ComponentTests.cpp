#include "Server/CommonData/Components/IComponentObject.h"

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/Base/Text.h"
#include "Server/CommonData/Components/ComponentChangeSummarizer.h"
#include "Server/CommonData/Components/ComponentDataChange.h"
#include "Server/CommonData/Components/IComponent.h"
#include "Server/CommonData/Components/IDefaultMaterialProvider.h"
#include "Server/CommonData/Components/IVisibilityToggle.h"
#include "Tests/CommonData/Managed/ManagedTesting.h"
#include "Tests/Support/SmallStack.h"

namespace Vn::Managed::Testing {

namespace {

using CommonData::ComponentChangeSummarizer;
using CommonData::ComponentDataChange;
using CommonData::IComponent;
using CommonData::IComponentObject;
using CommonData::IDefaultMaterialProvider;
using CommonData::IVisibilityToggle;

// A call of a component, before or after a change.
struct Call {
    enum EStage { Pre, Post };

    EStage stage;
    IComponentObject * changed;
    DataChange::EChangeType type;

    friend bool operator==(Call const &, Call const &) = default;
};

// What components write their calls into, and whom they have told of the same change.
struct Log {
    std::vector<Call> calls;
    std::vector<IComponent *> told;
    std::vector<IComponent *> further;
    int asked = 0;
};

// A component, which is a component object too.
class Component : public Persisted<Component, ManagedGroupEntity, IComponent, IComponentObject> {
public:
    static constexpr PersistedClass c_class{"Vn::Managed::Testing::Component",
                                            "1A5B0C3E-0003-4000-8000-000000000001", 0};
    static EntityMetaType * s_metaType();
    static StrongRefCreator<Component> make(Segment * segment, Log & log) {
        auto made = create(segment);
        made->m_pLog = &log;
        return made;
    }

    void onComponentPreChange(ComponentDataChange const * change) override {
        note(Call::Pre, change);
    }
    void onComponentPostChange(ComponentDataChange const * change, bool flag) override {
        EXPECT_TRUE(flag);
        note(Call::Post, change);
    }
    void collectComponents(std::vector<IComponent *> & components) override {
        ASSERT_EQ(components.size(), 1U);
        EXPECT_EQ(components.front(), this);
        components.insert(components.end(), m_pLog->further.begin(), m_pLog->further.end());
    }

private:
    friend PersistedAccess;
    explicit Component(Segment * segment) : Persisted(segment) { initializeMemberSetIfNeeded(); }
    Component(Segment * segment, unsigned long long id) : Persisted(segment, id) {
        initializeMemberSetIfNeeded();
    }
    void initializeMemberSet(unsigned, MemberSet *) {}
    void note(Call::EStage stage, ComponentDataChange const * change) {
        m_pLog->told.push_back(this);
        m_pLog->calls.push_back({stage, change->changedComponentObject(), change->changeType()});
    }

    Log * m_pLog = nullptr;
};

// A component object with values.
class Part : public Persisted<Part, ManagedGroupEntity, IComponentObject> {
public:
    static constexpr PersistedClass c_class{"Vn::Managed::Testing::Part",
                                            "1A5B0C3E-0003-4000-8000-000000000002", 0};
    static EntityMetaType * s_metaType();
    static StrongRefCreator<Part> make(PassiveRef<Entity> const & parent) { return create(parent); }
    static StrongRefCreator<Part> make(Segment * segment) { return create(segment); }

    void value(int value, DataChange::ETransact transact = DataChange::TransactDirect,
               DataChange::ETiming timing = DataChange::TimingPreAndPost) {
        EntityChange const change(this, transact, DataChange::ChangeValue, timing, nullptr, true);
        m_value = value;
    }
    void twice(int value) {
        EntityChange const change(this, DataChange::TransactDirect, DataChange::ChangeValue,
                                  DataChange::TimingPreAndPost, nullptr, true);
        this->value(value);
        this->value(value + 1);
    }
    // Runs something within a bracket without hooks before it.
    template <class Work>
    void within(DataChange::EChangeType type, DataChange::ETiming timing, Work && work) {
        EntityChange const change(this, DataChange::TransactDirect, type, timing, nullptr, true);
        work(change);
    }
    using ManagedGroupEntity::parent;

private:
    friend PersistedAccess;
    explicit Part(PassiveRef<Entity> const & parent) : Persisted(parent) {
        initializeMemberSetIfNeeded();
    }
    explicit Part(Segment * segment) : Persisted(segment) { initializeMemberSetIfNeeded(); }
    Part(Segment * segment, unsigned long long id) : Persisted(segment, id) {
        initializeMemberSetIfNeeded();
    }
    void initializeMemberSet(unsigned, MemberSet * set) {
        addMember(set, "value", m_value, IntrinsicMetaType<int>::get());
    }

    int m_value = 0;
};

// A component object that has its own way to its component, and counts how often it is asked.
class Asked : public Persisted<Asked, ManagedGroupEntity, IComponentObject> {
public:
    static constexpr PersistedClass c_class{"Vn::Managed::Testing::Asked",
                                            "1A5B0C3E-0003-4000-8000-000000000003", 0};
    static EntityMetaType * s_metaType();
    static StrongRefCreator<Asked> make(Segment * segment) { return create(segment); }
    using ManagedGroupEntity::parent;

    IComponent * component() const override {
        ++m_asked;
        if (m_pOwn) return m_pOwn;
        m_pAbove = IComponentObject::component();
        return m_pInstead ? m_pInstead : m_pAbove;
    }

    IComponent * m_pOwn = nullptr;     // the answer, without asking further up
    IComponent * m_pInstead = nullptr; // the answer, whatever those above say
    mutable IComponent * m_pAbove = nullptr;
    mutable int m_asked = 0;

private:
    friend PersistedAccess;
    explicit Asked(Segment * segment) : Persisted(segment) { initializeMemberSetIfNeeded(); }
    Asked(Segment * segment, unsigned long long id) : Persisted(segment, id) {
        initializeMemberSetIfNeeded();
    }
    void initializeMemberSet(unsigned, MemberSet *) {}
};

class ComponentMetaType final : public PersistedMetaType<Component> {
} s_component;
class PartMetaType final : public PersistedMetaType<Part> {
} s_part;

class AskedMetaType final : public PersistedMetaType<Asked> {
} s_asked;

EntityMetaType * Component::s_metaType() { return &s_component; }
EntityMetaType * Part::s_metaType() { return &s_part; }
EntityMetaType * Asked::s_metaType() { return &s_asked; }

class ComponentTests : public testing::Test {
protected:
    ComponentTests()
        : m_rComponent(Component::make(m_document.segment(), m_log)),
          m_rOuter(Part::make(PassiveRef<Entity>(m_rComponent))),
          m_rPart(Part::make(PassiveRef<Entity>(m_rOuter))) {
        m_log = Log();
    }
    // Puts an object below another by changes that aren't summarized, so that no component is
    // asked for.
    template <class Child>
    static StrongRef<Child> putBelow(StrongRef<ManagedGroupEntity> const & parent,
                                     StrongRef<Child> const & child) {
        parent->insertChild(child, 0);
        child->parent(parent);
        return child;
    }
    // Parts one below another, and the lowest of them.
    StrongRef<Part> nested(StrongRef<ManagedGroupEntity> const & top, int count) const {
        StrongRef<Part> part = putBelow(top, StrongRef<Part>(Part::make(m_document.segment())));
        for (int i = 1; i < count; ++i)
            part = putBelow(part, StrongRef<Part>(Part::make(m_document.segment())));
        return part;
    }
    StrongRef<Asked> askedBelow(StrongRef<ManagedGroupEntity> const & parent) const {
        return putBelow(parent, StrongRef<Asked>(Asked::make(m_document.segment())));
    }
    void expectCalls(std::vector<Call> const & calls) const { EXPECT_EQ(m_log.calls, calls); }

    Log m_log;
    Document const m_document;
    StrongRef<Component> const m_rComponent;
    StrongRef<Part> const m_rOuter;
    StrongRef<Part> const m_rPart;
};

// --- The walk -----------------------------------------------------------------------------------

TEST_F(ComponentTests, TheComponentIsTheNearestAbove) {
    EXPECT_EQ(m_rPart->component(), m_rComponent.get());
    EXPECT_EQ(m_rOuter->component(), m_rComponent.get());
    StrongRef<Component> const inner = Component::make(m_document.segment(), m_log);
    m_rPart->addChild(inner);
    StrongRef<Part> const below = Part::make(PassiveRef<Entity>(inner));
    EXPECT_EQ(below->component(), inner.get());
}

TEST_F(ComponentTests, AComponentDoesNotCountForItself) {
    EXPECT_EQ(m_rComponent->component(), nullptr);
    StrongRef<Component> const inner = Component::make(m_document.segment(), m_log);
    m_rOuter->addChild(inner);
    EXPECT_EQ(inner->component(), m_rComponent.get());
}

TEST_F(ComponentTests, AnAncestorThatIsNeitherEndsTheWalk) {
    StrongRef<Group> const group = Group::make(PassiveRef<Entity>(m_rOuter));
    StrongRef<Part> const below = Part::make(PassiveRef<Entity>(group));
    EXPECT_EQ(below->component(), nullptr);
    EXPECT_EQ(below->componentObjectParent(), nullptr);
    EXPECT_EQ(below->_coParent(), group);
}

TEST_F(ComponentTests, WithoutAParentThereIsNoComponent) {
    StrongRef<Part> const orphan = Part::make(m_document.segment());
    EXPECT_EQ(orphan->component(), nullptr);
    EXPECT_EQ(orphan->_coParent(), nullptr);
    EXPECT_EQ(orphan->componentObjectParent(), nullptr);
}

TEST_F(ComponentTests, TheTreeOfComponentObjectsIsThatOfTheManagedTree) {
    EXPECT_EQ(m_rPart->componentObjectParent(), static_cast<IComponentObject *>(m_rOuter.get()));
    StrongRef<Leaf> const leaf = Leaf::make(PassiveRef<Entity>(m_rOuter));
    ASSERT_EQ(m_rOuter->componentObjectChildren(), 2U);
    EXPECT_EQ(m_rOuter->componentObjectChild(0), static_cast<IComponentObject *>(m_rPart.get()));
    EXPECT_EQ(m_rOuter->componentObjectChild(1), nullptr);
    EXPECT_EQ(m_rPart->componentObjectChildren(), 0U);
    EXPECT_EQ(m_rPart->visibilityToggle(), nullptr);
}

// Common data that isn't a managed entity, and so has only the parent that it tells.
class Outside : public CommonData::ICommonData, public IComponentObject {
public:
    explicit Outside(StrongRef<Entity> parent) : m_rParent(std::move(parent)) {}
    StrongRef<Entity> commonDataParent() override { return m_rParent; }
    StrongRef<Entity> commonDataAncestor() override { return m_rParent; }
    void commonDataClientObject(CommonData::ICommonDataClientObject *) override {}
    CommonData::ICommonDataClientObject * commonDataClientObject() const override {
        return nullptr;
    }
    UniqueString const * getInterfaceId() const override { return ICommonData::interfaceId(); }
    void * queryInterface(UniqueString const * id) const override {
        void * const found = ICommonData::queryInterface(id);
        return found ? found : IComponentObject::queryInterface(id);
    }

private:
    StrongRef<Entity> const m_rParent;
};

TEST_F(ComponentTests, PlainCommonDataFindsItsParentThroughTheParentThatItTells) {
    Outside const outside(m_rPart);
    EXPECT_EQ(outside._coParent(), m_rPart);
    EXPECT_EQ(outside.component(), m_rComponent.get());
    EXPECT_EQ(outside.componentObjectParent(), static_cast<IComponentObject *>(m_rPart.get()));
    EXPECT_EQ(outside.componentObjectChildren(), 0U);
    EXPECT_EQ(outside.componentObjectChild(0), nullptr);
    EXPECT_EQ(Outside(nullptr).component(), nullptr);
}

TEST_F(ComponentTests, AnObjectThatOffersNeitherHasNoParent) {
    class Bare : public IComponentObject {
    } const bare;
    EXPECT_EQ(bare._coParent(), nullptr);
    EXPECT_EQ(bare.component(), nullptr);
}

TEST_F(ComponentTests, InterfacesAnswerToTheirOwnIdOnly) {
    struct Material : IDefaultMaterialProvider {
        StrongRef<Entity> defaultMaterial() const override { return nullptr; }
    } const material;
    struct Toggle : IVisibilityToggle {
        void toggleVisibility() override {}
    } const toggle;
    EXPECT_EQ(material.queryInterface(IDefaultMaterialProvider::interfaceId()), &material);
    EXPECT_EQ(material.queryInterface(IVisibilityToggle::interfaceId()), nullptr);
    EXPECT_EQ(material.getInterfaceId(), IDefaultMaterialProvider::interfaceId());
    EXPECT_EQ(toggle.queryInterface(IVisibilityToggle::interfaceId()), &toggle);
    EXPECT_EQ(toggle.queryInterface(IComponent::interfaceId()), nullptr);
    EXPECT_EQ(toggle.getInterfaceId(), IVisibilityToggle::interfaceId());
    EXPECT_EQ(m_rComponent->queryInterface(IComponent::interfaceId()),
              static_cast<IComponent *>(m_rComponent.get()));
    EXPECT_EQ(m_rComponent->queryInterface(IComponentObject::interfaceId()),
              static_cast<IComponentObject *>(m_rComponent.get()));
}

TEST_F(ComponentTests, ParentsInACircleHaveNoComponent) {
    for (int const length : {1, 2, 3, 100, 1000}) {
        StrongRef<Part> const top = Part::make(m_document.segment());
        StrongRef<Part> const bottom = length == 1 ? top : nested(top, length - 1);
        StrongRef<Part> const below = Part::make(PassiveRef<Entity>(bottom));
        top->parent(bottom);
        EXPECT_EQ(top->component(), nullptr) << length;
        EXPECT_EQ(below->component(), nullptr) << length;
        below->value(1);
        top->nullParent();
    }
    expectCalls({});
}

TEST_F(ComponentTests, AnObjectInACircleMayHaveItsOwnAnswer) {
    StrongRef<Part> const top = Part::make(m_document.segment());
    StrongRef<Asked> const asked = askedBelow(nested(top, 100));
    StrongRef<Part> const bottom = nested(asked, 100);
    top->parent(bottom);
    asked->m_pInstead = m_rComponent.get();
    EXPECT_EQ(bottom->component(), m_rComponent.get());
    EXPECT_EQ(asked->m_pAbove, nullptr);
    top->nullParent();
}

TEST_F(ComponentTests, ValueChangeBelow200000NestedObjectsTellsTheComponent) {
    StrongRef<Part> const bottom = nested(m_rPart, 200000);
    m_log.calls.clear();
    Vn::Testing::onSmallStack([&] { bottom->value(1); });
    expectCalls({{Call::Pre, bottom.get(), DataChange::ChangeValue},
                 {Call::Post, bottom.get(), DataChange::ChangeValue}});
}

// Near the object and far above it alike.
TEST_F(ComponentTests, AnOverrideOnTheWayIsAskedOnceAndItsAnswerCounts) {
    for (int const depth : {1, 10, 1000}) {
        StrongRef<Component> const other = Component::make(m_document.segment(), m_log);
        StrongRef<Asked> const asked = askedBelow(nested(m_rPart, depth));
        StrongRef<Part> const bottom = nested(asked, depth);
        EXPECT_EQ(bottom->component(), m_rComponent.get()) << depth;
        EXPECT_EQ(asked->m_pAbove, m_rComponent.get()) << depth;
        EXPECT_EQ(asked->m_asked, 1) << depth;
        asked->m_pInstead = other.get();
        EXPECT_EQ(bottom->component(), other.get()) << depth;
        EXPECT_EQ(asked->m_pAbove, m_rComponent.get()) << depth;
        asked->m_pOwn = other.get();
        EXPECT_EQ(bottom->component(), other.get()) << depth;
        EXPECT_EQ(asked->m_asked, 3) << depth;
    }
}

TEST_F(ComponentTests, OverridesOneBelowAnotherAreAskedOnceEach) {
    std::vector<StrongRef<Asked>> all;
    for (int i = 0; i < 20000; ++i)
        all.push_back(i == 0 ? askedBelow(m_rPart) : askedBelow(all.back()));
    Vn::Testing::onSmallStack([&] { EXPECT_EQ(all.back()->component(), m_rComponent.get()); });
    for (StrongRef<Asked> const & asked : all) ASSERT_EQ(asked->m_asked, 1);
}

TEST_F(ComponentTests, ANullChildIsNoComponentObject) {
    m_rOuter->insertChild(nullptr, 0);
    ASSERT_EQ(m_rOuter->componentObjectChildren(), 2U);
    EXPECT_EQ(m_rOuter->componentObjectChild(0), nullptr);
    EXPECT_EQ(m_rOuter->componentObjectChild(1), static_cast<IComponentObject *>(m_rPart.get()));
    m_rPart->value(1);
    EXPECT_EQ(m_log.calls.size(), 2U);
}

// --- Summaries ----------------------------------------------------------------------------------

TEST_F(ComponentTests, AChangeOfValueIsToldBeforeAndAfter) {
    m_rPart->value(1);
    expectCalls({{Call::Pre, m_rPart.get(), DataChange::ChangeValue},
                 {Call::Post, m_rPart.get(), DataChange::ChangeValue}});
}

TEST_F(ComponentTests, AChangeOfChildrenIsTold) {
    StrongRef<Leaf> const leaf = Leaf::make(m_document.segment());
    m_rPart->addChild(leaf);
    m_rPart->removeChild(leaf);
    expectCalls({{Call::Pre, m_rPart.get(), DataChange::ChangeChildren},
                 {Call::Post, m_rPart.get(), DataChange::ChangeChildren},
                 {Call::Pre, m_rPart.get(), DataChange::ChangeChildren},
                 {Call::Post, m_rPart.get(), DataChange::ChangeChildren}});
}

TEST_F(ComponentTests, AnInsertionMakesNoSummary) {
    m_rPart->insertChild(Leaf::make(m_document.segment()), 0);
    expectCalls({});
}

TEST_F(ComponentTests, AChangeOfParentMakesNoSummary) {
    StrongRef<Part> const part = Part::make(m_document.segment());
    part->parent(StrongRef<Entity>(m_rPart));
    part->nullParent();
    expectCalls({});
}

TEST_F(ComponentTests, AnUnsummarizedChangeMakesNoSummary) {
    m_rPart->value(1, static_cast<DataChange::ETransact>(DataChange::TransactDirect |
                                                         DataChange::TransactUnsummarized));
    expectCalls({});
}

TEST_F(ComponentTests, AChangeWithoutAComponentAboveTellsNobody) {
    StrongRef<Part> const orphan = Part::make(m_document.segment());
    StrongRef<Part> const below = Part::make(PassiveRef<Entity>(orphan));
    below->value(1);
    expectCalls({});
}

TEST_F(ComponentTests, AChangeOfWhatIsNoComponentObjectTellsNobody) {
    StrongRef<Leaf> const leaf = Leaf::make(m_document.segment());
    m_rPart->insertChild(leaf, 0);
    leaf->value(3);
    expectCalls({});
}

TEST_F(ComponentTests, TwoChangesInOneBracketAreToldOnceWithTheFirst) {
    m_rPart->twice(1);
    expectCalls({{Call::Pre, m_rPart.get(), DataChange::ChangeValue},
                 {Call::Post, m_rPart.get(), DataChange::ChangeValue}});
}

TEST_F(ComponentTests, NestedSettersShareOneSummarizer) {
    m_rPart->within(
        DataChange::ChangeValue, DataChange::TimingPreAndPost, [&](EntityChange const & bracket) {
            auto * const first = bracket.findSummarizer(ComponentChangeSummarizer::interfaceId());
            ASSERT_NE(first, nullptr);
            m_rPart->value(1);
            m_rPart->value(2);
            EXPECT_EQ(bracket.findSummarizer(ComponentChangeSummarizer::interfaceId()), first);
        });
    EXPECT_EQ(m_log.calls.size(), 2U);
}

// A structural bracket around makes none; the first change within that counts does.
TEST_F(ComponentTests, TheFirstChangeThatCountsMakesTheSummarizerOfTheBracketAround) {
    m_rPart->within(DataChange::ChangeStructural, DataChange::TimingPreAndPost,
                    [&](EntityChange const & bracket) {
                        EXPECT_EQ(bracket.findSummarizer(ComponentChangeSummarizer::interfaceId()),
                                  nullptr);
                        m_rPart->value(1);
                        m_rPart->addChild(Leaf::make(m_document.segment()));
                    });
    ASSERT_EQ(m_log.calls.size(), 2U);
    EXPECT_EQ(m_log.calls[0], (Call{Call::Pre, m_rPart.get(), DataChange::ChangeValue}));
    EXPECT_EQ(m_log.calls[1].stage, Call::Post);
    EXPECT_EQ(m_log.calls[1].changed, m_rPart.get());
}

TEST_F(ComponentTests, BracketsOfDifferentEntitiesAreToldEach) {
    m_rOuter->within(DataChange::ChangeValue, DataChange::TimingPreAndPost,
                     [&](EntityChange const &) { m_rPart->value(1); });
    expectCalls({{Call::Pre, m_rOuter.get(), DataChange::ChangeValue},
                 {Call::Pre, m_rPart.get(), DataChange::ChangeValue},
                 {Call::Post, m_rPart.get(), DataChange::ChangeValue},
                 {Call::Post, m_rOuter.get(), DataChange::ChangeValue}});
}

TEST_F(ComponentTests, ASummarizerThatFirstComesInThePostStageMakesNoPreCall) {
    m_rPart->value(1, DataChange::TransactDirect, DataChange::TimingPost);
    expectCalls({{Call::Post, m_rPart.get(), DataChange::ChangeValue}});
}

TEST_F(ComponentTests, ABracketThatTellsOnlyBeforeMakesNoPostCall) {
    m_rPart->value(1, DataChange::TransactDirect, DataChange::TimingPre);
    expectCalls({{Call::Pre, m_rPart.get(), DataChange::ChangeValue}});
}

TEST_F(ComponentTests, FurtherComponentsAreToldInTheirOrderAfterTheOwn) {
    StrongRef<Component> const second = Component::make(m_document.segment(), m_log);
    StrongRef<Component> const third = Component::make(m_document.segment(), m_log);
    m_log.further = {third.get(), second.get()};
    m_rPart->value(1);
    std::vector<IComponent *> const once{m_rComponent.get(), third.get(), second.get()};
    ASSERT_EQ(m_log.told.size(), 6U);
    EXPECT_EQ(std::vector<IComponent *>(m_log.told.begin(), m_log.told.begin() + 3), once);
    EXPECT_EQ(std::vector<IComponent *>(m_log.told.begin() + 3, m_log.told.end()), once);
}

TEST_F(ComponentTests, AReplayIsToldLikeAnyChange) {
    m_document.step([&] { m_rPart->value(1); });
    m_log.calls.clear();
    m_document.undo();
    expectCalls({{Call::Pre, m_rPart.get(), DataChange::ChangeValue},
                 {Call::Post, m_rPart.get(), DataChange::ChangeValue}});
}

// component() is asked for the test and for the value.
TEST(ComponentChangeSummarizerTests, TheComponentIsAskedForTwicePerStage) {
    struct Silent : IComponent {
        void onComponentPreChange(ComponentDataChange const *) override {}
        void onComponentPostChange(ComponentDataChange const *, bool) override {}
        void collectComponents(std::vector<IComponent *> &) override {}
    } silent;
    struct Counting : IComponentObject {
        explicit Counting(IComponent * component) : m_pComponent(component) {}
        IComponent * component() const override {
            ++m_asked;
            return m_pComponent;
        }
        IComponent * const m_pComponent;
        mutable int m_asked = 0;
    } const some(&silent), none(nullptr);
    auto const run = [](Counting const & object) {
        ComponentChangeSummarizer summarizer(const_cast<Counting *>(&object));
        summarizer.preChange(DataChange::ChangeValue, DataChange::TimingPreAndPost);
        return object.m_asked;
    };
    EXPECT_EQ(run(some), 2);
    EXPECT_EQ(run(none), 1);
    ComponentChangeSummarizer ofNothing(nullptr);
    ofNothing.preChange(DataChange::ChangeValue, DataChange::TimingPreAndPost);
    ofNothing.postChange(DataChange::ChangeValue, DataChange::TimingPreAndPost);
    EXPECT_EQ(ofNothing.queryInterface(ComponentChangeSummarizer::interfaceId()), &ofNothing);
    EXPECT_EQ(ofNothing.queryInterface(EntityChangeSummarizer::interfaceId()), &ofNothing);
    EXPECT_EQ(ofNothing.getInterfaceId(), ComponentChangeSummarizer::interfaceId());
}

TEST_F(ComponentTests, ARecordTellsTheChangeAndTheEntity) {
    ComponentDataChange const change(m_rPart.get(), DataChange::ChangeValue);
    EXPECT_EQ(change.toString(), "ComponentDataChange: Change = " +
                                     Text::toUtf8(DataChange::typeText(DataChange::ChangeValue)) +
                                     "; Entity = " + Text::toUtf8(m_rPart->toString()));
}

TEST_F(ComponentTests, ARecordCopiesTheObjectAndTheType) {
    ComponentDataChange const change(m_rPart.get(), DataChange::ChangeChildren);
    std::unique_ptr<DataChange> const clone = change.clone();
    auto const * const cloned = dynamic_cast<ComponentDataChange const *>(clone.get());
    ASSERT_NE(cloned, nullptr);
    EXPECT_EQ(cloned->changedComponentObject(), m_rPart.get());
    EXPECT_EQ(cloned->changeType(), DataChange::ChangeChildren);
    ComponentDataChange assigned(nullptr, DataChange::ChangeStructural);
    assigned = change;
    EXPECT_EQ(assigned.changedComponentObject(), m_rPart.get());
    EXPECT_EQ(assigned.changeType(), DataChange::ChangeChildren);
}

} // namespace

} // namespace Vn::Managed::Testing
