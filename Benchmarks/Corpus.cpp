#include "Benchmarks/Corpus.h"

#include <cstdlib>
#include <fstream>
#include <iostream>

#include "Platform/Base/Text.h"

namespace Vn::Benchmarks {

std::vector<std::string> corpus(std::string const & name) {
    std::string const path = std::string(VN_CORPUS_DIRECTORY) + "/" + name + ".txt";
    std::ifstream in(path);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    if (lines.empty()) {
        std::cerr << "There are no lines in " << path << '\n';
        std::exit(1);
    }
    return lines;
}

std::vector<std::wstring> wideCorpus(std::string const & name) {
    std::vector<std::wstring> lines;
    for (std::string const & line : corpus(name)) lines.push_back(Text::fromUtf8(line));
    return lines;
}

std::string sum(std::size_t terms, bool units) {
    static char const * const c_numbers[] = {"1.5", "2.25", "13", "0.75", "6.125", "40.5", "7"};
    static char const * const c_units[] = {" cm", " in", " mm", " ft", " m"};
    std::string text;
    for (std::size_t i = 0; i < terms; ++i) {
        if (i > 0) text += " + ";
        text += c_numbers[i % std::size(c_numbers)];
        if (units) text += c_units[i % std::size(c_units)];
    }
    return text;
}

} // namespace Vn::Benchmarks
