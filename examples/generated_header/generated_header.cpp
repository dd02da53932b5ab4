#include <status.h>

#include <iostream>

// A program with an enumeration and strings in a header that the build generates.

int main() {
    for (const Status status : {Status::Ok, Status::NotFound, Status::Teapot}) {
        std::cout << static_cast<int>(status) << ": " << describe(status) << '\n';
    }
}
