// The settings of a document, and the active unit system among them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>

#include "Console/Documents/DocumentSettings.h"
#include "Tests/Console/DocumentFixture.h"

namespace Vn::Console::Tests {

namespace {

using testing::HasSubstr;

class SettingsCommandTests : public DocumentFixture {
protected:
    SettingsCommandTests() { answer("new"); }

    // What a command that fails says, without its last line.
    static std::string refusal(std::string const & command) {
        Outcome const outcome = run(command);
        EXPECT_EQ(outcome.status, 1) << command << outcome.out;
        EXPECT_TRUE(outcome.err.ends_with("nothing was saved\n")) << outcome.err;
        return outcome.err.substr(0, outcome.err.rfind("nothing was saved"));
    }
    // The line of a setting in the list, as JSON.
    static nlohmann::json setting(std::string const & name) {
        std::istringstream lines(answer("settings /Json"));
        for (std::string line; std::getline(lines, line);)
            if (auto object = nlohmann::json::parse(line); object["name"] == name) return object;
        ADD_FAILURE() << name;
        return {};
    }
};

TEST_F(SettingsCommandTests, TheListHasAllOfThemInTheirOrder) {
    std::istringstream lines(answer("settings"));
    for (DocumentSetting const & each : documentSettings()) {
        std::string line;
        std::getline(lines, line);
        EXPECT_TRUE(line.starts_with(std::string(each.accessor) + ' ')) << line;
    }
    EXPECT_EQ(documentSettings().size(), 26u);
    EXPECT_EQ(lines.peek(), std::istringstream::traits_type::eof());
}

TEST_F(SettingsCommandTests, AValueIsShownInTheUnitsOfTheDocumentBesideItsDefault) {
    std::string const list = answer("settings");
    EXPECT_THAT(list, HasSubstr("sceneBoundRadius          18.00 mm"));
    EXPECT_THAT(list, HasSubstr("(117.50 mm, -31.50 mm, 67.50 mm)"));
    EXPECT_THAT(list, HasSubstr("(-1.00, 0.00, 0.00)")) << "directions have no unit";
    EXPECT_THAT(list, HasSubstr("document"));
    EXPECT_THAT(list, HasSubstr("4 views"));
}

TEST_F(SettingsCommandTests, EachKindOfValueIsSetAndReadBack) {
    struct Row {
        char const * name;
        char const * value;
        nlohmann::json stored;
    };
    Row const rows[] = {
        {"sceneBoundRadius", "2 in", 5.08},
        {"GLOBALBOUNDRADIUS", "25", 2.5},
        {"sceneBoundBoxCenter", "(1 in, 0, 2 cm)", {2.54, 0, 2}},
        {"sceneBoundBoxExtent", "(max(2 cm; 1 in), 1, 1 cm + 1 mm)", {2.54, 0.1, 1.1}},
        {"defaultHomePos", "(1,5 cm; 2; 3)", {1.5, 0.2, 0.3}},
        {"currentHomePosition", "( 1 m , 2 m , 3 m )", {100, 200, 300}},
        {"sceneUp", "(0, 1, 0)", {0, 1, 0}},
        {"sceneFront", "(0, 0, -sqrt(1))", {0, 0, -1}},
        {"currHomeUp", "(0, 1/2, 0)", {0, 0.5, 0}},
        {"locktoSelection", "on", true},
        {"fitHome", "FALSE", false},
        {"currHomeProjection", "1", 1},
        {"defaultHomeProjection", "4294967295", 4294967295u},
        {"currHomeExtentsWidth", "1e-3 mm", 1e-4},
    };
    for (Row const & row : rows) {
        SCOPED_TRACE(row.name);
        std::string const text = answer("setting " + std::string(row.name) + ' ' + row.value);
        EXPECT_THAT(text, HasSubstr(" from "));
        std::string const name = text.substr(4, text.find(" from ") - 4);
        nlohmann::json const line = setting(name);
        EXPECT_TRUE(line["changed"]);
        nlohmann::json const & value = line["value"];
        ASSERT_EQ(value.is_array(), row.stored.is_array());
        if (!value.is_array() && !value.is_number_float()) {
            EXPECT_EQ(value, row.stored);
            continue;
        }
        for (std::size_t i = 0; i < value.size(); ++i)
            EXPECT_NEAR((value.is_array() ? value[i] : value).get<double>(),
                        (value.is_array() ? row.stored[i] : row.stored).get<double>(), 1e-9);
    }
}

TEST_F(SettingsCommandTests, EachIsOneStepThatUndoAndRedoTakeBackAndForth) {
    std::string const text = answer("setting sceneUp (0, 1, 0), history, undo, settings, redo");
    EXPECT_THAT(text, HasSubstr(">  1  set sceneUp\n"));
    EXPECT_THAT(text, testing::Not(HasSubstr("(0.00, 1.00, 0.00)  (0.00, 0.00, 1.00)  changed")));
    EXPECT_EQ(setting("sceneUp")["value"], (nlohmann::json{0, 1, 0}));
}

TEST_F(SettingsCommandTests, AnEqualValueSaysSoAndIsNoStep) {
    std::string const text = answer("setting fitHome on, setting sceneBoundRadius 1.8 cm, "
                                    "setting sceneUp (0, 0, 1), history");
    EXPECT_THAT(text, HasSubstr("fitHome is on already\n"));
    EXPECT_THAT(text, HasSubstr("sceneBoundRadius is 18.00 mm already\n"));
    EXPECT_THAT(text, HasSubstr("sceneUp is (0.00, 0.00, 1.00) already\n"));
    EXPECT_THAT(text, HasSubstr(">  0  where the history begins"));
}

TEST_F(SettingsCommandTests, TheMarkOfTheApplicationIsSavedAndIsNoStep) {
    std::string const text = answer("setting settingsInitialized on, history");
    EXPECT_THAT(text, HasSubstr("set settingsInitialized from off to on; that is no step of the "
                                "history, and undo leaves it\n"));
    EXPECT_THAT(text, HasSubstr(">  0  where the history begins"));
    EXPECT_EQ(setting("settingsInitialized")["value"], true);
}

TEST_F(SettingsCommandTests, WhatHasCommandsOfItsOwnSaysWhich) {
    EXPECT_EQ(refusal("setting activeUnitSystem document"),
              "cannot set activeUnitSystem: UnitSystems.Activate ID and UnitSystems.Deactivate do "
              "that\n");
    EXPECT_EQ(refusal("setting namedViews none"),
              "cannot set namedViews: the commands of the subject area Views change the views\n");
    EXPECT_EQ(refusal("resetsetting namedViews"),
              "cannot reset the setting: the commands of the subject area Views change the "
              "views\n");
}

TEST_F(SettingsCommandTests, RefusalsShowThePlace) {
    EXPECT_EQ(refusal("setting scenUp (0, 1, 0)"),
              "cannot set: there is no setting \"scenUp\"; did you mean sceneUp?\n");
    EXPECT_EQ(refusal("setting sceneBoundRadius 1 CM"),
              "cannot set sceneBoundRadius: Parse error at character 2: \"CM\" isn't a unit, a "
              "function or a constant\n"
              "  1 CM\n"
              "    ^\n"
              "  did you mean cm?\n");
    EXPECT_THAT(refusal("setting sceneBoundBoxCenter (1, 2 kg, 3)"),
                HasSubstr("cannot set sceneBoundBoxCenter: y: "));
    EXPECT_THAT(refusal("setting sceneUp (1, 2, 3 cm)"), HasSubstr("cannot set sceneUp: z: "));
    EXPECT_EQ(refusal("setting sceneUp 1"), "cannot set sceneUp: \"1\" isn't a direction: write it "
                                            "as (0, 0, 1)\n");
    EXPECT_EQ(refusal("setting sceneBoundBoxCenter (1, 2)"),
              "cannot set sceneBoundBoxCenter: \"(1, 2)\" isn't a point: write it as "
              "(1 in, 0, 2 cm)\n");
    EXPECT_THAT(refusal("setting sceneBoundBoxCenter (1,5, 2, 3)"), HasSubstr("with semicolons"));
    EXPECT_EQ(refusal("setting fitHome maybe"), "cannot set fitHome: \"maybe\" isn't on or off\n");
    for (char const * const number : {"-1", "4294967296", "1.5", "two"})
        EXPECT_EQ(refusal("setting currHomeProjection " + std::string(number)),
                  "cannot set currHomeProjection: \"" + std::string(number) +
                      "\" isn't a whole number from 0 to 4294967295\n");
}

TEST_F(SettingsCommandTests, WhatIsntFiniteCantBeTyped) {
    for (char const * const value : {"nan", "inf", "-inf", "1e308 km * 10", "sqrt(-1) cm", ""})
        EXPECT_THAT(refusal("setting sceneBoundRadius \"" + std::string(value) + '"'),
                    HasSubstr("cannot set sceneBoundRadius: "))
            << value;
}

TEST_F(SettingsCommandTests, WhatIsntFiniteInAFileIsListedAndReset) {
    answer("setting fitHome off");
    execute("a.vnd", "UPDATE CommonDataAssetSettings SET "
                     "\"CommonDataAssetSettings.sceneBoundRadius\" = 9e999");
    EXPECT_THAT(answer("settings"), HasSubstr("sceneBoundRadius          inf"));
    EXPECT_EQ(setting("sceneBoundRadius")["value"], "inf");
    EXPECT_THAT(answer("resetsetting sceneBoundRadius"), HasSubstr("from inf to 18.00 mm"));
}

TEST_F(SettingsCommandTests, WhatIsTooLargeForTheUnitIsShownInCentimeters) {
    EXPECT_EQ(answer("setting sceneBoundRadius \"1e308 cm\""),
              "set sceneBoundRadius from 18.00 mm to 1e+308 cm\nsaved a.vnd\n");
    EXPECT_EQ(setting("sceneBoundRadius")["value"], 1e308);
}

TEST_F(SettingsCommandTests, ResetGivesOneOrAllTheirDefaults) {
    answer("setting fitHome off, setting sceneUp (0, 1, 0), setting settingsInitialized on");
    EXPECT_EQ(answer("resetsetting FITHOME"), "set fitHome from off to on\nsaved a.vnd\n");
    EXPECT_EQ(answer("setting sceneBoundRadius 1 m, resetsetting, resetsetting"),
              "set sceneBoundRadius from 18.00 mm to 1000.00 mm\n"
              "reset 2 settings\n"
              "all settings have their defaults already\n"
              "saved a.vnd\n");
    EXPECT_EQ(setting("settingsInitialized")["value"], true) << "that could not be undone";
}

TEST_F(SettingsCommandTests, TheAxesAreResetFromTheDefaultsOfTheDocument) {
    std::string const text = answer("setting defaultSceneUp (0, 1, 0), resetaxes, undo, resetaxes, "
                                    "resetaxes");
    EXPECT_THAT(text, HasSubstr("the front is (-1.00, 0.00, 0.00) and up is (0.00, 1.00, 0.00)\n"
                                "undone: reset the axes\n"
                                "the front is (-1.00, 0.00, 0.00) and up is (0.00, 1.00, 0.00)\n"
                                "the axes are the default ones already\n"));
}

TEST_F(SettingsCommandTests, TheActiveUnitSystemIsTheOneThatCounts) {
    answer("makesystem Imperial imp imperial, activate imp");
    EXPECT_THAT(answer("systems"), HasSubstr("imp       Imperial        12 choices  active\n"));
    EXPECT_THAT(answer("systems /Json"), HasSubstr("\"choices\":12,\"active\":true}"));
    EXPECT_THAT(answer("settings"), HasSubstr("sceneBoundRadius          0.059 ft"));
    EXPECT_THAT(answer("setting sceneBoundRadius 1"), HasSubstr("to 1.00 ft"));
    auto const eval = [](std::vector<std::string> more) {
        more.insert(more.begin(),
                    {"eval", "--standard", "--document", "a.vnd", "--kind", "Length", "1"});
        Outcome const outcome = runConsole(more);
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        return outcome.out.substr(0, outcome.out.find('\n'));
    };
    EXPECT_EQ(eval({}), "formatted  1.00 ft");
    EXPECT_EQ(eval({"--system", "document"}), "formatted  1.00 mm");
    EXPECT_THAT(
        runConsole({"mass", "--document", "a.vnd", "--density", "1 kg/m^3", "1", "1", "1"}).out,
        HasSubstr("ft^3"));
    EXPECT_EQ(answer("activate imp, deactivate, undo, history"),
              "imp is the active unit system already\n"
              "imp isn't active any more\n"
              "undone: deactivate the unit system imp\n"
              ">  0  where the history begins        saved\n"
              "   1  deactivate the unit system imp  undone\n"
              "the document is as a.vnd has it\n");
}

TEST_F(SettingsCommandTests, WithSeveralSystemsAndNoneActiveValuesAreInCm) {
    answer("makesystem Imperial imp imperial, deactivate");
    EXPECT_EQ(answer("setting sceneBoundRadius 1"), "set sceneBoundRadius from 1.80 cm to 1.00 cm\n"
                                                    "saved a.vnd\n");
    EXPECT_THAT(answer("settings"), HasSubstr("1.00 cm"));
    EXPECT_THAT(answer("views"), HasSubstr("cm"));
    EXPECT_EQ(runConsole({"eval", "--document", "a.vnd", "1"}).status, 1);
    EXPECT_EQ(runConsole({"eval", "--document", "a.vnd", "--system", "imp", "1"}).status, 0);
    EXPECT_EQ(answer("removesystem imp, setting sceneBoundRadius 1"),
              "removed the unit system imp with 12 choices\n"
              "set sceneBoundRadius from 10.00 mm to 1.00 mm\n"
              "saved a.vnd\n");
}

TEST_F(SettingsCommandTests, RemovingTheActiveSystemLeavesNoneAndSaysSo) {
    EXPECT_EQ(answer("removesystem document, deactivate, undo, systems"),
              "removed the unit system document with 15 choices; it was the active one, and now "
              "none is\n"
              "no unit system is active\n"
              "undone: remove the unit system document\n"
              "document  Document units  15 choices  active\n");
}

TEST_F(SettingsCommandTests, HugeAndOddTextsAreRefused) {
    std::string const huge(10'000'000, 'a');
    EXPECT_EQ(runConsole({"command", "help"}).status, 1);
    Outcome const outcome = runConsole({}, "new\nsetting " + huge + " 1\nsetting sceneUp (" + huge +
                                               ", 1, 2)\nsetting sceneUp ((((\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, HasSubstr("there is no setting \"aaa"));
    EXPECT_THAT(outcome.err, HasSubstr("isn't a direction"));
    EXPECT_LT(outcome.err.size(), 10'000u);
}

} // namespace

} // namespace Vn::Console::Tests
