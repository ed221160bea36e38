// Documents with unit systems, for tests.

#ifndef VN_TESTS_COMMONDATA_UNITS_UNITSYSTEMTESTING_H
#define VN_TESTS_COMMONDATA_UNITS_UNITSYSTEMTESTING_H

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/DataModel/DocumentFile.h"
#include "Server/CommonData/Units/UnitContext.h"
#include "Server/CommonData/Units/UnitSystem.h"
#include "Server/CommonData/Units/UnitSystemChoice.h"
#include "Tests/CommonData/Managed/ManagedTesting.h"
#include "Tests/CommonData/Units/UnitTestHelpers.h"
#include "Tests/DataModel/DocumentSql.h"

namespace Vn::Units {

// A document with the root "UnitSystems" and one empty system in it.
class SystemDocument : public Managed::Testing::Document {
public:
    SystemDocument()
        : m_rSystems(UnitSystems::make(segment())), m_rSystem(make(L"System", "system")) {}

    StrongRef<UnitSystems> const & systems() const { return m_rSystems; }
    StrongRef<UnitSystem> const & system() const { return m_rSystem; }
    StrongRef<UnitSystem> make(wchar_t const * name, std::string const & id) const {
        return UnitSystem::make(m_rSystems, std::wstring(name), id);
    }

private:
    StrongRef<UnitSystems> const m_rSystems;
    StrongRef<UnitSystem> const m_rSystem;
};

// Statements that give the one system of a document that many choices by id: "0", "1" and so on,
// all in the unit of its only choice, which is by id.  Making them one by one walks all that are
// there.
inline std::vector<std::string> manyChoices(unsigned count) {
    std::string const numbers = "WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n "
                                "WHERE i < " +
                                std::to_string(count - 1) + ") ";
    return {numbers + "INSERT INTO UnitSystemChoiceById SELECT 1000 + i, segment, "
                      "\"ManagedEntity.rParent\", \"UnitSystemChoice.name\", NULL, NULL, "
                      "\"UnitSystemChoice.unitString\", i FROM UnitSystemChoiceById, n",
            "UPDATE UnitSystemChoiceById SET \"UnitSystemChoiceById.id\" = "
            "CAST(\"UnitSystemChoiceById.id\" AS TEXT)",
            "DELETE FROM UnitSystemChoiceById WHERE id < 1000",
            "CREATE TEMP TABLE place AS SELECT entity, member FROM lists WHERE entity = (SELECT id "
            "FROM UnitSystem)",
            "DELETE FROM lists WHERE entity = (SELECT id FROM UnitSystem)",
            numbers + "INSERT INTO lists SELECT entity, member, 1 + i / 512, '[' || "
                      "group_concat(1000 + i) || ']' FROM n, place GROUP BY i / 512",
            "UPDATE document SET next_entity = " + std::to_string(count + 2000)};
}

// What is loaded of a document that was saved.
class Loaded {
public:
    explicit Loaded(Asset & saved) {
        Status status = DocumentFile::saveAs(saved, m_file.path());
        EXPECT_TRUE(status) << status.toString();
        load();
    }
    // After statements on the file.
    Loaded(Asset & saved, std::vector<std::string> const & statements) {
        Status status = DocumentFile::saveAs(saved, m_file.path());
        EXPECT_TRUE(status) << status.toString();
        {
            Vn::Testing::Sql const file(m_file.path());
            for (std::string const & statement : statements) file.run(statement);
        }
        load();
    }

    Asset & asset() const { return *m_rAsset; }
    Segment * segment() const { return m_rAsset->segment(1U); }
    std::filesystem::path const & file() const { return m_file.path(); }
    StrongRef<UnitSystems> systems() const { return UnitSystems::find(segment()); }
    StrongRef<UnitSystem> system(unsigned index = 0) const { return systems()->unitSystem(index); }
    void close() { m_rAsset.reset(); }

private:
    void load() {
        Status const status = DocumentFile::load(m_file.path(), nullptr, m_rAsset);
        EXPECT_TRUE(status) << status.toString();
    }

    Managed::Testing::TemporaryFile m_file;
    StrongRef<Asset> m_rAsset;
};

inline StrongRef<UnitSystemChoiceByUnit> addUnit(StrongRef<UnitSystem> const & system,
                                                 SimpleUnit const * unit) {
    return UnitSystemChoiceByUnit::make(system, unit);
}
inline StrongRef<UnitSystemChoiceByUnit> addUnits(StrongRef<UnitSystem> const & system,
                                                  std::wstring const & text) {
    return UnitSystemChoiceByUnit::make(system, text, GlobalizedString(text));
}
inline StrongRef<UnitSystemChoiceById> addId(StrongRef<UnitSystem> const & system,
                                             std::string const & id, std::wstring const & text) {
    return UnitSystemChoiceById::make(system, GlobalizedString(L"A name"), id, text);
}

// The unit of a choice; "none" for null.
inline std::wstring unitOf(StrongRef<UnitSystemChoice> const & choice) {
    return choice ? abbreviations(choice->units()) : L"none";
}

// The texts that the choices of a system keep, in order.
inline std::vector<std::wstring> storedUnits(UnitSystem const & system) {
    std::vector<std::wstring> texts;
    for (unsigned i = 0; i < system.unitSystemChoices(); ++i)
        texts.push_back(system.unitSystemChoice(i)->storedUnitString());
    return texts;
}

// What a context expects; "nothing" if that is so.
inline std::wstring expected(UnitContext const & context) {
    return context.hasExpectedUnits() ? abbreviations(*context.expectedUnits()) : L"nothing";
}

} // namespace Vn::Units

#endif
