// Line editing by libedit.  Nothing else in the console knows of it.

#include <clocale>
#include <cstdio>

#include <histedit.h>

#include "Console/Messages.h"
#include "Console/Terminal/Keys.h"
#include "Console/Terminal/LineReader.h"
#include "Console/Terminal/Terminal.h"
#include "Console/Texts.h"
#include "Platform/Base/Text.h"

namespace Vn::Console {

namespace {

constexpr int c_historyLines = 1000;
constexpr std::size_t c_candidatesShown = 60;
constexpr std::size_t c_columns = 78;

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
    {L"\\e[3~", L"ed-delete-next-char"},
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
};

struct EndEditor {
    void operator()(EditLine * editor) const { ::el_end(editor); }
};
struct EndHistory {
    void operator()(HistoryW * history) const { ::history_wend(history); }
};

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
        if (!m_editor || !m_history) return;
        HistEventW event;
        ::history_w(m_history.get(), &event, H_SETSIZE, c_historyLines);
        ::history_w(m_history.get(), &event, H_SETUNIQUE, 1);
        if (!m_historyFile.empty())
            ::history_w(m_history.get(), &event, H_LOAD, m_historyFile.c_str());
        EditLine * const editor = m_editor.get();
        ::el_wset(editor, EL_CLIENTDATA, this);
        ::el_wset(editor, EL_PROMPT, &promptOf);
        ::el_wset(editor, EL_EDITOR, L"emacs");
        ::el_wset(editor, EL_HIST, &::history_w, m_history.get());
        ::el_wset(editor, EL_ADDFN, L"vn-complete", L"Completes the word", &onComplete);
        ::el_wset(editor, EL_ADDFN, L"vn-abandon", L"Abandons the line", &onAbandon);
        ::el_wset(editor, EL_GETCFN, &onReadKey);
        bindKeys();
        ::el_source(editor, nullptr); // what the user likes, such as another editor
        ::el_wset(editor, EL_BIND, L"^I", L"vn-complete", nullptr);
        // While a line is edited, Ctrl-C abandons it; while one is run, it ends that.
        ::el_wset(editor, EL_SETTY, L"-d", L"-isig", nullptr);
        ::el_wset(editor, EL_BIND, L"^C", L"vn-abandon", nullptr);
        ::el_wset(editor, EL_SIGNAL, 1);
    }

    bool isReady() const { return m_editor && m_history; }

    std::optional<std::string> read(std::wstring const & prompt) override {
        m_prompt = prompt;
        ::el_resize(m_editor.get()); // while the last line was run, nobody watched
        int count = 0;
        wchar_t const * const typed = ::el_wgets(m_editor.get(), &count);
        if (!typed || count <= 0) return std::nullopt;
        std::wstring line(typed, static_cast<std::size_t>(count));
        while (!line.empty() && (line.back() == L'\n' || line.back() == L'\r')) line.pop_back();
        remember(line);
        return Text::toUtf8(line);
    }

private:
    static LineEditor & of(EditLine * editor) {
        void * self = nullptr;
        ::el_wget(editor, EL_CLIENTDATA, &self);
        return *static_cast<LineEditor *>(self);
    }

    static wchar_t * promptOf(EditLine * editor) { return of(editor).m_prompt.data(); }

    static int onReadKey(EditLine * editor, wchar_t * key) {
        LineEditor & self = of(editor);
        return readKey({[&self] { self.redraw(); }, [&self] { self.goOn(); }}, *key);
    }

    void bind(std::wstring const & sequence, wchar_t const * command) {
        ::el_wset(m_editor.get(), EL_BIND, sequence.c_str(), command, nullptr);
    }

    void bindKeys() {
        // Other keys of those kinds, with or without Shift, Alt and Ctrl, would type their letters.
        constexpr wchar_t const * c_nothing = L"ed-ignore";
        for (wchar_t const letter : std::wstring_view(L"ABCDEFHPQRSZ"))
            for (int modifiers = 2; modifiers <= 8; ++modifiers)
                bind(L"\\e[1;" + std::to_wstring(modifiers) + letter, c_nothing);
        for (int key = 1; key <= 34; ++key) {
            std::wstring const sequence = L"\\e[" + std::to_wstring(key);
            bind(sequence + L'~', c_nothing);
            for (int modifiers = 2; modifiers <= 8; ++modifiers)
                bind(sequence + L';' + std::to_wstring(modifiers) + L'~', c_nothing);
        }
        for (wchar_t const letter : std::wstring_view(L"PQRS"))
            bind(std::wstring(L"\\eO") + letter, c_nothing);
        bind(L"\\e[Z", c_nothing);
        for (Key const & key : c_keys) bind(key.sequence, key.command);
    }

    // Draws the line anew in a window of another size.
    void redraw() {
        // The terminal has folded the line anew itself, or left it alone if it fits.
        LineInfoW const * const line = ::el_wline(m_editor.get());
        std::wstring_view const front(line->buffer,
                                      static_cast<std::size_t>(line->cursor - line->buffer));
        auto const columns =
            static_cast<std::size_t>(Text::displayWidth(m_prompt) + Text::displayWidth(front));
        std::size_t const rows = columns / terminalColumns();
        std::string text = "\r";
        if (rows > 0) text += "\x1B[" + std::to_string(rows) + 'A';
        text += "\x1B[J";
        std::fwrite(text.data(), 1, text.size(), stdout);
        std::fflush(stdout);
        ::el_resize(m_editor.get());
        ::el_wset(m_editor.get(), EL_REFRESH);
    }

    // The shell had the terminal meanwhile.
    void goOn() {
        ::el_wset(m_editor.get(), EL_PREP_TERM, 1);
        redraw();
    }

    static unsigned char onAbandon(EditLine * editor, int) {
        LineInfoW const * const line = ::el_wline(editor);
        ::el_cursor(editor, static_cast<int>(line->lastchar - line->cursor));
        ::el_deletestr(editor, static_cast<int>(line->lastchar - line->buffer));
        return CC_REFRESH;
    }

    static unsigned char onComplete(EditLine * editor, int) { return of(editor).complete(); }

    unsigned char complete() {
        LineInfoW const * const line = ::el_wline(m_editor.get());
        std::wstring_view const front(line->buffer,
                                      static_cast<std::size_t>(line->cursor - line->buffer));
        Completion const completion = m_completer(front);
        if (completion.candidates.empty()) return CC_REFRESH_BEEP;
        std::wstring const begun(front.substr(front.size() - completion.begun));
        std::wstring text = commonBeginning(completion);
        bool const isOnly = completion.candidates.size() == 1;
        if (isOnly) text += completion.candidates.front().after;
        // A list helps where there is nothing to add.
        if (text.size() <= begun.size() && !isOnly) {
            list(completion);
            return CC_REDISPLAY;
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

    static void list(Completion const & completion) {
        std::wstring text = L"\n";
        std::size_t column = 0;
        std::size_t shown = 0;
        for (Completion::Candidate const & candidate : completion.candidates) {
            if (shown == c_candidatesShown) break;
            if (column > 0 && column + candidate.text.size() > c_columns) {
                text += L'\n';
                column = 0;
            }
            text += candidate.text + L"  ";
            column += candidate.text.size() + 2;
            ++shown;
        }
        if (shown < completion.candidates.size())
            text += message(L"and %1% more", completion.candidates.size() - shown);
        std::string const utf8 = Text::toUtf8(text + L'\n');
        std::fwrite(utf8.data(), 1, utf8.size(), stdout);
        std::fflush(stdout);
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
    std::wstring m_prompt;
    std::unique_ptr<HistoryW, EndHistory> m_history;
    std::unique_ptr<EditLine, EndEditor> m_editor; // ends before the history that it reads
};

} // namespace

std::unique_ptr<LineReader> makeLineEditor(Completer completer) {
    auto editor = std::make_unique<LineEditor>(std::move(completer));
    if (!editor->isReady()) return nullptr;
    return editor;
}

} // namespace Vn::Console
