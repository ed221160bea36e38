// Members by name and as text.

#include <limits>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/Base/Text.h"
#include "Platform/DataModel/DocumentFile.h"
#include "Platform/DataModel/EntityMembers.h"
#include "Platform/DataModel/GeometryMetaTypes.h"
#include "Tests/DataModel/DocumentTestEntities.h"

namespace Vn::Testing {
namespace {

// A class that says more of its members than what they are.
class Shelf : public Piece {
public:
    static constexpr char c_className[] = "Shelf";
    static std::string s_metaTypeId() { return "Test-Shelf"; }
    static DocumentMetaType<Shelf> * s_metaType() {
        static DocumentMetaType<Shelf> s_type(0, Piece::s_metaTypeId());
        return &s_type;
    }
    static StrongRef<Shelf> make(Segment * segment) {
        s_metaType();
        StrongRef<Shelf> made(new Shelf(segment));
        made->postCreation(DataChange::TransactDirect);
        return made;
    }
    Shelf(Segment * segment, unsigned long long id) : Piece(segment, id) {
        initializeMemberSetIfNeeded<Shelf>(this);
    }
    void createHelper() {}

    void initializeMembers(unsigned, MemberSet * set) {
        auto * const real = IntrinsicMetaType<double>::get();
        auto * const whole = IntrinsicMetaType<unsigned>::get();
        set->addNewMember("boards", &m_boards, "unsigned int", whole, nullptr, nullptr)
            ->readOnly("boards are added and taken out one by one");
        set->addNewMember("load", &m_load, "double", real, nullptr, nullptr)->setter(&setLoad);
        set->addNewMember("origin", &m_origin, typeid(TgPoint3d).name(), TgPoint3dMetaType::get(),
                          nullptr, nullptr)
            ->setter(&setOrigin);
        Members(set).add("name", m_ownName); // as its base has it
        set->addNewMember(
            "corners", &m_corners, typeid(m_corners).name(), MemberMetaType::find("Vector"),
            TemplatizedFunctions::makeVector<TgPoint3d>(TgPoint3dMetaType::get()), nullptr);
    }

    unsigned m_boards = 3;
    double m_load = 10;
    TgPoint3d m_origin{1, 2, 3};
    std::wstring m_ownName = L"own";
    std::vector<TgPoint3d> m_corners{{1, 2, 3}, {0.5, 0, -1}};
    int m_moves = 0;

private:
    explicit Shelf(Segment * segment) : Piece(segment) { initializeMemberSetIfNeeded<Shelf>(this); }
    EntityMetaType * onMetaType() const override { return s_metaType(); }

    static Status setLoad(Shelf & shelf, double const & load) {
        if (!(load >= 0)) return Status::invalidArgument("load the shelf", "", "it is negative");
        shelf.change([&] { shelf.m_load = load; });
        return Status();
    }
    static Status setOrigin(Shelf & shelf, TgPoint3d const & origin) {
        ++shelf.m_moves;
        shelf.change([&] { shelf.m_origin = origin; });
        return Status();
    }
};

class EntityMembersTests : public ::testing::Test {
protected:
    EntityMembersTests()
        : m_rAsset(Asset::make(nullptr)), m_rAll(Everything::make(design(*m_rAsset))),
          m_rShelf(Shelf::make(design(*m_rAsset))) {
        design(*m_rAsset)->addRoot(m_rAll, "all");
        design(*m_rAsset)->addRoot(m_rShelf, "shelf");
        m_rAsset->history().clear();
    }

    static std::wstring get(StrongRef<Entity> const & entity, std::string_view name) {
        std::wstring text;
        EXPECT_TRUE(EntityMembers(entity).get(name, text).ok()) << name;
        return text;
    }
    std::wstring get(std::string_view name) { return get(m_rAll, name); }
    // As one step.
    Status set(StrongRef<Entity> const & entity, std::string_view name, std::wstring_view text) {
        Transaction transaction(*m_rAsset, L"set");
        Status const status = EntityMembers(entity).set(name, text);
        transaction.commit();
        return status;
    }
    Status set(std::string_view name, std::wstring_view text) { return set(m_rAll, name, text); }
    void expectKept(std::string_view name, std::wstring const & text) {
        EXPECT_TRUE(set(name, text).ok()) << name;
        EXPECT_EQ(get(name), text) << name;
    }
    void expectRefused(std::string_view name, std::wstring_view text, std::string const & cause) {
        std::wstring const before = get(name);
        Status const status = set(name, text);
        EXPECT_EQ(status.code(), StatusInvalidArgument) << name;
        EXPECT_EQ(status.cause(), cause) << name << ' ' << Text::toUtf8(text);
        EXPECT_EQ(status.subject(), name);
        EXPECT_EQ(get(name), before) << name;
        EXPECT_EQ(m_rAsset->history().undoSteps(), 0U);
    }

    StrongRef<Asset> m_rAsset;
    StrongRef<Everything> m_rAll;
    StrongRef<Shelf> m_rShelf;
};

TEST_F(EntityMembersTests, ValuesOfEveryKindAreWrittenAndReadBack) {
    for (auto const & [name, text] :
         std::initializer_list<std::pair<char const *, wchar_t const *>>{
             {"bool", L"true"},
             {"bool", L"false"},
             {"int", L"-2147483648"},
             {"unsigned", L"4294967295"},
             {"int64", L"-9223372036854775808"},
             {"unsigned64", L"18446744073709551615"},
             {"float", L"0.1"},
             {"float", L"-inf"},
             {"double", L"0.1"},
             {"double", L"1e+308"},
             {"double", L"5e-324"},
             {"double", L"-0"},
             {"double", L"nan"},
             {"string", L"a \"b\"\n\x00E4"},
             {"wide", L""},
             {"wide", L"\U0001D11E \u4E16"},
             {"text", L"a text"},
             {"spot.x", L"2.5"},
             {"spot.label", L"here"},
             {"ints", L"[]"},
             {"ints", L"[1,-2,3]"},
             {"unsigned64s", L"[1]"},
             {"floats", L"[0.1,1e999,-1e999,null]"},
             {"doubles", L"[0.1,5e-324]"},
             {"strings", L"[\"a\",\"\"]"},
             {"wides", L"[\"a\\u0001\",\"\x4E16\"]"},
             {"texts", L"[\"a\",[\"module\",\"key\",\"wording\"]]"},
         })
        expectKept(name, text);
}

TEST_F(EntityMembersTests, WhatIsNotAValueOfTheKindIsRefusedAndChangesNothing) {
    for (wchar_t const * const text : {L"", L"1", L"yes", L"True", L" true"})
        expectRefused("bool", text, "it is neither true nor false");
    for (wchar_t const * const text : {L"", L"1.5", L"2147483648", L"1 ", L"+1", L"x", L"\x0661"})
        expectRefused("int", text, "it isn't a whole number of that kind");
    for (wchar_t const * const text : {L"-1", L"4294967296"})
        expectRefused("unsigned", text, "it isn't a whole number of that kind");
    for (wchar_t const * const text : {L"", L"1,5", L"2 cm", L"0x10", L"--1"})
        expectRefused("double", text, "it isn't a number");
    expectRefused("double", L"1e309", "it is beyond the range of a double");
    expectRefused("float", L"1e39", "it is beyond the range of a float");
    for (wchar_t const * const text : {L"", L"1", L"[", L"[1", L"[1,]", L"[1] 2", L"{}"}) {
        Status const status = set("ints", text);
        EXPECT_EQ(status.code(), StatusInvalidArgument) << Text::toUtf8(text);
    }
    expectRefused("ints", L"[1,x]", "it isn't a whole number of that kind");
    expectRefused("texts", L"[\"a\",1]", "it isn't a well-formed text");
}

TEST_F(EntityMembersTests, BlanksInListsArePassedOver) {
    EXPECT_TRUE(set("ints", L" [ 1 , 2,3 ] ").ok());
    EXPECT_EQ(get("ints"), L"[1,2,3]");
}

TEST_F(EntityMembersTests, ReferencesAreShownAndNeverSet) {
    m_rAll->m_rFriend = PassiveRef<Entity>(m_rShelf);
    EXPECT_EQ(get("rFriend"), L'#' + std::to_wstring(m_rShelf->id()));
    EXPECT_EQ(get("rOwned"), L"null");
    m_rAll->m_friends = {PassiveRef<Entity>(m_rShelf), PassiveRef<Entity>()};
    EXPECT_EQ(get("friends"), L'[' + std::to_wstring(m_rShelf->id()) + L",null]");
    for (char const * const name : {"rFriend", "rOwned", "spot.at", "rParent"}) {
        Status const status = set(name, L"null");
        EXPECT_EQ(status.code(), StatusAccessDenied);
        EXPECT_EQ(status.cause(), "it is a reference to an entity");
    }
    for (char const * const name : {"friends", "children", "spots"})
        EXPECT_EQ(set(name, L"[]").cause(), "it holds references to entities");
}

TEST_F(EntityMembersTests, ASetIsUndoneRedoneAndSaved) {
    EXPECT_TRUE(set("double", L"2.5").ok());
    EXPECT_TRUE(set("strings", L"[\"a\"]").ok());
    ASSERT_EQ(m_rAsset->history().undoSteps(), 2U);
    m_rAsset->history().undo();
    EXPECT_EQ(get("strings"), L"[]");
    m_rAsset->history().undo();
    EXPECT_EQ(get("double"), L"0");
    m_rAsset->history().redo();
    m_rAsset->history().redo();
    TemporaryFile const file;
    ASSERT_TRUE(DocumentFile::saveAs(*m_rAsset, file.path()).ok());
    StrongRef<Asset> loaded;
    ASSERT_TRUE(DocumentFile::load(file.path(), nullptr, loaded).ok());
    StrongRef<Entity> const all = design(*loaded)->rootEntity("all");
    EXPECT_EQ(get(all, "double"), L"2.5");
    EXPECT_EQ(get(all, "strings"), L"[\"a\"]");
}

TEST_F(EntityMembersTests, TheValueThatIsThereIsNoStep) {
    EXPECT_TRUE(set("int", L"0").ok());
    EXPECT_TRUE(set("wides", L"[]").ok());
    EXPECT_EQ(m_rAsset->history().undoSteps(), 0U);
}

TEST_F(EntityMembersTests, ASetterOfTheClassIsAskedAndMayRefuse) {
    EXPECT_TRUE(set(m_rShelf, "load", L"12.5").ok());
    EXPECT_EQ(m_rShelf->m_load, 12.5);
    Status const status = set(m_rShelf, "load", L"-1");
    EXPECT_EQ(status.cause(), "it is negative");
    EXPECT_EQ(m_rShelf->m_load, 12.5);
    EXPECT_EQ(set(m_rShelf, "load", L"x").cause(), "it isn't a number");
    m_rAsset->history().undo();
    EXPECT_EQ(m_rShelf->m_load, 10);
}

TEST_F(EntityMembersTests, ASetterOfAValueGetsTheWholeOfIt) {
    EXPECT_TRUE(set(m_rShelf, "origin.y", L"7").ok());
    EXPECT_EQ(m_rShelf->m_moves, 1);
    EXPECT_EQ(m_rShelf->m_origin.x, 1);
    EXPECT_EQ(m_rShelf->m_origin.y, 7);
    EXPECT_EQ(m_rShelf->m_origin.z, 3);
}

TEST_F(EntityMembersTests, AMemberThatIsReadOnlySaysWhy) {
    EXPECT_EQ(get(m_rShelf, "boards"), L"3");
    Status const status = set(m_rShelf, "boards", L"4");
    EXPECT_EQ(status.code(), StatusAccessDenied);
    EXPECT_EQ(status.toString(), "cannot set the member 'boards': access denied: boards are added "
                                 "and taken out one by one");
}

TEST_F(EntityMembersTests, AListOfValuesHasThemByName) {
    EXPECT_EQ(get(m_rShelf, "corners"),
              L"[{\"x\":1.0,\"y\":2.0,\"z\":3.0},{\"x\":0.5,\"y\":0.0,\"z\":-1.0}]");
    EXPECT_TRUE(set(m_rShelf, "corners", L"[ { \"x\" : 4, \"y\":5,\"z\":6 } ]").ok());
    ASSERT_EQ(m_rShelf->m_corners.size(), 1U);
    EXPECT_EQ(m_rShelf->m_corners[0].z, 6);
    for (wchar_t const * const text :
         {L"[{}]", L"[{\"x\":4}]", L"[{\"y\":4,\"x\":5,\"z\":6}]",
          L"[{\"x\":4,\"y\":5,\"z\":\"\"}]", L"[{\"x\":4,\"y\":5,\"z\":6,\"w\":7}]", L"[1]"})
        EXPECT_EQ(set(m_rShelf, "corners", text).code(), StatusInvalidArgument);
    EXPECT_EQ(m_rShelf->m_corners.size(), 1U);
}

TEST_F(EntityMembersTests, MembersOfOneNameAreToldApartByTheClass) {
    m_rShelf->m_name = L"base";
    EXPECT_EQ(get(m_rShelf, "name"), L"own");
    EXPECT_EQ(get(m_rShelf, "Shelf.name"), L"own");
    EXPECT_EQ(get(m_rShelf, "Piece.name"), L"base");
    EXPECT_TRUE(set(m_rShelf, "Piece.name", L"set").ok());
    EXPECT_EQ(m_rShelf->m_name, L"set");
}

TEST_F(EntityMembersTests, AllMembersAreListedBaseFirst) {
    std::vector<std::string> lines;
    for (EntityMembers::Info const & info : EntityMembers(m_rShelf).all())
        lines.push_back(info.name + '|' + info.className + '|' + info.kind + '|' +
                        info.whyReadOnly);
    EXPECT_EQ(lines, (std::vector<std::string>{
                         "Piece.name|Piece|std::wstring|",
                         "rParent|Piece|PassiveRef|it is a reference to an entity",
                         "boards|Shelf|unsigned int|boards are added and taken out one by one",
                         "load|Shelf|double|", "origin.x|Shelf|double|", "origin.y|Shelf|double|",
                         "origin.z|Shelf|double|", "name|Shelf|std::wstring|",
                         "corners|Shelf|Vector of TgPoint3d|"}));
}

TEST_F(EntityMembersTests, WhatIsNotThereIsNotFound) {
    std::wstring text;
    for (char const * const name : {"", "nothing", "spot", "spot.", ".int", "unsaved", "Int"}) {
        EXPECT_EQ(EntityMembers(m_rAll).get(name, text).code(), StatusNotFound) << name;
        EXPECT_EQ(set(name, L"1").code(), StatusNotFound) << name;
    }
}

TEST_F(EntityMembersTests, AnEntityThatHasLeftTheDocumentIsRefused) {
    StrongRef<Row> row;
    {
        Transaction transaction(*m_rAsset, L"make");
        row = Row::make(design(*m_rAsset));
        m_rAll->change([&] { m_rAll->m_rOwned = row; });
        transaction.commit();
    }
    m_rAsset->history().undo();
    EXPECT_EQ(get(row, "x"), L"0");
    EXPECT_EQ(EntityMembers(row).set("x", L"1").code(), StatusInvalidArgument);
}

TEST_F(EntityMembersTests, EveryValueOfARandomDocumentReadsBackAsItIs) {
    StrongRef<Asset> const random = randomDocument(7, 200);
    std::size_t values = 0;
    std::vector<StrongRef<Entity>> entities;
    for (unsigned long long id = 1; id < 1000; ++id)
        if (StrongRef<Entity> const entity = random->entity(id)) entities.push_back(entity);
    random->history().clear();
    std::string const before = dump(*random);
    for (StrongRef<Entity> const & entity : entities) {
        EntityMembers const members(entity);
        for (EntityMembers::Info const & info : members.all()) {
            if (!info.whyReadOnly.empty()) continue;
            // Bytes that aren't UTF-8, and texts of the string table, are more than their text.
            if (info.kind == "std::string" || info.kind == "GlobalizedString") continue;
            std::wstring text;
            ASSERT_TRUE(members.get(info.name, text).ok());
            Status const status = members.set(info.name, text);
            EXPECT_TRUE(status.ok()) << status.toString();
            ++values;
        }
    }
    EXPECT_EQ(dump(*random), before);
    EXPECT_GT(values, 1000U);
}

} // namespace
} // namespace Vn::Testing
