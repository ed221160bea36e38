// Random steps on named views, with undo, redo, files and callers that keep what they get hold of,
// against a model of plain values.

#include <algorithm>
#include <cstdlib>
#include <map>
#include <ostream>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "Tests/CommonData/Managed/ManagedTesting.h"
#include "Tests/CommonData/NamedViews/NamedViewsTesting.h"

namespace Vn::NameView {

namespace {

using Managed::Testing::Recorder;

// What undo restores.  A view is told by the id of its entity.
struct Model {
    struct View {
        unsigned long long id = 0;
        std::wstring name;
        CameraValues camera;
        bool operator==(View const &) const = default;
        friend void PrintTo(View const & view, std::ostream * out) {
            *out << view.id << ' ';
            PrintTo(ViewState{view.name, false, true, view.camera}, out);
        }
    };
    struct Axes {
        CameraValues home;  // its extents aren't used
        CameraValues scene; // sceneUp as the up vector and sceneFront as the target
        bool operator==(Axes const &) const = default;
    };

    std::vector<View> views;
    Axes axes;
    bool operator==(Model const &) const = default;

    View * find(std::wstring const & name) {
        auto const found = std::find_if(views.begin(), views.end(),
                                        [&](View const & view) { return view.name == name; });
        return found == views.end() ? nullptr : &*found;
    }
    std::wstring freeName(std::wstring const & base) {
        std::wstring name = base;
        for (int n = 1; find(name); ++n) name = base + L"_" + std::to_wstring(n);
        return name;
    }
};

class Walk {
public:
    explicit Walk(unsigned seed) : m_random(seed) {
        m_document.views()->subscribe(&m_observer);
        for (Model::View const & view : read().views) m_fixed[view.id] = true;
        m_document.history().clear();
        m_states.push_back(read());
    }
    ~Walk() { m_document.views()->unsubscribe(&m_observer); }

    void step() {
        switch (below(14)) {
        case 0:
        case 1:
            return move(true);
        case 2:
            return move(false);
        case 3:
            hold();
            break;
        case 4: {
            // Some go at once, and with them what only they held.
            auto const all = std::exchange(m_held, {});
            for (auto const & entity : all)
                if (below(2)) m_held.push_back(entity);
            break;
        }
        case 5:
            fix();
            break;
        case 6:
            transaction();
            break;
        case 7:
            if (below(8) == 0) compareFile();
            break;
        default:
            request();
        }
        EXPECT_EQ(read().views, present().views);
        EXPECT_TRUE(read() == present());
    }
    // To the first state and to the last.
    void finish() {
        while (m_document.history().canUndo()) move(true);
        EXPECT_EQ(m_present, 0U);
        while (m_document.history().canRedo()) move(false);
        EXPECT_EQ(m_present + 1, m_states.size());
        compareFile();
    }

private:
    unsigned below(unsigned limit) { return static_cast<unsigned>(m_random() % limit); }
    Model & present() { return m_states[m_present]; }

    Model read() {
        Model model;
        for (unsigned i = 0; i < m_document.views()->children(); ++i) {
            StrongRef<NamedView> const view = m_document.view(i);
            EXPECT_TRUE(view->isAlive());
            EXPECT_TRUE(view->camera());
            EXPECT_EQ(view->parent(), m_document.views());
            auto const fixed = m_fixed.find(view->id());
            if (fixed != m_fixed.end()) {
                EXPECT_EQ(view->isFixed(), fixed->second);
            }
            model.views.push_back({view->id(), view->name(), CameraValues(*view->camera())});
        }
        CommonDataAssetSettings & settings = m_document.settings();
        TgPoint3d const position = settings.currentHomePosition();
        TgPoint3d const target = settings.currentHomeTarget();
        TgVector3d const up = settings.currentHomeUp();
        model.axes.home.m_values = {position.x, position.y, position.z, target.x, target.y,
                                    target.z,   up.x,       up.y,       up.z};
        TgVector3d const sceneUp = settings.sceneUp();
        TgVector3d const front = settings.sceneFront();
        model.axes.scene.m_values = {0,       0,         0,         front.x,  front.y,
                                     front.z, sceneUp.x, sceneUp.y, sceneUp.z};
        return model;
    }

    // Whatever was done is in `after`, and is a step if it differs from before.  Several changes
    // are one too if each takes back what others did.
    void done(Model after, bool isSingle) {
        std::size_t const steps = m_document.history().undoSteps();
        if (after == present() && (isSingle || steps == m_present)) {
            EXPECT_EQ(steps, m_present);
            return;
        }
        m_states.resize(m_present + 1);
        m_states.push_back(std::move(after));
        ++m_present;
        EXPECT_EQ(steps, m_present);
        if (present().views.size() <= m_states[m_present - 1].views.size()) return;
        // The id of a new view is only known now.
        Model::View & made = present().views.back();
        made.id = m_document.view(m_document.views()->children() - 1)->id();
        m_fixed[made.id] = false;
    }

    void move(bool isUndo) {
        if (isUndo) {
            EXPECT_EQ(m_document.history().canUndo(), m_present > 0);
            if (!m_present) return;
            m_document.undo();
            --m_present;
        } else {
            EXPECT_EQ(m_document.history().canRedo(), m_present + 1 < m_states.size());
            if (m_present + 1 == m_states.size()) return;
            m_document.redo();
            ++m_present;
        }
        EXPECT_EQ(read().views, present().views);
        EXPECT_TRUE(read() == present());
    }

    std::wstring anyName() {
        static wchar_t const * const c_names[] = {
            L"NamedView", L"NamedView_1", L"TOP", L"a", L"a_1", L"", L"%1%_%2%"};
        if (below(3) == 0 || present().views.empty()) return c_names[below(7)];
        return present().views[below(static_cast<unsigned>(present().views.size()))].name;
    }
    bool isFixed(Model::View const & view) { return m_fixed[view.id]; }

    // Anything but an undo on what a caller keeps.
    void hold() {
        if (present().views.empty()) return;
        StrongRef<NamedView> const view =
            m_document.view(below(static_cast<unsigned>(present().views.size())));
        m_held.emplace_back(view);
        if (below(2)) m_held.emplace_back(view->camera());
    }

    // Is no step, and stays.
    void fix() {
        if (present().views.empty()) return;
        StrongRef<NamedView> const view =
            m_document.view(below(static_cast<unsigned>(present().views.size())));
        bool const enable = below(3) != 0;
        view->enableModify(enable);
        m_fixed[view->id()] = !enable;
        EXPECT_EQ(m_document.history().undoSteps(), m_present);
    }

    void request() {
        Asset * const asset = &m_document.asset();
        Model after = present();
        bool isSingle = true;
        switch (below(5)) {
        case 0:
        case 1: {
            // A camera of the document, since making another would end the history.
            StrongRef<Camera> source;
            if (!after.views.empty())
                source =
                    m_document.view(below(static_cast<unsigned>(after.views.size())))->camera();
            if (source)
                after.views.push_back({0, after.freeName(L"NamedView"), CameraValues(*source)});
            m_document.run(NewNamedViewRequest::make(asset, source));
            break;
        }
        case 2: {
            std::wstring const name = anyName();
            if (Model::View const * const view = after.find(name))
                after.views.erase(after.views.begin() + (view - after.views.data()));
            m_document.run(DeleteNamedViewRequest::make(asset, name));
            break;
        }
        case 3: {
            std::wstring const from = anyName();
            std::wstring const to = anyName();
            if (Model::View * const view = after.find(from); view && !isFixed(*view))
                view->name = after.freeName(to);
            m_document.run(UpdateNamedViewNameRequest::make(asset, from, to));
            break;
        }
        default:
            paste(after);
            isSingle = false;
        }
        done(std::move(after), isSingle);
    }

    // Each in turn is taken out and put next to the target.
    void paste(Model & after) {
        auto const count = static_cast<unsigned>(after.views.size());
        if (count == 0) return;
        std::vector<unsigned> places;
        for (unsigned n = below(4); n--;) places.push_back(below(count));
        unsigned const target = below(count);
        bool const isAfter = below(2);
        bool const isReorder = below(6) != 0;
        std::vector<ObjectPath> paths;
        for (unsigned const place : places) paths.push_back(m_document.path(place));
        m_document.run(NamedViewPasteRequest::make(
            &m_document.asset(), paths, m_document.path(target), isAfter, true, isReorder));
        if (!isReorder) return;
        std::vector<Model::View> const before = after.views;
        for (unsigned const place : places) {
            if (place == target) continue;
            Model::View const moved = before[place];
            std::erase_if(after.views, [&](auto const & view) { return view.id == moved.id; });
            auto at = std::find_if(after.views.begin(), after.views.end(),
                                   [&](auto const & view) { return view.id == before[target].id; });
            after.views.insert(isAfter ? at + 1 : at, moved);
        }
    }

    void transaction() {
        Model after = present();
        {
            Transaction transaction(m_document.asset(), L"walk");
            for (unsigned n = below(4) + 1; n--;) change(after);
            if (below(4) == 0) return; // aborted
            transaction.commit();
        }
        done(std::move(after), false);
    }

    TgVector3d axis() {
        auto const component = [this] { return static_cast<double>(below(3)) - 1; };
        double const x = component();
        double const y = component();
        return {x, y, component()};
    }

    void change(Model & after) {
        NamedViews & views = *m_document.views();
        CommonDataAssetSettings & settings = m_document.settings();
        switch (below(5)) {
        case 0: {
            std::wstring const name = anyName();
            if (after.views.empty()) break;
            unsigned const place = below(static_cast<unsigned>(after.views.size()));
            if (!isFixed(after.views[place])) after.views[place].name = name;
            m_document.view(place)->name(name);
            break;
        }
        case 1: {
            if (after.views.empty()) break;
            std::wstring const name = anyName();
            CameraValues const source =
                after.views[below(static_cast<unsigned>(after.views.size()))].camera;
            Model::View * const view = after.find(name);
            StrongRef<Camera> camera;
            for (unsigned i = 0; !camera && i < after.views.size(); ++i)
                if (after.views[i].camera == source) camera = m_document.view(i)->camera();
            if (view && !isFixed(*view)) view->camera = source;
            views.updateNamedViewCamera(name, camera);
            break;
        }
        case 2: {
            TgVector3d const up = axis();
            TgVector3d const front = axis();
            settings.sceneUp(up);
            settings.sceneFront(front);
            auto & scene = after.axes.scene.m_values;
            scene = {0, 0, 0, front.x, front.y, front.z, up.x, up.y, up.z};
            break;
        }
        case 3: {
            CameraValues const home(below(20));
            auto const & v = home.m_values;
            settings.currentHomePosition({v[0], v[1], v[2]});
            settings.currentHomeTarget({v[3], v[4], v[5]});
            settings.currentHomeUp({v[6], v[7], v[8]});
            std::copy(v.begin(), v.begin() + 9, after.axes.home.m_values.begin());
            break;
        }
        default:
            synchronize(after);
        }
    }

    void synchronize(Model & after) {
        NamedViews & views = *m_document.views();
        auto const & scene = after.axes.scene.m_values;
        TgVector3d const front(scene[3], scene[4], scene[5]);
        TgVector3d const up(scene[6], scene[7], scene[8]);
        auto const set = [&](wchar_t const * name, TgVector3d const & target,
                             TgVector3d const & newUp) {
            Model::View * const view = after.find(name);
            if (!view) return;
            double const width = view->camera.m_values[9];
            double const height = view->camera.m_values[10];
            // Adding 0 makes -0 a plain zero.
            view->camera.m_values = {
                0,       0,       0,       target.x + 0, target.y + 0, target.z + 0,
                newUp.x, newUp.y, newUp.z, width,        height};
        };
        switch (below(4)) {
        case 0:
            views.synchonizeHomeNamedView();
            if (Model::View * const view = after.find(L"HOME"))
                std::copy(after.axes.home.m_values.begin(), after.axes.home.m_values.begin() + 9,
                          view->camera.m_values.begin());
            break;
        case 1:
            views.synchonizeTopNamedView();
            set(L"TOP", (up * -1.0).normal(), front);
            break;
        case 2:
            views.synchonizeFrontNamedView();
            set(L"FRONT", front, up);
            break;
        default:
            views.synchonizeRightNamedView();
            set(L"RIGHT",
                {up.y * front.z - up.z * front.y, up.z * front.x - up.x * front.z,
                 up.x * front.y - up.y * front.x},
                up);
        }
    }

    void compareFile() { EXPECT_EQ(savedState(m_document), m_document.state()); }

    std::mt19937 m_random;
    ViewDocument m_document{ViewDocument::BuiltIn};
    Recorder m_observer;
    std::vector<StrongRef<Entity>> m_held;
    std::map<unsigned long long, bool> m_fixed; // by the ids; no part of what undo restores
    std::vector<Model> m_states;                // before and after each step
    std::size_t m_present = 0;
};

unsigned fromEnvironment(char const * name, unsigned standard) {
    char const * const text = std::getenv(name);
    return text ? static_cast<unsigned>(std::strtoul(text, nullptr, 10)) : standard;
}

TEST(NamedViewsWalkTests, AgreesWithTheModelAfterEveryStep) {
    unsigned const first = fromEnvironment("VN_TEST_SEED", 1);
    unsigned const count = fromEnvironment("VN_TEST_SEEDS", 40);
    for (unsigned seed = first; seed < first + count; ++seed) {
        SCOPED_TRACE("VN_TEST_SEED=" + std::to_string(seed));
        Walk walk(seed);
        for (int i = 0; i < 150 && !testing::Test::HasFailure(); ++i) walk.step();
        walk.finish();
        if (testing::Test::HasFailure()) return;
    }
}

} // namespace

} // namespace Vn::NameView
