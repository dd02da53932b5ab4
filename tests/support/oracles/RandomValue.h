#ifndef TESTS_SUPPORT_ORACLES_RANDOMVALUE_H
#define TESTS_SUPPORT_ORACLES_RANDOMVALUE_H

#include "RandomTemplate.h"

#include <cstddef>
#include <string>
#include <utility>

namespace support {

/// Makes random dictionaries for random templates, of whatever `Maker` makes values of. It has the
/// type `Made` and these functions:
///
///     Made dictionary();                               // an empty one
///     Made list();
///     Made boolean(bool isTrue);
///     Made scalar(Random& random, const std::string& text); // the text, or anything else
///     void set(Made& dictionary, const std::string& key, Made member);
///     void add(Made& list, Made item);
template <typename Maker>
class RandomValue {
  public:
    using Made = typename Maker::Made;

    explicit RandomValue(Random& random) : random_(random) {}

    Made dictionary(int depth) {
        Made made = maker_.dictionary();
        for (std::size_t left = 4 + random_.below(12); left > 0; --left) {
            const Meaning meaning = randomMeaning(random_);
            const std::string key = randomKey(random_, meaning);
            maker_.set(made, key,
                       ofMeaning(random_.oneIn(12) ? randomMeaning(random_) : meaning, depth));
        }
        return made;
    }

  private:
    Made ofMeaning(Meaning meaning, int depth) {
        if (depth > 0 && random_.oneIn(6)) {
            return dictionary(depth - 1);
        }
        switch (meaning) {
        case Meaning::text:
            return maker_.scalar(random_, "<" + std::to_string(++texts_) + randomText(random_));
        case Meaning::condition:
            return maker_.boolean(random_.oneIn(2));
        case Meaning::list:
            break;
        }
        return list(depth);
    }

    Made list(int depth) {
        Made made = maker_.list();
        for (std::size_t left = depth > 0 ? random_.below(4) : 0; left > 0; --left) {
            maker_.add(made, random_.oneIn(3) ? ofMeaning(randomMeaning(random_), depth - 1)
                                              : dictionary(depth - 1));
        }
        return made;
    }

    Random& random_;
    Maker maker_{};
    int texts_ = 0;
};

} // namespace support

#endif
