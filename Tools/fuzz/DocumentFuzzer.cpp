// The bytes of a document file: it opens or there is a reason why not; what opens is saved, opens
// again, and is the same document.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>
#include <vector>

#include "Platform/DataModel/AssetAdapter.h"
#include "Platform/DataModel/DocumentFile.h"
#include "Platform/Scene/Camera.h"
#include "Server/CommonData/AddIn/CommonDataAssetAdapter.h"
#include "Server/CommonData/AddIn/CommonDataAssetSettings.h"
#include "Server/CommonData/NamedViews/NamedView.h"
#include "Server/CommonData/NamedViews/NamedViews.h"
#include "Tests/DataModel/DocumentTestEntities.h"

namespace {

using namespace Vn;

void expect(bool good, char const * law) {
    if (good) return;
    std::fprintf(stderr, "broken: %s\n", law);
    std::abort();
}

// In memory, where there is such a directory.
std::filesystem::path fileFor(char const * ending) {
    std::filesystem::path const memory = "/dev/shm";
    std::filesystem::path const directory =
        std::filesystem::is_directory(memory) ? memory : std::filesystem::temp_directory_path();
    return directory / ("VnDocumentFuzzer-" + std::to_string(getpid()) + ending);
}

// Everything that can be done with views, as one step.
void changeViews(CommonData::CommonDataAssetSettings & settings, NameView::NamedViews & views) {
    Transaction transaction(*views.asset(), L"Views");
    settings.sceneUp({0, 1, 0});
    settings.sceneFront({0, 0, -1});
    views.synchonizeHomeNamedView();
    views.synchonizeTopNamedView();
    views.synchonizeFrontNamedView();
    views.synchonizeRightNamedView();
    StrongRef<NameView::NamedViews> const group(&views);
    std::wstring const name = views.generateNamedViewName(L"NamedView");
    StrongRef<NameView::NamedView> const made =
        NameView::NamedView::make(group, name, Scene::Camera::make(views.segment()));
    if (made && views.children() > 1) views.updateNamedViewName(name, L"TOP");
    views.removeNamedView(L"FRONT");
    transaction.commit();
}

// A document is equipped, and its views are changed and changed back.
void useAsHostsDo(StrongRef<Asset> const & asset) {
    CommonDataAssetAdapter::defaultInitializeLoadedAsset(asset.get());
    CommonDataAssetAdapter::defaultFullyInitializeLoadedAsset(asset.get());
    StrongRef<AssetSettings> const root = asset->adapter()->assetSettings();
    auto * const settings = query<CommonData::CommonDataAssetSettings>(root.get());
    StrongRef<NameView::NamedViews> const views = settings ? settings->namedViews() : nullptr;
    if (!views || !views->segment()) return;
    std::string const before = Testing::dump(*asset);
    changeViews(*settings, *views);
    if (!asset->history().canUndo()) return;
    expect(asset->history().undo().ok(), "a change of views can be undone");
    expect(Testing::dump(*asset) == before, "and leaves nothing behind");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    static std::filesystem::path const s_file = fileFor(".vnd");
    static std::filesystem::path const s_copy = fileFor("-copy.vnd");
    {
        std::ofstream out(s_file, std::ios::binary | std::ios::trunc);
        out.write(reinterpret_cast<char const *>(data), static_cast<std::streamsize>(size));
    }
    StrongRef<Asset> asset;
    Status const status = DocumentFile::load(s_file, nullptr, asset);
    expect(status.ok() == static_cast<bool>(asset), "a document exactly if it opens");
    expect(status || (!status.cause().empty() && !status.subject().empty()),
           "a failure has a reason");
    std::vector<std::string> findings;
    Status const checked = DocumentFile::check(s_file, findings);
    expect(checked || !checked.cause().empty(), "a failed check has a reason");
    if (asset) {
        useAsHostsDo(asset);
        std::string const text = Testing::dump(*asset);
        Status const saved = DocumentFile::saveAs(*asset, s_copy);
        expect(saved.ok(), "what opens can be saved");
        StrongRef<Asset> again;
        expect(DocumentFile::load(s_copy, nullptr, again).ok(), "what was saved opens");
        expect(Testing::dump(*again) == text, "and is the same");
        findings.clear();
        expect(DocumentFile::check(s_copy, findings).ok() && findings.empty(),
               "and has no findings");
    }
    return 0;
}
