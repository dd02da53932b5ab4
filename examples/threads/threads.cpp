#include <libStencilor/Stencilor.h>

#include <iostream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

// Many threads render with values that they share. Nobody changes those any more, so no thread has
// to wait for another one; what differs from thread to thread is in a context of the thread's own.

using namespace kel::Stencilor;

namespace {

constexpr const char* invitation =
    "{{ guest }}: {% for course in menu %}{{ course.name }}{% if course.last %}.{% else %}, "
    "{% endif %}{% endfor %}";

std::unique_ptr<ContextIterable> buildMenu(const std::vector<std::string>& courses) {
    std::unique_ptr<ContextIterable> menu(ContextFactory::buildIterable());
    for (const std::string& course : courses) {
        ContextDictionary* const entry = ContextFactory::buildDictionary();
        menu->add(entry);
        entry->insert("name", ContextFactory::buildString(course));
        entry->insert("last", ContextFactory::buildBoolean(&course == &courses.back()));
    }
    return menu;
}

/// Lends a list to a context, which deletes what stands in it: the elements stay the lender's.
class BorrowedList : public ContextIterable {
  public:
    explicit BorrowedList(const ContextIterable& lender) : ContextIterable(lender) {}
    ~BorrowedList() override { ContextIterable::operator=(ContextIterable()); }
};

std::string renderFor(const std::string& guest, const ContextIterable& menu) {
    ContextDictionary context;
    context.insert("guest", ContextFactory::buildString(guest));
    context.insert("menu", new BorrowedList(menu));
    return buildOutput(invitation, context).str();
}

} // namespace

int main() {
    const std::unique_ptr<ContextIterable> menu = buildMenu({"soup", "pasta", "ice cream"});
    const std::vector<std::string> guests = {"Ada", "Bo", "Cy", "Dee", "Eva", "Fay", "Gus", "Hal"};

    std::vector<std::string> invitations(guests.size());
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < guests.size(); ++i) {
        threads.emplace_back([&, i] { invitations[i] = renderFor(guests[i], *menu); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (const std::string& text : invitations) {
        std::cout << text << '\n';
    }
}
