// The lines that the benchmarks work on.

#ifndef VN_BENCHMARKS_CORPUS_H
#define VN_BENCHMARKS_CORPUS_H

#include <string>
#include <vector>

namespace Vn::Benchmarks {

// The lines of a file of the corpora, such as "quantities" or "quantities.udunits".  Ends the
// program with a message if there is no such file.
std::vector<std::string> corpus(std::string const & name);

// The same for the engine.
std::vector<std::wstring> wideCorpus(std::string const & name);

// A sum of that many terms: "1.5 cm + 2.25 in + ..." or, without units, "1.5 + 2.25 + ...".
std::string sum(std::size_t terms, bool units);

} // namespace Vn::Benchmarks

#endif
