// Lines of a batch for which there is no memory.

#include <gtest/gtest.h>
#include <sstream>
#include <streambuf>
#include <string>
#include <vector>

#include "Console/CommandLine/Batch.h"
#include "Platform/Base/Initializer.h"
#include "Tests/DataModel/FailingAllocations.h"

namespace Vn::Console::Tests {

namespace {

using Testing::FailingAllocations;

// Keeps what is written without allocating.
class FixedBuffer final : public std::streambuf {
public:
    FixedBuffer() { setp(m_text, m_text + sizeof m_text); }

    std::vector<std::string> lines() const {
        std::istringstream stream(std::string(pbase(), pptr()));
        std::vector<std::string> lines;
        for (std::string line; std::getline(stream, line);) lines.push_back(line);
        return lines;
    }

private:
    char m_text[1 << 16];
};

std::string const c_lines[] = {
    R"({"id":"the first, whose id isn't short","text":"2 in + 3 cm","context":"cm","display":"ft"})",
    R"({"id":[2,{"a":[]}],"text":"3 ft * ( 60 cm + 1 in ) / 2","settings":{"generalPrecision":5}})",
    R"({"id":3,"text":"2 $$ and more, so that it is a line of some length"})",
    R"({"id":4,"text":"2","context":"this isn't a unit either, and isn't short"})",
};

// Whether a line is answered by an error, with its id, or else with its number.
bool isRefused(std::string const & line, std::size_t number, std::string const & answer) {
    std::string const error = R"(,"error":"memory ran out")";
    std::size_t const comma = line.find(R"(,"text")");
    return answer == line.substr(0, comma) + error + '}' ||
           answer == R"({"id":null)" + error + ",\"line\":" + std::to_string(number) + '}';
}

TEST(BatchOutOfMemoryTests, ALineIsAnsweredByAnErrorAndTheNextAsEver) {
    Initializer::runAll();
    for (std::string const & line : c_lines) {
        BatchAnswer const good = answerBatchLine(line);
        bool failed = true;
        unsigned long refused = 0;
        for (unsigned long n = 1; failed; ++n) {
            SCOPED_TRACE(n);
            FailingAllocations::failAt(n, false);
            BatchAnswer const answer = answerBatchLine(line);
            FailingAllocations::heal();
            failed = FailingAllocations::hasFailed();
            if (answer.text != good.text) {
                ++refused;
                ASSERT_TRUE(isRefused(line, 1, answer.text)) << answer.text;
                ASSERT_FALSE(answer.understood);
            }
            ASSERT_EQ(answerBatchLine(line).text, good.text);
        }
        EXPECT_GT(refused, 10u) << line;
    }
}

TEST(BatchOutOfMemoryTests, EveryLineOfARunIsAnswered) {
    Initializer::runAll();
    std::string input;
    std::vector<std::string> good;
    for (std::string const & line : c_lines) {
        input += line + '\n';
        good.push_back(answerBatchLine(line).text);
    }
    bool failed = true;
    unsigned long refused = 0;
    for (unsigned long n = 1; failed; ++n) {
        SCOPED_TRACE(n);
        std::istringstream in(input);
        FixedBuffer buffer;
        std::ostream out(&buffer);
        FailingAllocations::failAt(n, false);
        BatchOutcome const outcome = runBatch(in, out, {});
        FailingAllocations::heal();
        failed = FailingAllocations::hasFailed();
        EXPECT_EQ(outcome.lines, std::size(c_lines));
        EXPECT_FALSE(outcome.inputFailed);
        EXPECT_FALSE(outcome.outputFailed);
        std::vector<std::string> const lines = buffer.lines();
        ASSERT_EQ(lines.size(), std::size(c_lines));
        for (std::size_t i = 0; i < lines.size(); ++i) {
            if (lines[i] == good[i]) continue;
            ++refused;
            ASSERT_TRUE(isRefused(c_lines[i], i + 1, lines[i])) << lines[i];
        }
    }
    EXPECT_GT(refused, 10u);
}

// What can't even be read is passed over up to its end.
TEST(BatchOutOfMemoryTests, ALineThatMemoryDoesNotHoldIsPassedOver) {
    Initializer::runAll();
    std::string const last = R"({"id":2,"text":"2"})";
    std::string const answer = answerBatchLine(last).text;
    std::istringstream in(std::string(100'000, ' ') + R"({"id":1,"text":"2"})" + '\n' + last);
    FixedBuffer buffer;
    std::ostream out(&buffer);
    FailingAllocations::failAt(5, false); // the fifth time that the line grows
    BatchOutcome const outcome = runBatch(in, out, {});
    FailingAllocations::heal();
    EXPECT_EQ(buffer.lines(), (std::vector<std::string>{
                                  R"({"id":null,"error":"memory ran out","line":1})", answer}));
    EXPECT_EQ(outcome.lines, 2u);
    EXPECT_EQ(outcome.badLines, 1u);
    EXPECT_FALSE(outcome.inputFailed);
}

} // namespace

} // namespace Vn::Console::Tests
