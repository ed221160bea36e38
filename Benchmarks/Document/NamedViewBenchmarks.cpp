// What a new view costs where there are many: the request finds a free number in one walk over the
// views, so the cost follows their count.  They are numbered without a gap, so that one number
// after the other would have to be tried otherwise.

#include <memory>

#include <benchmark/benchmark.h>

#include "Tests/CommonData/NamedViews/NamedViewsTesting.h"

namespace Vn::NameView {

namespace {

void newView(benchmark::State & state) {
    ViewDocument const document;
    StrongRef<Camera> const camera = document.camera(1);
    auto const count = static_cast<unsigned>(state.range(0));
    for (unsigned i = 0; i < count; ++i)
        document.run(NewNamedViewRequest::make(&document.asset(), camera));
    for (auto const iteration : state) {
        static_cast<void>(iteration);
        document.run(NewNamedViewRequest::make(&document.asset(), camera));
        state.PauseTiming();
        document.undo();
        state.ResumeTiming();
    }
}
BENCHMARK(newView)->Arg(1'000)->Arg(10'000)->Unit(benchmark::kMicrosecond);

} // namespace

} // namespace Vn::NameView
