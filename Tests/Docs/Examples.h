// The examples of a document, as a test can run them.
//
//   ```console                   each line "$ command" is run by a shell; what follows, up to the
//   $ vnconsole eval '2 in'      next command or the end of the block, is what it prints
//   ...
//   ```
//
//   | Expression | Context | Shown |     a table with a column "Expression"; the cells hold code,
//   and
//   |---|---|---|                        the other columns say what comes of it
//   | `2 in` | `cm` | `5.08 cm` |
//
//   `2*3^2` gives `36.00`; `2+` fails at 1        the same within a sentence

#ifndef VN_TESTS_DOCS_EXAMPLES_H
#define VN_TESTS_DOCS_EXAMPLES_H

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace Vn::Docs::Tests {

struct Place {
    std::string document;
    std::size_t line = 0; // from 1
};

// A fenced block: its language and its lines.
struct Block {
    Place place;
    std::string language;
    std::vector<std::string> lines;
};

struct Session {
    Place place;
    std::string command;
    std::string output;
};

// A row of a table of examples: the cells by the headings of their columns, code marks taken off.
struct Row {
    Place place;
    std::map<std::string, std::string> cells;
};

struct Document {
    std::string name; // relative to the root
    std::string text;
    std::vector<Block> blocks;
    std::vector<Session> sessions;
    std::vector<Row> rows; // of tables and of sentences
};

Document readDocument(std::string const & name);

// README.md and all of Docs.
std::vector<Document> readDocuments();

std::string readFile(std::string const & name);

} // namespace Vn::Docs::Tests

#endif
