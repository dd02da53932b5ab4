#include <libStencilor/Stencilor.h>

#include <deque>
#include <iostream>

// A host that shows its own data to templates. The records store strings as values of the
// engine, which contexts borrow: each string is in memory once, however many contexts there are,
// and creating a context copies no string.

using namespace kel::Stencilor;

namespace {

/// A dictionary or list that does not delete its contents, which belong to the host.
template <typename Value>
class Borrowing : public Value {
  public:
    Borrowing() = default;
    Borrowing(const Borrowing&) = delete;
    Borrowing& operator=(const Borrowing&) = delete;
    // Assignment drops the contents of a value without deleting them.
    ~Borrowing() override { Value::operator=(Value()); }
};

class Book {
  public:
    Book(const kel::String& title, const kel::String& author) : title_(title), author_(author) {
        value_.insert("title", &title_);
        value_.insert("author", &author_);
        value_.insert("lent", &lent_);
    }
    // Contexts store the address.
    Book(const Book&) = delete;
    Book& operator=(const Book&) = delete;

    void lend() { lent_ = ContextBoolean(true); }

    /// The values for templates, valid as long as the book.
    ContextBase* value() { return &value_; }

  private:
    ContextString title_;
    ContextString author_;
    ContextBoolean lent_{false};
    Borrowing<ContextDictionary> value_; // last, so that it is destroyed before the others
};

void print(const char* text, const ContextBase& context) {
    std::cout << buildOutput(text, context);
}

} // namespace

int main() {
    std::deque<Book> shelf; // never moves its elements
    shelf.emplace_back("Die Verwandlung", "Franz Kafka");
    shelf.emplace_back("Wuthering Heights", "Emily Bront\u00EB");
    shelf.emplace_back("Sonnenfinsternis", "Arthur Koestler");

    Borrowing<ContextIterable> books;
    for (Book& book : shelf) {
        books.add(book.value());
    }
    Borrowing<ContextIterable> favourites;
    favourites.add(shelf[1].value()); // the same book in a second list
    Borrowing<ContextDictionary> context;
    context.insert("books", &books);
    context.insert("favourites", &favourites);

    constexpr const char* list = "{% for book in books %}{{ book.author }}: {{ book.title }}"
                                 "{% if book.lent %} (lent){% endif %}\n{% endfor %}";
    print(list, context);
    print("{% for book in favourites %}Read {{ book.title }}!\n{% endfor %}", context);

    shelf[1].lend(); // contexts see the change at once
    std::cout << "--\n";
    print(list, context);
}
