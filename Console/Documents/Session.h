// The document of a session.

#ifndef VN_CONSOLE_DOCUMENTS_SESSION_H
#define VN_CONSOLE_DOCUMENTS_SESSION_H

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Base/RefCounted.h"
#include "Platform/Base/Status.h"
#include "Platform/DataModel/Asset.h"
#include "Server/CommonData/Managed/CommonBaseEntity.h"
#include "Server/CommonData/Managed/CommonBaseGroupEntity.h"
#include "Server/CommonData/Managed/CustomGroups.h"

namespace Vn::Console {

// At most one document is open at a time, and is the active one of the process.  To open another,
// look for unsaved changes first.
class DocumentSession {
public:
    // The key of the root under which groups stand.
    static constexpr char c_rootKey[] = "Groups";

    DocumentSession() = default;
    DocumentSession(DocumentSession const &) = delete;
    DocumentSession & operator=(DocumentSession const &) = delete;

    bool isOpen() const noexcept { return static_cast<bool>(m_rAsset); }
    // There must be an open document for these.
    Asset & asset() const noexcept { return *m_rAsset; }
    ChangeHistory & history() const noexcept { return m_rAsset->history(); }
    Segment & design() const noexcept;
    // The root under c_rootKey; null if the document has none.
    StrongRef<Entity> root() const;

    // A new document in place of the one before, without a file.  It has an empty root group, its
    // settings, the built-in views and a unit system, which no undo takes away.  The one before
    // stays if that fails.
    [[nodiscard]] Status makeNew();
    // Opens a document in place of the one before, which stays if that fails.
    [[nodiscard]] Status open(std::filesystem::path const & file);
    Status save();
    Status saveAs(std::filesystem::path const & file);
    // What the last save found beside the file and gave another name, a line for each; empty if
    // nothing.
    std::wstring whatWasKept() const;

    // Does some work on the document as one step of its history; takes it back if it throws, or
    // throws Interrupted itself if the user wishes to end it.  A document that came without
    // settings and views gets them within the same step.  Work that changes nothing leaves no step;
    // the answer is whether there is one.
    bool change(std::wstring_view name, std::function<void()> const & work);

    // Whether work would be lost if the document went.
    bool hasUnsavedChanges() const noexcept { return isOpen() && m_rAsset->isDirty(); }
    // What would be: "a.vnd has 2 changes that aren't saved, the last \"undo me\"".
    std::wstring unsavedChanges() const;
    // How many steps lie after the state that was opened or saved last; none if neither undo nor
    // redo lead there.
    std::optional<std::size_t> savedStep() const noexcept { return history().cleanSteps(); }
    // What the document is called: its file as it was named here, or that it has none.
    std::wstring name() const;

private:
    void take(StrongRef<Asset> asset, std::wstring name);

    StrongRef<Asset> m_rAsset;
    std::wstring m_name; // empty for a document without a file
    std::vector<std::filesystem::path> m_kept;
};

// New entities, which `parent` lists at its end, the last to hold custom groups; and a new group
// without a parent.
StrongRef<CommonData::CommonBaseEntity> makeEntity(StrongRef<Entity> const & parent);
StrongRef<CommonData::CommonBaseGroupEntity> makeGroup(StrongRef<Entity> const & parent);
StrongRef<Managed::CustomGroups> makeCustomGroups(StrongRef<Entity> const & parent);
StrongRef<CommonData::CommonBaseGroupEntity> makeRootGroup(Segment & segment);

// A path as it is shown, and the path that a text names.
std::wstring shown(std::filesystem::path const & file);
std::filesystem::path pathOf(std::wstring const & name);

} // namespace Vn::Console

#endif
