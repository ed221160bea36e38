// The units of a document: the commands that change them, and what asks for them.

#include <nlohmann/json.hpp>

#include "Tests/Console/DocumentFixture.h"

namespace Vn::Console::Tests {

namespace {

class UnitSystemCommandTests : public DocumentFixture {
protected:
    UnitSystemCommandTests() {
        Outcome const made =
            document("new, removesystem document, makesystem Imperial imp imperial");
        EXPECT_EQ(made.status, 0) << made.err;
    }

    // Runs commands on "a.vnd".  Blanks separate arguments, but not within double quotes.
    static Outcome document(std::string const & commands) {
        std::vector<std::string> arguments = {"document", "a.vnd", ""};
        bool isQuoted = false;
        for (char const c : commands) {
            isQuoted ^= c == '"';
            if (c == ' ' && !isQuoted)
                arguments.emplace_back();
            else
                arguments.back() += c;
        }
        return runConsole(arguments);
    }

    // The lines of `system ID`, each with single blanks between its columns.
    static std::string choices(std::string const & id) {
        Outcome const outcome = document("system " + id);
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        std::string text;
        for (char const c : outcome.out)
            if (c != ' ' || text.empty() || text.back() != ' ') text += c;
        return text;
    }
    // What a command that fails says, without its last line.
    static std::string refusal(std::string const & command) {
        Outcome const outcome = document(command);
        EXPECT_EQ(outcome.status, 1) << command << outcome.out;
        return outcome.err.substr(0, outcome.err.find('\n'));
    }
    static Outcome eval(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"eval", "--standard", "--document", "a.vnd"});
        return runConsole(arguments);
    }
    // The text of the value.
    static std::string shown(std::vector<std::string> const & arguments) {
        Outcome const outcome = eval(arguments);
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        std::string const start = "formatted  ";
        EXPECT_TRUE(outcome.out.starts_with(start)) << outcome.out;
        return outcome.out.substr(start.size(), outcome.out.find('\n') - start.size());
    }
};

TEST_F(UnitSystemCommandTests, SystemsAreMadeListedAndRemoved) {
    Outcome const outcome =
        document("makesystem \"My units\" mine empty, makesystem M m mks, "
                 "UnitSystems.Make C c CGS, systems, removesystem mine, systems");
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "made the unit system mine with 0 choices\n"
                           "made the unit system m with 15 choices\n"
                           "made the unit system c with 11 choices\n"
                           "imp   Imperial  12 choices\n"
                           "mine  My units  0 choices\n"
                           "m     M         15 choices\n"
                           "c     C         11 choices\n"
                           "removed the unit system mine with 0 choices\n"
                           "imp  Imperial  12 choices\n"
                           "m    M         15 choices\n"
                           "c    C         11 choices\n"
                           "saved a.vnd\n");
    EXPECT_EQ(document("systems /Json").out,
              "{\"id\":\"imp\",\"name\":\"Imperial\",\"choices\":12,\"active\":false}\n"
              "{\"id\":\"m\",\"name\":\"M\",\"choices\":15,\"active\":false}\n"
              "{\"id\":\"c\",\"name\":\"C\",\"choices\":11,\"active\":false}\n");
}

TEST_F(UnitSystemCommandTests, ADocumentWithoutSystemsSaysSo) {
    Outcome const outcome = document("new /Force, removesystem document, systems");
    EXPECT_NE(outcome.out.find("the document has no unit system\n"), std::string::npos);
    EXPECT_EQ(refusal("system imp"),
              "cannot show the unit system: the document has no unit system; "
              "UnitSystems.Make NAME ID mks makes one");
}

TEST_F(UnitSystemCommandTests, ChoicesAreMadeChangedAndRemoved) {
    Outcome const outcome =
        document("chooseid imp ModelingLength in, chooseid imp Depth mm \"Depth of cut\", "
                 "choose imp acre, choose imp \"kg / m^3\" \"Bulk density\", "
                 "choose imp \"N m\", changeunit imp Length yd, changeunit imp Depth cm, "
                 "changeunit imp 13 ft, unchoose imp Currency, unchoose imp 10");
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "imp has in for ModelingLength\n"
                           "imp has mm for Depth\n"
                           "imp has acre for Area\n"
                           "imp has kg / m^3 for Bulk density\n"
                           "imp has N m for Energy\n"
                           "imp has yd for Length in place of ft\n"
                           "imp has cm for Depth in place of mm\n"
                           "imp has ft for Depth in place of cm\n"
                           "removed dol for Currency from imp\n"
                           "removed deg for Angle from imp\n"
                           "saved a.vnd\n");
    EXPECT_EQ(choices("imp"), "0 kind Length yd yard\n"
                              "1 kind Mass lbmass lbmass\n"
                              "2 kind Time s second\n"
                              "3 kind Temperature F farenheit\n"
                              "4 kind Speed fps FeetPerSecond\n"
                              "5 kind Pressure psi psi\n"
                              "6 kind Force lbforce lbforce\n"
                              "7 kind Current A ampere\n"
                              "8 kind Substance mole Mole\n"
                              "9 kind Luminosity cd candela\n"
                              "10 key ModelingLength in inch Modeling Length\n"
                              "11 key Depth ft foot Depth of cut\n"
                              "12 kind Area acre acre\n"
                              "13 dimension kg / m^3 kilogram / meter^3 Bulk density\n"
                              "14 kind Energy N m newton meter\n");
    auto const line = document("system imp /Json").out;
    auto const object = nlohmann::json::parse(line.substr(0, line.find('\n')));
    EXPECT_EQ(object["kind"], "Length");
    EXPECT_EQ(object["unit"], "yd");
    EXPECT_EQ(object["stored"], "yard");
}

TEST_F(UnitSystemCommandTests, CompletingAddsWhatIsMissing) {
    Outcome const outcome = document("complete imp mks, complete imp mks, makesystem E e empty, "
                                     "complete e common");
    EXPECT_EQ(outcome.out, "added 3 choices to imp\n"
                           "added 0 choices to imp\n"
                           "made the unit system e with 0 choices\n"
                           "added 5 choices to e\n"
                           "saved a.vnd\n");
}

TEST_F(UnitSystemCommandTests, EachCommandIsAStepThatIsUndone) {
    std::string const before = choices("imp");
    for (char const * const command :
         {"makesystem M m mks", "complete imp mks", "chooseid imp ModelingMass kg", "choose imp l",
          "changeunit imp Length mi", "unchoose imp Mass", "removesystem imp"}) {
        Outcome const outcome =
            document(std::string(command) + ", tree, undo, redo, undo, history");
        EXPECT_EQ(outcome.status, 0) << command << outcome.err;
        EXPECT_NE(outcome.out.find("\n>  0  where the history begins"), std::string::npos)
            << outcome.out;
        EXPECT_EQ(choices("imp"), before) << command;
    }
    Outcome const first = document(
        "new /Force, removesystem document, makesystem M m mks, undo, systems, redo, systems");
    EXPECT_NE(first.out.find("the document has no unit system\n"), std::string::npos) << first.out;
    EXPECT_NE(first.out.find("m  M  15 choices\n"), std::string::npos) << first.out;
}

TEST_F(UnitSystemCommandTests, WhatCannotBeDoneIsToldWithTheReason) {
    struct Row {
        char const * command;
        char const * refusal;
    };
    for (Row const & row : {
             Row{"makesystem A imp mks",
                 "cannot make a unit system: the document has a unit system "
                 "\"imp\" already"},
             Row{"makesystem A b metric",
                 "cannot make a unit system: \"metric\" isn't mks, cgs, imperial or empty"},
             Row{"makesystem A b common",
                 "cannot make a unit system: \"common\" isn't mks, cgs, imperial or empty"},
             Row{"makesystem A \"\" mks", "cannot make a unit system: its identifier is empty"},
             Row{"choose imp 1/s", "cannot choose the unit: \"1/s\" isn't a unit; write / s"},
             Row{"choose imp cm/in", "cannot choose the unit: \"cm/in\" can't be kept: a document "
                                     "would give back no unit, since nothing remains of the "
                                     "dimension"},
             Row{"choose imp m",
                 "cannot choose the unit: the unit system has ft for Length already; "
                 "UnitSystems.Change gives it another unit"},
             Row{"choose imp metr",
                 "cannot choose the unit: \"metr\" isn't a unit; did you mean meter?"},
             Row{"changeunit imp Lenght m",
                 "cannot change the unit: the unit system \"imp\" has no "
                 "choice \"Lenght\"; did you mean Length?"},
             Row{"changeunit imp Mass m",
                 "cannot change the unit: \"m\" isn't of the dimension of lbmass"},
             Row{"changeunit im Length m",
                 "cannot change the unit: the document has no unit system "
                 "\"im\"; there is imp"},
             Row{"unchoose imp 99",
                 "cannot remove the choice: the unit system \"imp\" has no choice of that number"},
             Row{"complete imp metric",
                 "cannot complete the unit system: \"metric\" isn't mks, cgs, "
                 "imperial or common"},
         })
        EXPECT_EQ(refusal(row.command), row.refusal);
    EXPECT_EQ(refusal("chooseid imp k in, chooseid imp k ft").substr(0, 82),
              "cannot choose the unit: the unit system has in for k already; UnitSystems.Change g");
}

TEST_F(UnitSystemCommandTests, StoredTextAndKindArentSetByHand) {
    EXPECT_NE(refusal("set UnitSystems/CmnData[0]/CmnData[0] unitString mile")
                  .find("it is the text of the unit, which is changed by the commands of unit "
                        "systems"),
              std::string::npos);
    EXPECT_NE(refusal("set UnitSystems/CmnData[0]/CmnData[0] eSimpleUnitType 3")
                  .find("it is the kind of the unit that the choice was made with"),
              std::string::npos);
}

TEST_F(UnitSystemCommandTests, ATextThatIsNoUnitIsShownAsItIs) {
    execute("a.vnd",
            "UPDATE UnitSystemChoiceByUnit SET \"UnitSystemChoice.unitString\" = 'furlong' "
            "WHERE \"UnitSystemChoiceByUnit.eSimpleUnitType\" = 0");
    EXPECT_TRUE(
        choices("imp").starts_with("0 kind Length \"furlong\", which isn't a unit furlong\n"));
    EXPECT_EQ(document("chooseid imp a m").status, 0);
    EXPECT_TRUE(choices("imp").starts_with("0 kind Length \"furlong\""));
}

TEST_F(UnitSystemCommandTests, EvalAsksTheOnlySystemForAKindAUnitOrAKey) {
    ASSERT_EQ(document("chooseid imp ModelingLength in").status, 0);
    std::string const before = readFile("a.vnd");
    EXPECT_EQ(shown({"--kind", "Length", "2"}), "2.00 ft");
    EXPECT_EQ(shown({"--kind", "length", "1 yd"}), "3.00 ft");
    EXPECT_EQ(shown({"--kind", "Area", "1 yd^2"}), "9.00 ft^2");
    EXPECT_EQ(shown({"--kind", "Force", "1 N"}), "0.225 lbforce");
    EXPECT_EQ(shown({"--unit", "m", "2"}), "2.00 ft");
    EXPECT_EQ(shown({"--unit", "m^3", "1 yd^3"}), "27.00 ft^3");
    EXPECT_EQ(shown({"--id", "ModelingLength", "2"}), "2.00 in");
    EXPECT_EQ(shown({"--id", "ModelingLength", "--unit", "kg", "2"}), "2.00 in");
    EXPECT_EQ(shown({"--id", "ModelingLength", "--kind", "Mass", "2"}), "2.00 in");
    EXPECT_EQ(shown({"--id", "other", "--unit", "kg", "2"}), "2.00 lbmass");
    EXPECT_EQ(shown({"--id", "other", "--kind", "Area", "2"}), "2.00 ft^2");
    EXPECT_EQ(shown({"30 cm"}), "30.00 cm");
    EXPECT_EQ(readFile("a.vnd"), before);
}

TEST_F(UnitSystemCommandTests, EvalWantsTheNameOfOneOfSeveralSystems) {
    ASSERT_EQ(document("makesystem M m mks").status, 0);
    EXPECT_EQ(shown({"--system", "m", "--kind", "Length", "2"}), "2.00 m");
    Outcome const outcome = eval({"2"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err,
              "vnconsole: a.vnd: the document has several unit systems; there are imp, m; "
              "UnitSystems.Activate ID makes one the document's\n");
}

TEST_F(UnitSystemCommandTests, EvalTellsWhatIsntThere) {
    struct Row {
        std::vector<std::string> arguments;
        int status;
        char const * err;
    };
    for (Row const & row :
         {Row{{"--kind", "Lenth", "2"},
              2,
              "vnconsole: --kind: \"Lenth\" isn't a kind of quantity; did you mean Length?\n"},
          Row{{"--kind", "Length", "--unit", "m", "2"},
              2,
              "vnconsole: --unit and --kind ask for different things\n"},
          Row{{"--unit", "nonsense", "2"}, 2, "vnconsole: --unit: \"nonsense\" isn't a unit\n"},
          Row{{"--system", "x", "2"},
              1,
              "vnconsole: a.vnd: the document has no unit system \"x\"; there is imp\n"},
          Row{{"--id", "Length", "2"},
              1,
              "vnconsole: the unit system has \"Length\" as a kind and not as a key; --kind asks "
              "for kinds\n"}}) {
        Outcome const outcome = eval(row.arguments);
        EXPECT_EQ(outcome.status, row.status);
        EXPECT_EQ(outcome.err, row.err);
    }
    Outcome const without = runConsole({"eval", "--kind", "Length", "2"});
    EXPECT_EQ(without.status, 2);
    EXPECT_EQ(without.err, "vnconsole: --kind asks the unit systems of a document; name one with "
                           "--document\n");
    EXPECT_EQ(runConsole({"eval", "--document", "none.vnd", "2"}).status, 1);
}

// A box.

std::vector<std::string> mass(std::vector<std::string> more) {
    std::vector<std::string> arguments = {"mass",  "10 cm",     "20 cm",
                                          "30 cm", "--density", "7850 kg/m^3"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
}

TEST(MassCommandTests, ShowsTheMassPropertiesOfABox) {
    Outcome const outcome = runConsole(mass({}));
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "Material  unnamed\n"
                           "Volume    6000.00 cm^3\n"
                           "Area      2200.00 cm^2\n"
                           "Mass      47.10 kg\n"
                           "Density   0.008 kg / cm^3\n");
}

TEST(MassCommandTests, OverridesAreHeeded) {
    auto const json = [](std::vector<std::string> more) {
        more.push_back("--json");
        Outcome const outcome = runConsole(mass(more));
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        return nlohmann::json::parse(outcome.out);
    };
    auto const byMass = json({"--material", "Steel", "--override", "mass=1 kg"});
    EXPECT_EQ(byMass["material"], "Steel");
    EXPECT_EQ(byMass["mass"], "1.00 kg");
    EXPECT_EQ(byMass["density"], "1.667E-04 kg / cm^3");
    auto const byVolume = json({"--override", "volume=1 l", "--override", "area = 5 cm^2"});
    EXPECT_EQ(byVolume["volume"], "1000.00 cm^3");
    EXPECT_EQ(byVolume["area"], "5.00 cm^2");
    EXPECT_EQ(byVolume["mass"], "7.85 kg");
    auto const byBoth = json({"--override", "density=2", "--override", "mass=3"});
    EXPECT_EQ(byBoth["density"], "2.00 kg / cm^3");
    EXPECT_EQ(byBoth["mass"], "3.00 kg");
}

TEST(MassCommandTests, WhatIsWrongIsTold) {
    struct Row {
        std::vector<std::string> arguments;
        int status;
        char const * err;
    };
    for (Row const & row :
         {Row{{"mass", "1", "2", "0", "--density", "1"},
              1,
              "vnconsole: the third edge: \"0\" isn't above zero\n"},
          Row{{"mass", "1", "3cm/0", "3", "--density", "1"},
              1,
              "vnconsole: the second edge: \"3cm/0\" has no value\n"},
          Row{{"mass", "1", "2", "3", "--density", "1", "--override", "weight=1"},
              2,
              "vnconsole: --override: \"weight=1\" isn't volume=VALUE, area=VALUE, mass=VALUE or "
              "density=VALUE\n"}}) {
        Outcome const outcome = runConsole(row.arguments);
        EXPECT_EQ(outcome.status, row.status);
        EXPECT_EQ(outcome.err, row.err);
    }
    EXPECT_NE(runConsole({"mass", "1 kg", "2", "3", "--density", "1"})
                  .err.find("a result in cm (Length) is expected, but this is in kg (Mass)"),
              std::string::npos);
    EXPECT_EQ(runConsole({"mass", "1", "2", "--density", "1"}).status, 2);
    EXPECT_EQ(runConsole({"mass", "1", "2", "3"}).status, 2);
}

TEST_F(UnitSystemCommandTests, MassIsShownInTheUnitsOfTheDocument) {
    ASSERT_EQ(document("chooseid imp ModelingLength in, chooseid imp ModelingMass lbmass").status,
              0);
    Outcome const outcome = runConsole({"mass", "4", "20 cm", "30 cm", "--density", "7850 kg/m^3",
                                        "--document", "a.vnd", "--system", "imp"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "Material  unnamed\n"
                           "Volume    372.001 in^3\n"
                           "Area      343.481 in^2\n"
                           "Mass      105.499 lbmass\n"
                           "Density   0.284 lbmass / in^3\n");
}

} // namespace

} // namespace Vn::Console::Tests
