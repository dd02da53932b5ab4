#include <status.h>

#include <iostream>

// A program that is compiled with a header of which the build makes its enumeration and its texts.

int main() {
    for (const Status status : {Status::Ok, Status::NotFound, Status::Teapot}) {
        std::cout << static_cast<int>(status) << ": " << describe(status) << '\n';
    }
}
