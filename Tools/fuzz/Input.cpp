#include "Tools/fuzz/Input.h"

#include <bit>
#include <cstdio>
#include <cstdlib>

#include "Platform/Base/Initializer.h"
#include "Platform/Base/PathInfo.h"
#include "Platform/Base/Text.h"

namespace Vn::Fuzz {

namespace {

enum : std::uint8_t { AnyCharacters = 1, OwnSettings = 2 };

} // namespace

std::uint8_t Input::byte() {
    if (m_bytes.empty()) return 0;
    auto const last = static_cast<std::uint8_t>(m_bytes.back());
    m_bytes.remove_suffix(1);
    return last;
}

int Input::wholeNumber() {
    std::uint32_t bits = 0;
    for (int i = 0; i < 4; ++i) bits = bits << 8 | byte();
    return static_cast<int>(bits);
}

short Input::smallNumber() {
    std::uint8_t const choice = byte();
    if (choice < 224) return static_cast<short>(choice % 24 - 4);
    return static_cast<short>(wholeNumber());
}

double Input::anyDouble() {
    std::uint64_t bits = 0;
    for (int i = 0; i < 8; ++i) bits = bits << 8 | byte();
    return std::bit_cast<double>(bits);
}

double Input::value() {
    switch (byte() % 6) {
    case 0:
        return anyDouble();
    case 1:
        return wholeNumber();
    case 2:
        return wholeNumber() / 128.0;
    case 3:
        return wholeNumber() / 1e4;
    case 4:
        return wholeNumber() / 1e9;
    default:
        return static_cast<double>(wholeNumber()) * wholeNumber();
    }
}

Units::UnitDisplaySettings Input::settings() {
    Units::UnitDisplaySettings settings = Units::UnitDisplaySettings::standard();
    if (!(m_flags & OwnSettings)) return settings;
    std::uint8_t const switches = byte();
    settings.compressUnits(switches & 1);
    settings.scientificNotation(switches & 2);
    settings.decimalPointIsFullStop(switches & 4);
    settings.displayAbbreviated(switches & 8);
    settings.displaySymbol(switches & 16);
    settings.specifiedByNode(switches & 32);
    settings.hideTrailingZeroes(switches & 64);
    bool const anyDisplay = switches & 128;
    settings.lengthDisplay(
        static_cast<Units::ELengthDisplay>(anyDisplay ? wholeNumber() : byte() % 3));
    settings.degreeDisplay(
        static_cast<Units::EDegreeDisplay>(anyDisplay ? wholeNumber() : byte() % 2));
    settings.generalPrecision(smallNumber());
    settings.angularPrecision(smallNumber());
    settings.scientificPrecision(smallNumber());
    settings.minimumPrecision(smallNumber());
    settings.generalUnit(smallNumber());
    settings.useScientificNotationAboveThreshold(value());
    settings.useScientificNotationBelowThreshold(value());
    return settings;
}

Units::UnitContext Input::context() {
    std::size_t const end = m_bytes.find('\n');
    if (end == std::string_view::npos) return {};
    std::string_view const line = m_bytes.substr(0, end);
    m_bytes.remove_prefix(end + 1);
    if (line == "?") return {};
    return Units::UnitContext(wide(line));
}

std::wstring Input::text() { return wide(m_bytes); }

std::wstring Input::wide(std::string_view bytes) const {
    if (!(m_flags & AnyCharacters)) return Text::fromUtf8(bytes);
    std::wstring text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        auto const at = [&](std::size_t index) {
            return static_cast<std::uint32_t>(static_cast<std::uint8_t>(bytes[index]));
        };
        if (at(i) == 0xFF && bytes.size() - i > 4) {
            text += static_cast<wchar_t>(at(i + 1) << 24 | at(i + 2) << 16 | at(i + 3) << 8 |
                                         at(i + 4));
            i += 4;
        } else {
            text += static_cast<wchar_t>(at(i));
        }
    }
    return text;
}

void expect(bool holds, char const * law) {
    if (holds) return;
    std::fprintf(stderr, "Broken law: %s\n", law);
    std::abort();
}

void expect(bool holds, char const * law, double value, std::wstring_view text) {
    if (!holds) std::fprintf(stderr, "%.17g: %s\n", value, Text::toUtf8(text).c_str());
    expect(holds, law);
}

void prepare() {
    static bool const s_prepared = [] {
        // Whoever runs it has preferences, which must not change what it finds.
        PathInfo::optionsDirectory(L"/nonexistent");
        Initializer::runAll();
        return true;
    }();
    static_cast<void>(s_prepared);
}

} // namespace Vn::Fuzz
