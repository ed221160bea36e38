// Documents with named views, for tests.

#ifndef VN_TESTS_COMMONDATA_NAMEDVIEWS_NAMEDVIEWSTESTING_H
#define VN_TESTS_COMMONDATA_NAMEDVIEWS_NAMEDVIEWSTESTING_H

#include <array>
#include <cstddef>
#include <filesystem>
#include <iosfwd>
#include <string>
#include <vector>

#include "Platform/DataModel/Asset.h"
#include "Platform/DataModel/ObjectPath.h"
#include "Platform/DataModel/Request.h"
#include "Platform/Scene/Camera.h"
#include "Server/CommonData/AddIn/CommonDataAssetSettings.h"
#include "Server/CommonData/NamedViews/NamedView.h"
#include "Server/CommonData/NamedViews/NamedViewRequests.h"
#include "Server/CommonData/NamedViews/NamedViewSelections.h"
#include "Server/CommonData/NamedViews/NamedViews.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace Vn::NameView {

using CommonData::CommonDataAssetSettings;
using CommonData::DeleteNamedViewRequest;
using CommonData::NamedViewPasteRequest;
using CommonData::NewNamedViewRequest;
using CommonData::UpdateNamedViewNameRequest;
using Scene::Camera;
using Vn::Testing::TemporaryFile;

// The five values of a camera: position, target, up, width, height.  Equal bit by bit, but for
// NaNs, which are all equal.
struct CameraValues {
    CameraValues() = default;
    explicit CameraValues(Camera const & camera);
    // Different ones for different seeds.
    explicit CameraValues(double seed);

    void applyTo(Camera & camera) const;
    friend bool operator==(CameraValues const & a, CameraValues const & b) noexcept;

    std::array<double, 11> m_values{};
};
void PrintTo(CameraValues const & values, std::ostream * out);

// A view as a test compares it.
struct ViewState {
    std::wstring name;
    bool isFixed = false;
    bool hasCamera = false;
    CameraValues camera;

    bool operator==(ViewState const &) const = default;
};
void PrintTo(ViewState const & state, std::ostream * out);
using ViewStates = std::vector<ViewState>;

// A document that is equipped as a host does it: an adapter, settings, and a group of views as the
// root "NamedViews", which the settings name.
class ViewDocument {
public:
    // With the built-in views, or without any.
    enum EViews { BuiltIn, None };
    explicit ViewDocument(EViews views = None);
    // Loaded from a file.
    explicit ViewDocument(std::filesystem::path const & file);

    Asset & asset() const { return *m_rAsset; }
    ChangeHistory & history() const { return m_rAsset->history(); }
    Segment * segment() const;
    StrongRef<NamedViews> const & views() const { return m_rViews; }
    CommonDataAssetSettings & settings() const;

    // A view "name" with a camera of these values.
    StrongRef<NamedView> make(std::wstring const & name, double seed = 1) const;
    // A camera of these values, which nothing owns.
    StrongRef<Camera> camera(double seed) const;
    StrongRef<NamedView> view(unsigned index) const { return m_rViews->namedView(index); }
    ObjectPath path(unsigned index) const;

    // Runs `work` as one step.
    template <class Work>
    void step(Work && work) const {
        Transaction transaction(*m_rAsset, L"Step");
        work();
        transaction.commit();
    }
    // Runs a request, which must succeed.
    void run(Request * request) const;
    void undo() const;
    void redo() const;

    std::vector<std::wstring> names() const;
    ViewStates state() const;

private:
    StrongRef<Asset> m_rAsset;
    StrongRef<NamedViews> m_rViews;
};

// What a document has once it was saved and loaded.
ViewStates savedState(ViewDocument const & document);

} // namespace Vn::NameView

#endif
