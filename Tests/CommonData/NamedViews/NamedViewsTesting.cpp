#include "Tests/CommonData/NamedViews/NamedViewsTesting.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <ostream>
#include <stdexcept>

#include <gtest/gtest.h>

#include "Platform/Base/InterfaceId.h"
#include "Platform/Base/Text.h"
#include "Platform/DataModel/AssetAdapter.h"
#include "Platform/DataModel/DocumentFile.h"
#include "Server/CommonData/Managed/ManagedEntityUtils.h"

namespace Vn::NameView {

CameraValues::CameraValues(Camera const & camera)
    : m_values{camera.position().x, camera.position().y,   camera.position().z,   camera.target().x,
               camera.target().y,   camera.target().z,     camera.up().x,         camera.up().y,
               camera.up().z,       camera.extentsWidth(), camera.extentsHeight()} {}

CameraValues::CameraValues(double seed) {
    for (double & value : m_values) value = seed += 0.25;
}

void CameraValues::applyTo(Camera & camera) const {
    camera.position(TgPoint3d(m_values[0], m_values[1], m_values[2]));
    camera.target(TgPoint3d(m_values[3], m_values[4], m_values[5]));
    camera.up(TgVector3d(m_values[6], m_values[7], m_values[8]));
    camera.extentsWidth(m_values[9]);
    camera.extentsHeight(m_values[10]);
}

bool operator==(CameraValues const & a, CameraValues const & b) noexcept {
    return std::equal(a.m_values.begin(), a.m_values.end(), b.m_values.begin(),
                      [](double x, double y) {
                          return std::isnan(x) ? std::isnan(y) : std::memcmp(&x, &y, sizeof x) == 0;
                      });
}

void PrintTo(CameraValues const & values, std::ostream * out) {
    for (double const value : values.m_values) *out << value << ' ';
}

void PrintTo(ViewState const & state, std::ostream * out) {
    *out << '"' << Text::toUtf8(state.name.substr(0, 40)) << '"'
         << (state.isFixed ? " fixed " : " ");
    if (state.hasCamera)
        PrintTo(state.camera, out);
    else
        *out << "no camera";
}

namespace {

void equip(Asset & asset) { asset.adapter(std::make_unique<AssetAdapter>(&asset)); }

} // namespace

ViewDocument::ViewDocument(EViews views) : m_rAsset(Asset::make(nullptr)) {
    equip(*m_rAsset);
    StrongRef<CommonDataAssetSettings> const settings = CommonDataAssetSettings::make(segment());
    m_rViews = NamedViews::make(segment());
    segment()->addRoot(m_rViews, "NamedViews");
    settings->namedViews(m_rViews);
    if (views == BuiltIn) NamedViews::makeDefaultNamedViews(m_rViews);
}

ViewDocument::ViewDocument(std::filesystem::path const & file) {
    Status const status = DocumentFile::load(file, nullptr, m_rAsset);
    EXPECT_TRUE(status.ok()) << status.toString();
    if (!status) throw std::runtime_error("the document can't be loaded");
    equip(*m_rAsset);
    m_rViews = settings().namedViews();
}

Segment * ViewDocument::segment() const { return m_rAsset->segment(SegmentType::DesignSegment); }

CommonDataAssetSettings & ViewDocument::settings() const {
    return *query<CommonDataAssetSettings>(m_rAsset->adapter()->assetSettings().get());
}

StrongRef<NamedView> ViewDocument::make(std::wstring const & name, double seed) const {
    return NamedView::make(m_rViews, name, camera(seed));
}

StrongRef<Camera> ViewDocument::camera(double seed) const {
    StrongRef<Camera> made = Camera::make(segment());
    CameraValues(seed).applyTo(*made);
    return made;
}

ObjectPath ViewDocument::path(unsigned index) const {
    return Managed::ManagedEntityUtils::objectPath(*m_rViews->child(index));
}

void ViewDocument::run(Request * request) const {
    Status const status = m_rAsset->run(std::unique_ptr<Request>(request));
    EXPECT_TRUE(status.ok()) << status.toString();
}

void ViewDocument::undo() const {
    Status const status = history().undo();
    EXPECT_TRUE(status.ok()) << status.toString();
}

void ViewDocument::redo() const {
    Status const status = history().redo();
    EXPECT_TRUE(status.ok()) << status.toString();
}

std::vector<std::wstring> ViewDocument::names() const {
    std::vector<std::wstring> names;
    for (unsigned i = 0; i < m_rViews->children(); ++i) names.push_back(view(i)->name());
    return names;
}

ViewStates ViewDocument::state() const {
    ViewStates states;
    for (unsigned i = 0; i < m_rViews->children(); ++i) {
        StrongRef<NamedView> const shown = view(i);
        StrongRef<Camera> const camera = shown->camera();
        states.push_back({shown->name(), shown->isFixed(), static_cast<bool>(camera),
                          camera ? CameraValues(*camera) : CameraValues()});
    }
    return states;
}

ViewStates savedState(ViewDocument const & document) {
    TemporaryFile const file;
    Status const status = DocumentFile::saveAs(document.asset(), file.path());
    EXPECT_TRUE(status.ok()) << status.toString();
    return ViewDocument(file.path()).state();
}

} // namespace Vn::NameView
