// Writes what the fuzzer of documents starts from into a directory: real documents of a few
// entities, in small pages, so that they are short.

#include <filesystem>
#include <string>

#include <sqlite3.h>

#include "Platform/DataModel/DocumentFile.h"
#include "Platform/Scene/Camera.h"
#include "Server/CommonData/AddIn/CommonDataAssetSettings.h"
#include "Server/CommonData/NamedViews/NamedView.h"
#include "Server/CommonData/NamedViews/NamedViews.h"
#include "Server/CommonData/Units/UnitSystem.h"
#include "Tests/DataModel/DocumentTestEntities.h"

namespace {

using namespace Vn;

bool save(StrongRef<Asset> const & asset, std::filesystem::path const & file) {
    if (!DocumentFile::saveAs(*asset, file)) return false;
    sqlite3 * database = nullptr;
    bool const good = sqlite3_open(file.string().c_str(), &database) == SQLITE_OK &&
                      sqlite3_exec(database, "PRAGMA page_size=512; VACUUM", nullptr, nullptr,
                                   nullptr) == SQLITE_OK;
    sqlite3_close(database);
    return good;
}

// With so many views of the user's beside those that are built in.
StrongRef<Asset> documentOfViews(unsigned views) {
    StrongRef<Asset> asset = Asset::make(nullptr);
    Segment * const design = asset->segment(SegmentType::DesignSegment);
    StrongRef<CommonData::CommonDataAssetSettings> const settings =
        CommonData::CommonDataAssetSettings::make(design);
    StrongRef<NameView::NamedViews> const group = NameView::NamedViews::make(design);
    design->addRoot(group, "NamedViews");
    settings->namedViews(group);
    NameView::NamedViews::makeDefaultNamedViews(group);
    for (unsigned i = 0; i < views; ++i) {
        StrongRef<NameView::NamedView> const made = NameView::NamedView::make(
            group, group->generateNamedViewName(L"NamedView"), Scene::Camera::make(design));
    }
    StrongRef<Units::UnitSystems> const systems = Units::UnitSystems::make(design);
    StrongRef<Units::UnitSystem> const system = Units::UnitSystem::make(systems, L"Own", "own");
    system->completeCommonUnits();
    settings->activateUnitSystem(system);
    return asset;
}

} // namespace

int main(int count, char ** arguments) {
    if (count != 2) return 2;
    std::filesystem::path const directory = arguments[1];
    std::filesystem::create_directories(directory);
    for (unsigned seed = 0; seed < 12; ++seed)
        if (!save(Testing::randomDocument(seed, seed * 2), directory / std::to_string(seed)))
            return 1;
    for (unsigned views = 0; views < 4; ++views)
        if (!save(documentOfViews(views), directory / ("views-" + std::to_string(views)))) return 1;
    return 0;
}
