// What Docs/document-format.md says: its queries, with the rows that it shows, and its statements.

#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

#include "Platform/DataModel/DocumentFile.h"
#include "Tests/DataModel/DocumentSql.h"
#include "Tests/DataModel/DocumentTestEntities.h"

namespace Vn::Testing {

namespace {

// The classes of the document's examples.
class Thing : public Entity {
public:
    static constexpr char c_className[] = "Thing";
    static std::string s_metaTypeId() { return "Test-Format-Thing"; }
    static EntityMetaType * s_metaType();
    Thing(Segment * segment, unsigned long long id) : Entity(segment, id) {
        initializeMemberSetIfNeeded<Thing>(this);
    }
    void initializeMembers(unsigned, MemberSet *) {}
    void createHelper() {}

protected:
    explicit Thing(Segment * segment) : Entity(segment) {
        initializeMemberSetIfNeeded<Thing>(this);
    }
    EntityMetaType * onMetaType() const override { return s_metaType(); }
};

class Book : public Thing {
public:
    static constexpr char c_className[] = "Book";
    static std::string s_metaTypeId() { return "Test-Format-Book"; }
    static EntityMetaType * s_metaType();
    explicit Book(Segment * segment) : Thing(segment) { initializeMemberSetIfNeeded<Book>(this); }
    Book(Segment * segment, unsigned long long id) : Thing(segment, id) {
        initializeMemberSetIfNeeded<Book>(this);
    }
    void initializeMembers(unsigned, MemberSet * set) {
        Members members(set);
        members.add("title", m_title);
        members.add("pages", m_pages);
        members.add("shelf", m_rShelf);
    }

    std::wstring m_title;
    unsigned m_pages = 0;
    PassiveRef<Thing> m_rShelf;

protected:
    EntityMetaType * onMetaType() const override { return s_metaType(); }
};

class Shelf : public Thing {
public:
    static constexpr char c_className[] = "Shelf";
    static std::string s_metaTypeId() { return "Test-Format-Shelf"; }
    static EntityMetaType * s_metaType();
    explicit Shelf(Segment * segment) : Thing(segment) { initializeMemberSetIfNeeded<Shelf>(this); }
    Shelf(Segment * segment, unsigned long long id) : Thing(segment, id) {
        initializeMemberSetIfNeeded<Shelf>(this);
    }
    void initializeMembers(unsigned, MemberSet * set) {
        Members members(set);
        members.add("name", m_name);
        members.add("books", m_books);
    }

    std::wstring m_name;
    std::vector<StrongRef<Book>> m_books;

protected:
    EntityMetaType * onMetaType() const override { return s_metaType(); }
};

DocumentMetaType<Thing> s_thingType(0, Entity::s_metaTypeId(), EntityMetaType::TypeAbstract);
DocumentMetaType<Book> s_bookType(0, Thing::s_metaTypeId());
DocumentMetaType<Shelf> s_shelfType(0, Thing::s_metaTypeId());

EntityMetaType * Thing::s_metaType() { return &s_thingType; }
EntityMetaType * Book::s_metaType() { return &s_bookType; }
EntityMetaType * Shelf::s_metaType() { return &s_shelfType; }

void saveLibrary(std::filesystem::path const & file) {
    StrongRef<Asset> const asset = Asset::make(nullptr);
    StrongRef<Shelf> const shelf(new Shelf(design(*asset)));
    design(*asset)->addRoot(shelf, "library");
    shelf->m_name = L"By the window";
    std::pair<wchar_t const *, unsigned> const books[] = {{L"Common Knots", 96},
                                                          {L"A Field Guide", 320},
                                                          {L"\u00DCber den Wolken", 208},
                                                          {L"Weights & Measures", 240}};
    for (auto const & [title, pages] : books) {
        StrongRef<Book> const book(new Book(design(*asset)));
        book->m_title = title;
        book->m_pages = pages;
        if (shelf->m_books.size()) book->m_rShelf = PassiveRef<Thing>(shelf.get());
        shelf->m_books.push_back(book);
    }
    std::swap(shelf->m_books[0], shelf->m_books[1]);
    std::swap(shelf->m_books[2], shelf->m_books[3]);
    Status const status = DocumentFile::saveAs(*asset, file);
    ASSERT_TRUE(status) << status.toString();
}

// The fenced blocks of the document: their languages and their lines.
std::vector<std::pair<std::string, std::string>> blocks() {
    std::ifstream in(VN_DOCUMENT_FORMAT);
    EXPECT_TRUE(in);
    std::vector<std::pair<std::string, std::string>> found;
    std::string line;
    bool isInside = false;
    while (std::getline(in, line)) {
        if (line.starts_with("```")) {
            isInside = !isInside;
            if (isInside) found.emplace_back(line.substr(3), "");
        } else if (isInside)
            found.back().second += line + '\n';
    }
    return found;
}

std::string withoutBlanks(std::string const & text) {
    std::string kept;
    for (char const c : text)
        if (c != ' ' && c != '\n') kept += c;
    return kept;
}

} // namespace

TEST(DocumentFormatTests, TheQueriesGiveTheRowsThatAreShown) {
    TemporaryFile const file;
    saveLibrary(file.path());
    auto const all = blocks();
    int queries = 0;
    for (std::size_t i = 0; i + 1 < all.size(); ++i) {
        if (all[i].first != "sql") continue;
        SCOPED_TRACE(all[i].second);
        ASSERT_EQ(all[i + 1].first, "text");
        std::string shown;
        for (auto const & row : query(file.path(), all[i].second)) {
            for (std::size_t column = 0; column < row.size(); ++column)
                shown +=
                    (column ? "|" : "") + (row[column] == "NULL" ? std::string() : row[column]);
            shown += '\n';
        }
        EXPECT_EQ(shown, all[i + 1].second);
        ++queries;
    }
    EXPECT_EQ(queries, 3);
}

TEST(DocumentFormatTests, TheTablesAreMadeByTheStatementsThatAreShown) {
    TemporaryFile const file;
    saveLibrary(file.path());
    std::string shown;
    int tables = 0;
    for (auto const & [language, text] : blocks())
        if (text.starts_with("CREATE TABLE")) shown += withoutBlanks(text) + '\n';
    for (auto const & row :
         query(file.path(), "SELECT sql FROM sqlite_schema WHERE type='table'")) {
        if (row[0].find("\"Shelf\"") != std::string::npos) continue; // that of Book is shown
        EXPECT_NE(shown.find(withoutBlanks(row[0]) + '\n'), std::string::npos) << row[0];
        ++tables;
    }
    EXPECT_EQ(tables, 7);
    EXPECT_EQ(query(file.path(), "PRAGMA application_id")[0][0], std::to_string(0x566E4431));
    EXPECT_EQ(query(file.path(), "PRAGMA user_version")[0][0], "1");
}

TEST(DocumentFormatTests, EveryListIsJsonForOtherProgramsToo) {
    TemporaryFile const file;
    StrongRef<Asset> const asset = randomDocument(3, 60);
    ASSERT_TRUE(DocumentFile::saveAs(*asset, file.path()));
    auto const counts = query(file.path(), "SELECT count(*), sum(json_valid(items)) FROM lists");
    EXPECT_EQ(counts[0][0], counts[0][1]);
    EXPECT_GT(std::stoi(counts[0][0]), 50);
}

} // namespace Vn::Testing
