#ifndef BENCH_MODEL_H
#define BENCH_MODEL_H

#include <map>
#include <string>
#include <variant>
#include <vector>

namespace bench {

/// The data of a workload, independent of any engine. Each engine makes its context from it before
/// anything is timed.
struct value;
using list = std::vector<value>;
using object = std::map<std::string, value>;

/// The path of an included template. The peers take it from the data, this engine from the tag.
struct partial {
    std::string path;
};

struct value {
    std::variant<std::string, bool, list, object, partial> held;
};

} // namespace bench

#endif
