// Different texts may be used from different threads at once.

#include <atomic>
#include <thread>

#include "Server/CommonData/Expressions/Tokens.h"
#include "Server/CommonData/Expressions/WorkedExpressionsInternal.h"
#include "Tests/CommonData/Expressions/ExpressionsTesting.h"

namespace Vn::Expressions {

namespace {

using namespace Testing;
using Units::UnitDisplaySettings;

constexpr unsigned int c_threads = 8;

// Runs `work` on eight threads that start together, each with its number.
template <class Work>
void onThreads(Work const & work) {
    std::atomic<unsigned int> ready = 0;
    std::vector<std::thread> threads;
    for (unsigned int number = 0; number < c_threads; ++number)
        threads.emplace_back([&, number] {
            ++ready;
            while (ready < c_threads) std::this_thread::yield();
            work(number);
        });
    for (std::thread & thread : threads) thread.join();
}

// Everything that an expression answers, in one line.
std::wstring line(std::wstring const & text, Units::UnitContext const & context) {
    Expression const expression(text, context);
    std::wstring all = expression.result().toString();
    if (std::optional<double> const value = expression.value())
        all += L"|" + std::to_wstring(*value);
    if (std::optional<Units::ComplexUnit> const units = expression.units())
        all += L"|" + units->toString();
    all +=
        L"|" + expression.formatted(Units::ValueAndUnit, UnitDisplaySettings::standard(), context);
    return all + L"|" + expression.rebuilt() + L"|" + expression.textToStore();
}

// Without deca: what its short form means depends on the units that exist already ("dam" is a tenth
// of an attometre once there is one), and so on the order in which the threads meet them.
constexpr wchar_t const * c_prefixes[] = {
    L"exa",   L"E",    L"peta",  L"P",    L"tera", L"T",     L"giga",  L"G",    L"mega",  L"M",
    L"kilo",  L"k",    L"hecto", L"h",    L"deci", L"d",     L"centi", L"c",    L"milli", L"m",
    L"micro", L"nano", L"n",     L"pico", L"p",    L"femto", L"f",     L"atto", L"a"};
// Units that take prefixes and have an abbreviation of their own: without one, "exaohm" could be
// an "ex" of attoohms in the same way.
constexpr wchar_t const * c_units[] = {L"meter",  L"gram",  L"ampere", L"candela", L"kelvin",
                                       L"second", L"liter", L"pascal", L"watt",    L"newton",
                                       L"joule",  L"volt",  L"weber",  L"tesla",   L"henry",
                                       L"hertz",  L"lumen", L"lux",    L"siemens", L"steradian"};

std::vector<std::wstring> textsWithPrefixes() {
    std::vector<std::wstring> texts;
    for (wchar_t const * const unit : c_units)
        for (wchar_t const * const prefix : c_prefixes) {
            std::wstring const name = std::wstring(prefix) + unit;
            texts.push_back(L"2 " + name + L" + 3.5 " + name + L" * cos(0)");
        }
    return texts;
}

TEST(ThreadTests, PrefixesMakeTheirUnitsOnce) {
    std::vector<std::wstring> const texts = textsWithPrefixes();
    std::vector<std::vector<std::wstring>> answers(c_threads);
    std::vector<std::vector<Units::SimpleUnit const *>> units(c_threads);
    onThreads([&](unsigned int number) {
        answers[number].resize(texts.size());
        // Each from another place, so that they meet at different units.
        for (std::size_t i = 0; i < texts.size(); ++i) {
            std::size_t const at = (i + number * texts.size() / c_threads) % texts.size();
            answers[number][at] = line(texts[at], Units::UnitContext());
        }
        for (wchar_t const * const unit : c_units)
            for (wchar_t const * const prefix : c_prefixes)
                units[number].push_back(
                    Tokens::get()->findMatchingUnit(std::wstring(prefix) + unit));
    });
    std::vector<std::wstring> alone;
    for (std::wstring const & text : texts) alone.push_back(line(text, Units::UnitContext()));
    for (std::size_t i = 0; i < texts.size(); ++i)
        EXPECT_EQ(alone[i].substr(0, 9), L"Success!|") << shown(texts[i]);
    for (unsigned int number = 0; number < c_threads; ++number) {
        for (std::size_t i = 0; i < texts.size(); ++i)
            EXPECT_EQ(answers[number][i], alone[i]) << number << ' ' << shown(texts[i]);
        EXPECT_EQ(units[number], units[0]) << number;
    }
}

TEST(ThreadTests, WorkedExpressionsOnAllThreads) {
    auto const rows = workedExpressions();
    auto const allLines = [&](std::size_t from) {
        std::vector<std::wstring> lines(rows.size());
        for (std::size_t i = 0; i < rows.size(); ++i) {
            WorkedExpression const & row = rows[(i + from) % rows.size()];
            lines[(i + from) % rows.size()] = line(row.expression, contextOf(row.context));
        }
        return lines;
    };
    std::vector<std::vector<std::wstring>> lines(c_threads);
    onThreads([&](unsigned int number) { lines[number] = allLines(number * 31); });
    std::vector<std::wstring> const alone = allLines(0);
    for (unsigned int number = 0; number < c_threads; ++number)
        EXPECT_EQ(lines[number], alone) << number;
}

TEST(ThreadTests, OneContextServesAllThreads) {
    Units::UnitContext const context(L"kg m / (s s)");
    std::vector<std::wstring> lines(c_threads);
    onThreads([&](unsigned int number) {
        for (int i = 0; i < 50; ++i)
            lines[number] = line(L"1 + 2 newton + 3 kg * Gravity", context);
    });
    for (std::wstring const & each : lines) EXPECT_EQ(each, lines[0]);
    EXPECT_EQ(lines[0].substr(0, 9), L"Success!|");
}

TEST(ThreadTests, RandomNumbersNeedNoCommonState) {
    std::vector<double> sums(c_threads);
    onThreads([&](unsigned int number) {
        for (int i = 0; i < 500; ++i) {
            std::optional<double> const value = Expression(L"random()").value();
            if (value && *value >= 0.0 && *value <= 1.0) sums[number] += *value + 1.0;
        }
    });
    for (double const sum : sums) {
        EXPECT_GE(sum, 500.0); // each was a number in its range
        EXPECT_LE(sum, 1000.0);
    }
}

TEST(ThreadTests, RandomNumbersOfThreadsDiffer) {
    std::vector<std::vector<std::optional<double>>> drawn(c_threads);
    onThreads([&](unsigned int number) {
        for (int i = 0; i < 16; ++i) drawn[number].push_back(Expression(L"random()").value());
    });
    for (unsigned int a = 0; a < c_threads; ++a)
        for (unsigned int b = 0; b < a; ++b) EXPECT_NE(drawn[a], drawn[b]);
}

TEST(ThreadTests, DeepAndLongTextsOnAllThreads) {
    std::wstring const deep = repeated(L"(1+", 1000) + L"1" + repeated(L")", 1000);
    std::wstring const wide = L"1in" + repeated(L"+1", 5000);
    std::vector<std::optional<double>> values(c_threads);
    onThreads([&](unsigned int number) {
        values[number] =
            number % 2 ? Expression(deep).value() : Expression(wide, contextOf(L"in")).value();
    });
    for (unsigned int number = 0; number < c_threads; ++number) {
        ASSERT_TRUE(values[number]);
        EXPECT_NEAR(*values[number], number % 2 ? 1001.0 : 5001 * 2.54, 1e-6);
    }
}

} // namespace

} // namespace Vn::Expressions
