// Documents with settings, for tests, and the settings as a table.

#ifndef VN_TESTS_COMMONDATA_ADDIN_SETTINGSTESTING_H
#define VN_TESTS_COMMONDATA_ADDIN_SETTINGSTESTING_H

#include <cstdint>
#include <filesystem>
#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

#include "Platform/DataModel/Asset.h"
#include "Platform/DataModel/ChangeHistory.h"
#include "Platform/DataModel/MemberMetaType.h"
#include "Server/CommonData/AddIn/CommonDataAssetSettings.h"
#include "Server/CommonData/NamedViews/NamedViews.h"
#include "Server/CommonData/Units/UnitSystem.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace Vn::CommonData {

using Vn::Testing::TemporaryFile;

// A value bit by bit; of a reference the id of the entity, 0 for null.
using Bits = std::vector<std::uint64_t>;

// A document with an adapter, a unit system that isn't active, views that nobody names, and
// settings.
class SettingsDocument {
public:
    SettingsDocument();
    // Loaded from a file.
    explicit SettingsDocument(std::filesystem::path const & file);

    Asset & asset() const { return *m_rAsset; }
    ChangeHistory & history() const { return m_rAsset->history(); }
    Segment * segment() const;
    // What the adapter finds; null for none.
    CommonDataAssetSettings * found() const;
    CommonDataAssetSettings & settings() const { return *found(); }
    StrongRef<Units::UnitSystem> system() const;
    StrongRef<NameView::NamedViews> views() const;

    // Runs `work` as one step.
    template <class Work>
    void step(Work && work) const {
        Transaction transaction(*m_rAsset, L"Step");
        work();
        transaction.commit();
    }
    void undo() const;
    void redo() const;
    void saveAs(TemporaryFile const & file) const;
    void save() const;

    // All settings, in the order of the table.
    std::vector<Bits> values() const;

private:
    StrongRef<Asset> m_rAsset;
};

// The settings in a file.
std::vector<Bits> valuesIn(std::filesystem::path const & file);

// A row of the table: a member.
struct Setting {
    std::string name;
    MemberMetaType * kind;
    Bits standard; // with which new settings begin
    std::function<Bits(CommonDataAssetSettings const &)> get;
    // Sets it to a value other than the default, always the same one.
    std::function<void(SettingsDocument const &)> change;
    // Whether the setter makes a change of the document, that is told and undone.
    bool isChange;
};
void PrintTo(Setting const & setting, std::ostream * out);

// All of them in their order.
std::vector<Setting> const & allSettings();

} // namespace Vn::CommonData

#endif
