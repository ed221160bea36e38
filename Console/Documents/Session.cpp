#include "Console/Documents/Session.h"

#include <memory>
#include <new>

#include "Console/Documents/Equipment.h"
#include "Console/Documents/Hosting.h"
#include "Console/Documents/Interruption.h"
#include "Console/Messages.h"
#include "Console/Texts.h"
#include "Platform/Base/Text.h"
#include "Platform/DataModel/ActiveAsset.h"
#include "Platform/DataModel/DocumentFile.h"
#include "Platform/DataModel/Segment.h"

namespace Vn::Console {

StrongRef<CommonData::CommonBaseEntity> makeEntity(StrongRef<Entity> const & parent) {
    return CommonData::CommonBaseEntity::make(PassiveRef<Entity>(parent));
}

StrongRef<CommonData::CommonBaseGroupEntity> makeGroup(StrongRef<Entity> const & parent) {
    return CommonData::CommonBaseGroupEntity::make(PassiveRef<Entity>(parent));
}

StrongRef<Managed::CustomGroups> makeCustomGroups(StrongRef<Entity> const & parent) {
    return Managed::CustomGroups::make(PassiveRef<Entity>(parent));
}

StrongRef<CommonData::CommonBaseGroupEntity> makeRootGroup(Segment & segment) {
    StrongRef<CommonData::CommonBaseGroupEntity> group =
        CommonData::CommonBaseGroupEntity::make(&segment);
    segment.addRoot(group, DocumentSession::c_rootKey);
    return group;
}

std::wstring shown(std::filesystem::path const & file) {
    std::u8string const utf8 = file.u8string();
    return printable(
        Text::fromUtf8(std::string_view(reinterpret_cast<char const *>(utf8.data()), utf8.size())));
}

std::filesystem::path pathOf(std::wstring const & name) {
    std::string const utf8 = Text::toUtf8(name);
    return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

Segment & DocumentSession::design() const noexcept {
    return *m_rAsset->segment(SegmentType::DesignSegment);
}

StrongRef<Entity> DocumentSession::root() const { return design().rootEntity(c_rootKey); }

Status DocumentSession::makeNew() {
    StrongRef<Asset> asset;
    if (Status status = makeDocument(asset); !status) return status;
    Segment & design = *asset->segment(SegmentType::DesignSegment);
    makeRootGroup(design);
    equip(design);
    makePreferredUnitSystem(design);
    asset->history().clear();
    asset->history().markClean();
    take(std::move(asset), {});
    return Status::success();
}

Status DocumentSession::open(std::filesystem::path const & file) {
    StrongRef<Asset> asset;
    Status status = loadDocument(file, asset);
    if (!status) return status;
    take(std::move(asset), shown(file));
    return status;
}

Status DocumentSession::save() {
    m_kept.clear();
    return DocumentFile::save(*m_rAsset);
}

Status DocumentSession::saveAs(std::filesystem::path const & file) {
    Status status = DocumentFile::saveAsKeeping(*m_rAsset, file, m_kept);
    if (status) m_name = shown(file);
    return status;
}

bool DocumentSession::change(std::wstring_view name, std::function<void()> const & work) {
    // To take a change back needs memory, which may just have run out.
    constexpr std::size_t c_reserve = std::size_t{16} << 20;
    std::unique_ptr<char[]> reserve(new (std::nothrow) char[c_reserve]);
    Transaction transaction(*m_rAsset, name);
    bool isStep = false;
    try {
        work();
        endIfInterrupted();
        if (history().hasOpenChanges()) equip(design());
        isStep = transaction.commit();
    } catch (std::bad_alloc const &) {
        reserve.reset();
        throw;
    }
    return isStep;
}

std::wstring DocumentSession::unsavedChanges() const {
    std::size_t const steps = history().undoSteps();
    std::optional<std::size_t> const saved = savedStep();
    if (!saved || *saved >= steps) return message(L"%1% has changes that aren't saved", name());
    std::size_t const count = steps - *saved;
    std::wstring const last = message(L"\"%1%\"", history().undoNames().front());
    if (count == 1) return message(L"%1% has a change that isn't saved, %2%", name(), last);
    return message(L"%1% has %2% changes that aren't saved, the last %3%", name(), count, last);
}

std::wstring DocumentSession::whatWasKept() const {
    std::wstring text;
    for (std::filesystem::path const & file : m_kept) {
        std::filesystem::path before = file;
        while (before.extension() != ".kept") before.replace_extension();
        before.replace_extension();
        text +=
            (text.empty() ? L"" : L"\n") + message(L"%1%, which was left beside it, is kept as %2%",
                                                   shown(before), shown(file.filename()));
    }
    return text;
}

std::wstring DocumentSession::name() const {
    return m_name.empty() ? message(L"the new document") : m_name;
}

void DocumentSession::take(StrongRef<Asset> asset, std::wstring name) {
    m_rAsset = std::move(asset);
    m_name = std::move(name);
    ActiveAsset::set(m_rAsset.get());
}

} // namespace Vn::Console
