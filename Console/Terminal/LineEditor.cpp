// Line editing by libedit, which knows what keys do and remembers lines.  What the terminal shows
// is drawn here: libedit counts a column for a combining mark.  Nothing else in the console knows
// of it.

#include <algorithm>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <deque>
#include <iostream>
#include <utility>

#include <histedit.h>

#include "Console/Messages.h"
#include "Console/Terminal/Keys.h"
#include "Console/Terminal/LineDisplay.h"
#include "Console/Terminal/LineReader.h"
#include "Console/Terminal/Terminal.h"
#include "Console/Texts.h"
#include "Platform/Base/Text.h"

namespace Vn::Console {

namespace {

constexpr int c_historyLines = 1000;
constexpr std::size_t c_candidatesShown = 60;
constexpr std::size_t c_columns = 78;

// A terminal that is asked to tells where pasted text begins and ends.
constexpr std::string_view c_tellPastes = "\x1B[?2004h";
constexpr std::string_view c_tellNoPastes = "\x1B[?2004l";
constexpr std::wstring_view c_pasteBegins = L"\x1B[200~";
constexpr std::wstring_view c_pasteEnds = L"\x1B[201~";
constexpr wchar_t c_interruption = 3; // Ctrl-C

// What the keys beside the letters do, in the forms in which terminals send them.
struct Key {
    wchar_t const * sequence;
    wchar_t const * command;
};
constexpr Key c_keys[] = {
    {L"\\e[H", L"ed-move-to-beg"},
    {L"\\eOH", L"ed-move-to-beg"},
    {L"\\e[1~", L"ed-move-to-beg"},
    {L"\\e[7~", L"ed-move-to-beg"},
    {L"\\e[F", L"ed-move-to-end"},
    {L"\\eOF", L"ed-move-to-end"},
    {L"\\e[4~", L"ed-move-to-end"},
    {L"\\e[8~", L"ed-move-to-end"},
    {L"\\e[3~", L"vn-delete"},
    {L"\\e[5~", L"ed-search-prev-history"},
    {L"\\e[6~", L"ed-search-next-history"},
    {L"\\e[1;5D", L"ed-prev-word"},
    {L"\\e[1;5C", L"em-next-word"},
    {L"\\e[1;3D", L"ed-prev-word"},
    {L"\\e[1;3C", L"em-next-word"},
    {L"\\e[5D", L"ed-prev-word"},
    {L"\\e[5C", L"em-next-word"},
    {L"\\eOd", L"ed-prev-word"},
    {L"\\eOc", L"em-next-word"},
    {L"\\e[3;5~", L"em-delete-next-word"},
    {L"\\e[D", L"vn-left"},
    {L"\\eOD", L"vn-left"},
    {L"^B", L"vn-left"},
    {L"\\e[C", L"vn-right"},
    {L"\\eOC", L"vn-right"},
    {L"^F", L"vn-right"},
    {L"^H", L"vn-erase"},
    {L"^?", L"vn-erase"},
    {L"^D", L"vn-delete-or-end"},
    {L"^L", L"vn-clear"},
    {L"^Z", L"vn-suspend"},
    {L"\\ex", L"ed-ignore"}, // else it asks for a command of libedit
    {L"\\eX", L"ed-ignore"},
};

struct EndEditor {
    void operator()(EditLine * editor) const { ::el_end(editor); }
};
struct EndHistory {
    void operator()(HistoryW * history) const { ::history_wend(history); }
};
struct CloseFile {
    void operator()(std::FILE * file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

// Where lines are kept; empty if there is no place for them.
std::string historyFile() {
    std::filesystem::path const directory = stateDirectory();
    return directory.empty() ? std::string() : (directory / "history").string();
}

class LineEditor final : public LineReader {
public:
    explicit LineEditor(Completer completer)
        : m_completer(std::move(completer)), m_historyFile(historyFile()) {
        // libedit turns what is typed into characters by the locale of the process.
        if (!std::setlocale(LC_CTYPE, "C.UTF-8")) std::setlocale(LC_CTYPE, "");
        m_editor.reset(::el_init("vnconsole", stdin, stdout, stderr));
        m_history.reset(::history_winit());
        if (!isReady()) return;
        HistEventW event;
        ::history_w(m_history.get(), &event, H_SETSIZE, c_historyLines);
        ::history_w(m_history.get(), &event, H_SETUNIQUE, 1);
        if (!m_historyFile.empty())
            ::history_w(m_history.get(), &event, H_LOAD, m_historyFile.c_str());
        EditLine * const editor = m_editor.get();
        ::el_wset(editor, EL_CLIENTDATA, this);
        ::el_wset(editor, EL_EDITOR, L"emacs");
        ::el_wset(editor, EL_HIST, &::history_w, m_history.get());
        addFunctions();
        ::el_wset(editor, EL_GETCFN, &onReadKey);
        for (Key const & key : c_keys) bind(key.sequence, key.command);
        ::el_source(editor, nullptr); // what the user likes, such as another editor
        bind(L"^I", L"vn-complete");
        // While a line is edited, Ctrl-C abandons it; while one is run, it ends that.
        ::el_wset(editor, EL_SETTY, L"-d", L"-isig", nullptr);
        bind(L"^C", L"vn-abandon");
        ::el_wset(editor, EL_SIGNAL, 1);
        ::el_wset(editor, EL_SETFP, 1, m_nowhere.get());
        wchar_t const * name = nullptr;
        m_bReadsSequences =
            ::el_wget(editor, EL_EDITOR, &name) == 0 && name && std::wstring_view(name) == L"emacs";
    }

    bool isReady() const { return m_editor && m_history && m_nowhere; }

    std::optional<std::string> read(std::wstring const & prompt) override {
        m_prompt = prompt;
        m_bSuspended = false;
        m_display.forget();
        if (m_bReadsSequences) write(c_tellPastes);
        ::el_resize(m_editor.get()); // while the last line was run, nobody watched
        int count = 0;
        wchar_t const * const typed = ::el_wgets(m_editor.get(), &count);
        if (m_bReadsSequences) write(c_tellNoPastes);
        if (!typed || count <= 0) {
            write(m_display.end());
            return std::nullopt;
        }
        std::wstring line(typed, static_cast<std::size_t>(count));
        while (!line.empty() && (line.back() == L'\n' || line.back() == L'\r')) line.pop_back();
        write(m_display.show(m_prompt, line, line.size(), terminalSize()) + m_display.end() +
              "\r\n");
        remember(line);
        return Text::toUtf8(line);
    }

    void forget() override { m_pending.clear(); }

private:
    static LineEditor & of(EditLine * editor) {
        void * self = nullptr;
        ::el_wget(editor, EL_CLIENTDATA, &self);
        return *static_cast<LineEditor *>(self);
    }

    static void write(std::string_view text) {
        std::fwrite(text.data(), 1, text.size(), stdout);
        std::fflush(stdout);
    }

    // The line as it stands, and where the cursor is.
    std::wstring_view line() const {
        LineInfoW const * const info = ::el_wline(m_editor.get());
        return {info->buffer, static_cast<std::size_t>(info->lastchar - info->buffer)};
    }
    std::size_t cursor() const {
        LineInfoW const * const info = ::el_wline(m_editor.get());
        return static_cast<std::size_t>(info->cursor - info->buffer);
    }

    void draw() { write(m_display.show(m_prompt, line(), cursor(), terminalSize())); }

    TerminalEvents events() {
        return {[this] { draw(); }, [this] { goOn(); }};
    }

    // The shell had the terminal meanwhile.
    void goOn() {
        if (std::exchange(m_bSuspended, false)) return;
        ::el_wset(m_editor.get(), EL_PREP_TERM, 1);
        beginAnew();
        draw();
    }

    void beginAnew() {
        m_display.forget();
        write("\r\x1B[J");
        if (m_bReadsSequences) write(c_tellPastes);
    }

    static int onReadKey(EditLine * editor, wchar_t * key) { return of(editor).giveKey(*key); }

    int giveKey(wchar_t & key) {
        std::wstring keys;
        while (m_pending.empty()) {
            if (!isKeyWaiting()) draw();
            if (!m_bReadsSequences) return readKey(events(), key);
            if (int const result = readSequence(events(), keys); result != 1) return result;
            if (keys == c_pasteBegins)
                takePaste();
            else if (keys.size() == 1 || isBound(keys))
                m_pending.assign(keys.begin(), keys.end());
            else if (keys.size() == 2 && keys.back() < 0x20)
                m_pending.assign(1, keys.back()); // the escape key was pressed before
        }
        key = m_pending.front();
        m_pending.pop_front();
        return 1;
    }

    // Takes pasted text as if it were typed, its lines one after the other; empty ones are passed
    // over.  The last is left to be looked at, whether it has an end or not.
    void takePaste() {
        bool isEnded = false; // a line, after which none has begun
        std::wstring keys;
        while (readSequence(events(), keys) == 1 && keys != c_pasteEnds) {
            wchar_t const c = keys.front() == L'\t' ? L' ' : keys.front();
            if (c == c_interruption) {
                m_pending.assign(1, c); // the end may never come
                return;
            }
            if (c == L'\r' || c == L'\n') isEnded = true;
            if (c < 0x20 || (c >= 0x7F && c < 0xA0)) continue;
            if (std::exchange(isEnded, false)) m_pending.push_back(L'\n');
            m_pending.push_back(c);
        }
    }

    // Whether a sequence does something, here or by what the user likes.
    bool isBound(std::wstring const & keys) {
        std::wstring name;
        for (wchar_t const c : keys) {
            constexpr std::size_t c_size = 8;
            wchar_t octal[c_size];
            std::swprintf(octal, c_size, L"\\%03o", static_cast<unsigned>(c));
            bool const isPlain = c > 0x20 && c != L'^' && c != L'\\' && c != 0x7F;
            name += isPlain ? std::wstring(1, c) : std::wstring(octal);
        }
        // It tells of one that isn't as of an error.
        char * told = nullptr;
        std::size_t size = 0;
        File memory(::open_memstream(&told, &size));
        if (!memory) return false;
        ::el_wset(m_editor.get(), EL_SETFP, 2, memory.get());
        ::el_wset(m_editor.get(), EL_BIND, name.c_str(), nullptr);
        ::el_wset(m_editor.get(), EL_SETFP, 2, stderr);
        memory.reset();
        std::free(told);
        return size == 0;
    }

    void bind(wchar_t const * sequence, wchar_t const * command) {
        ::el_wset(m_editor.get(), EL_BIND, sequence, command, nullptr);
    }

    void addFunctions() {
        struct Function {
            wchar_t const * name;
            wchar_t const * meaning;
            unsigned char (*run)(EditLine *, int);
        };
        constexpr Function c_functions[] = {
            {L"vn-complete", L"Completes the word", &onComplete},
            {L"vn-abandon", L"Abandons the line", &onAbandon},
            {L"vn-left", L"Goes to the character before", &onLeft},
            {L"vn-right", L"Goes to the next character", &onRight},
            {L"vn-erase", L"Erases the character before", &onErase},
            {L"vn-delete", L"Erases the character at the cursor", &onDelete},
            {L"vn-delete-or-end", L"Erases it, or ends the input", &onDeleteOrEnd},
            {L"vn-clear", L"Clears the screen", &onClear},
            {L"vn-suspend", L"Stops the process", &onSuspend},
        };
        for (Function const & function : c_functions)
            ::el_wset(m_editor.get(), EL_ADDFN, function.name, function.meaning, function.run);
    }

    unsigned char moveTo(std::size_t position) {
        if (position == cursor()) return beep();
        ::el_cursor(m_editor.get(), static_cast<int>(position) - static_cast<int>(cursor()));
        return CC_REFRESH;
    }
    unsigned char erase(std::size_t from, std::size_t to) {
        if (from == to) return beep();
        ::el_cursor(m_editor.get(), static_cast<int>(to) - static_cast<int>(cursor()));
        ::el_deletestr(m_editor.get(), static_cast<int>(to - from));
        return CC_REFRESH;
    }
    static unsigned char beep() {
        write("\a");
        return CC_REFRESH;
    }

    static unsigned char onLeft(EditLine * editor, int) {
        LineEditor & self = of(editor);
        return self.moveTo(LineDisplay::previous(self.line(), self.cursor()));
    }
    static unsigned char onRight(EditLine * editor, int) {
        LineEditor & self = of(editor);
        return self.moveTo(LineDisplay::next(self.line(), self.cursor()));
    }
    static unsigned char onErase(EditLine * editor, int) {
        LineEditor & self = of(editor);
        return self.erase(LineDisplay::previous(self.line(), self.cursor()), self.cursor());
    }
    static unsigned char onDelete(EditLine * editor, int) {
        LineEditor & self = of(editor);
        return self.erase(self.cursor(), LineDisplay::next(self.line(), self.cursor()));
    }
    static unsigned char onDeleteOrEnd(EditLine * editor, int) {
        LineEditor & self = of(editor);
        return self.line().empty() ? static_cast<unsigned char>(CC_EOF) : onDelete(editor, 0);
    }

    static unsigned char onClear(EditLine * editor, int) {
        write("\x1B[H\x1B[2J");
        of(editor).m_display.forget();
        return CC_REFRESH;
    }

    static unsigned char onSuspend(EditLine * editor, int) {
        LineEditor & self = of(editor);
        if (self.m_bReadsSequences) write(c_tellNoPastes);
        self.draw();
        write(self.m_display.end() + '\n');
        ::el_wset(editor, EL_PREP_TERM, 0);
        self.m_bSuspended = true;
        ::kill(0, SIGTSTP); // as the terminal does
        ::el_wset(editor, EL_PREP_TERM, 1);
        self.beginAnew();
        return CC_REFRESH;
    }

    static unsigned char onAbandon(EditLine * editor, int) {
        LineEditor & self = of(editor);
        self.m_pending.clear();
        self.erase(0, self.line().size());
        return CC_REFRESH;
    }

    static unsigned char onComplete(EditLine * editor, int) { return of(editor).complete(); }

    unsigned char complete() {
        std::wstring_view const front = line().substr(0, cursor());
        Completion const completion = m_completer(front);
        if (completion.candidates.empty()) return beep();
        std::wstring const begun(front.substr(front.size() - completion.begun));
        std::wstring text = commonBeginning(completion);
        bool const isOnly = completion.candidates.size() == 1;
        if (isOnly) text += completion.candidates.front().after;
        // A list helps where there is nothing to add.
        if (text.size() <= begun.size() && !isOnly) {
            list(completion);
            return CC_REFRESH;
        }
        ::el_deletestr(m_editor.get(), static_cast<int>(begun.size()));
        ::el_winsertstr(m_editor.get(), text.c_str());
        return CC_REFRESH;
    }

    static std::wstring commonBeginning(Completion const & completion) {
        std::wstring common = completion.candidates.front().text;
        for (Completion::Candidate const & candidate : completion.candidates) {
            std::size_t same = 0;
            while (same < common.size() && same < candidate.text.size() &&
                   common[same] == candidate.text[same])
                ++same;
            common.resize(same);
        }
        return common;
    }

    void list(Completion const & completion) {
        std::wstring text;
        std::size_t const columns =
            std::min(c_columns, std::max<std::size_t>(terminalSize().columns, 2) - 2);
        std::size_t column = 0;
        std::size_t shown = 0;
        for (Completion::Candidate const & candidate : completion.candidates) {
            if (shown == c_candidatesShown) break;
            auto const width = static_cast<std::size_t>(Text::displayWidth(candidate.text));
            if (column > 0 && column + width > columns) {
                text += L'\n';
                column = 0;
            }
            text += candidate.text + L"  ";
            column += width + 2;
            ++shown;
        }
        if (shown < completion.candidates.size())
            text += message(L"and %1% more", completion.candidates.size() - shown);
        draw(); // what was typed ahead isn't
        write(m_display.end() + '\n' + Text::toUtf8(text + L'\n'));
        m_display.forget();
    }

    void remember(std::wstring const & line) {
        if (trimmed(line).empty()) return;
        HistEventW event;
        ::history_w(m_history.get(), &event, H_ENTER, line.c_str());
        // At once, so that a session that is killed keeps its lines too.
        if (!m_historyFile.empty())
            ::history_w(m_history.get(), &event, H_SAVE, m_historyFile.c_str());
    }

    Completer const m_completer;
    std::string const m_historyFile;
    File const m_nowhere{std::fopen("/dev/null", "w")}; // where libedit draws
    std::wstring m_prompt;
    LineDisplay m_display;
    std::deque<wchar_t> m_pending;  // keys that were read, and come next
    bool m_bReadsSequences = false; // else each key by itself, as other editors want it
    bool m_bSuspended = false;      // by the key for that
    std::unique_ptr<HistoryW, EndHistory> m_history;
    std::unique_ptr<EditLine, EndEditor> m_editor; // ends before the history that it reads
};

// Lines from a terminal that can't move its cursor, and edits them itself.
class PlainLineEditor final : public LineReader {
public:
    std::optional<std::string> read(std::wstring const & prompt) override {
        std::string const utf8 = Text::toUtf8(prompt);
        std::fwrite(utf8.data(), 1, utf8.size(), stdout);
        std::fflush(stdout);
        return m_lines.read({});
    }

private:
    StreamLineReader m_lines{std::cin};
};

bool terminalMovesCursor() {
    char const * const name = std::getenv("TERM");
    return name && *name && std::string_view(name) != "dumb";
}

} // namespace

std::unique_ptr<LineReader> makeLineEditor(Completer completer) {
    if (!terminalMovesCursor()) return std::make_unique<PlainLineEditor>();
    auto editor = std::make_unique<LineEditor>(std::move(completer));
    if (!editor->isReady()) return nullptr;
    return editor;
}

} // namespace Vn::Console
