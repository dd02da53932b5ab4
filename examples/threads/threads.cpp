#include <libStencilor/Template.h>

#include <iostream>
#include <string>
#include <thread>
#include <vector>

// Many threads render one template with shared values. The values do not change, so no thread waits
// for another.

using namespace kel::Stencilor;

namespace {

std::string renderFor(const std::string& guest, const Template& invitation, const Value& menu) {
    const Context context(Value{{"guest", guest}, {"menu", menu}}, {.positions = true});
    return invitation.render(context).text.str();
}

} // namespace

int main() {
    const Template invitation("{{ guest }}: {% for course in menu %}{{ course.value }}"
                              "{% if course.last %}.{% else %}, {% endif %}{% endfor %}");
    const Value menu = Value::list({"soup", "pasta", "ice cream"});
    const std::vector<std::string> guests = {"Ada", "Bo", "Cy", "Dee", "Eva", "Fay", "Gus", "Hal"};

    std::vector<std::string> invitations(guests.size());
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < guests.size(); ++i) {
        threads.emplace_back([&, i] { invitations[i] = renderFor(guests[i], invitation, menu); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (const std::string& text : invitations) {
        std::cout << text << '\n';
    }
}
