#include "../support/Context.h"

// A module that a host loads at run time, together with the libraries.

extern "C" __declspec(dllexport) bool rendersAsExpected() {
    const support::Root root({
        {"guests", support::list({support::dictionary({{"name", support::text("Ada")}}), nullptr,
                                  support::dictionary({{"name", support::text("Zo\u00EB")}})})},
    });
    return support::render("{% for guest in guests %}[{{ guest.name }}]{% endfor %}", root) ==
           support::Rendered{"[Ada][][Zo\u00EB]",
                             "Could not find expected replacement named \"guest.name\"\n"};
}
