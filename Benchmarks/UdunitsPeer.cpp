// UDUNITS-2 on the same quantities: from text to a value in the base units of its dimension, and a
// quantity to text.

#include <benchmark/benchmark.h>
#include <udunits2.h>

#include "Benchmarks/Corpus.h"

namespace Vn::Benchmarks {

namespace {

ut_system * unitSystem() {
    static ut_system * const s_system = [] {
        ut_set_error_message_handler(ut_ignore);
        return ut_read_xml(nullptr);
    }();
    return s_system;
}

// The peer reads "2.5 inch" as a unit of its own: 2.5 inches.  Its value is one of it in a base
// unit, which is kept for each line.
void quantities(benchmark::State & state) {
    std::vector<std::string> const lines = corpus("quantities.udunits");
    std::vector<ut_unit *> bases;
    for (std::string const & line : lines) {
        char base[128] = "";
        ut_unit * const unit = ut_parse(unitSystem(), line.c_str(), UT_ASCII);
        ut_format(unit, base, sizeof base, UT_ASCII | UT_DEFINITION);
        // The definition is "NUMBER BASE"; what follows the number is the base.
        char const * const blank = std::char_traits<char>::find(base, sizeof base, ' ');
        bases.push_back(ut_parse(unitSystem(), blank ? blank + 1 : base, UT_ASCII));
        ut_free(unit);
    }
    for (auto _ : state) {
        for (std::size_t i = 0; i < lines.size(); ++i) {
            ut_unit * const unit = ut_parse(unitSystem(), lines[i].c_str(), UT_ASCII);
            cv_converter * const converter = ut_get_converter(unit, bases[i]);
            double value = 1.0;
            if (converter) {
                value = cv_convert_double(converter, 1.0);
                cv_free(converter);
            }
            benchmark::DoNotOptimize(value);
            ut_free(unit);
        }
    }
    for (ut_unit * const base : bases) ut_free(base);
    state.counters["per_line"] = benchmark::Counter(static_cast<double>(lines.size()),
                                                    benchmark::Counter::kIsIterationInvariantRate |
                                                        benchmark::Counter::kInvert);
}
BENCHMARK(quantities)->Name("udunits/quantities");

// The same without the conversion: the text read, no value.
void parseOnly(benchmark::State & state) {
    std::vector<std::string> const lines = corpus("quantities.udunits");
    for (auto _ : state) {
        for (std::string const & line : lines) {
            ut_unit * const unit = ut_parse(unitSystem(), line.c_str(), UT_ASCII);
            benchmark::DoNotOptimize(unit);
            ut_free(unit);
        }
    }
    state.counters["per_line"] = benchmark::Counter(static_cast<double>(lines.size()),
                                                    benchmark::Counter::kIsIterationInvariantRate |
                                                        benchmark::Counter::kInvert);
}
BENCHMARK(parseOnly)->Name("udunits/parseOnly");

void format(benchmark::State & state) {
    std::vector<ut_unit *> units;
    for (std::string const & line : corpus("quantities.udunits"))
        units.push_back(ut_parse(unitSystem(), line.c_str(), UT_ASCII));
    char text[128];
    for (auto _ : state) {
        for (ut_unit * const unit : units) {
            ut_format(unit, text, sizeof text, UT_ASCII);
            benchmark::DoNotOptimize(text);
        }
    }
    state.counters["per_line"] = benchmark::Counter(static_cast<double>(units.size()),
                                                    benchmark::Counter::kIsIterationInvariantRate |
                                                        benchmark::Counter::kInvert);
    for (ut_unit * const unit : units) ut_free(unit);
}
BENCHMARK(format)->Name("udunits/format");

} // namespace

} // namespace Vn::Benchmarks
