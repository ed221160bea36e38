// The console in a terminal of its own, with a person who types.

#ifndef VN_TESTS_SUPPORT_TERMINALSESSION_H
#define VN_TESTS_SUPPORT_TERMINALSESSION_H

#include <map>
#include <string>
#include <sys/types.h>
#include <vector>

namespace Vn::Console::Tests {

class TerminalSession {
public:
    explicit TerminalSession(std::vector<std::string> const & arguments,
                             std::map<std::string, std::string> const & environment = {});
    ~TerminalSession();
    TerminalSession(TerminalSession const &) = delete;
    TerminalSession & operator=(TerminalSession const &) = delete;

    // Presses keys.
    void type(std::string const & keys);

    // Gives the window another size, of which the system tells the console.
    void resize(unsigned short rows, unsigned short columns);

    // Sends a signal to the console.
    void signal(int number);

    // Waits until `text` appears after what was waited for before.  False if the process ends, or
    // falls silent for long, without it.
    bool waitFor(std::string const & text);

    // The same for what the console wrote from the beginning on, with the sequences that move the
    // cursor.
    bool waitForRaw(std::string const & text);

    // Whether it wrote a text until now, sequences included.
    bool wrote(std::string const & text) const { return m_output.find(text) != m_output.npos; }

    // Waits until the cursor stands in the given column of a row with the given text, both of which
    // a terminal of that size shows after all that the console wrote.
    bool waitForRow(std::string const & text, std::size_t column, std::size_t rows = 40,
                    std::size_t columns = 120);

    // Waits for the prompt, and until the console takes single keys: what is typed before, the
    // terminal keeps back for a whole line, and Ctrl-C and Ctrl-D have another meaning.
    bool waitForPrompt(std::string const & prompt = "> ");

    // Waits until the console has taken a line and runs it: keys that mean signals are signals
    // then.
    bool waitForRun();

    // Waits for the end of the process and returns its exit status, or 128 and the signal.
    int waitForEnd();

    // All that appeared so far, without the sequences that move the cursor.
    std::string screen() const;

private:
    bool readSome();
    // Waits until the terminal takes whole lines, or single keys.
    bool waitForLines(bool taken);

    int m_terminal = -1;
    pid_t m_process = -1;
    std::string m_output;
    std::size_t m_seen = 0;
};

} // namespace Vn::Console::Tests

#endif
