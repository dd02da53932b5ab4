#ifndef TESTS_SUPPORT_DELETIONS_H
#define TESTS_SUPPORT_DELETIONS_H

#include <string>
#include <utility>
#include <vector>

namespace support {

using Deletions = std::vector<std::string>;

/// A context value of the kind `Value` that writes its name to a list when it is deleted.
template <typename Value>
class Logged : public Value {
  public:
    template <typename... Arguments>
    Logged(Deletions& deletions, std::string name, Arguments&&... arguments)
        : Value(std::forward<Arguments>(arguments)...), deletions_(deletions),
          name_(std::move(name)) {}
    Logged(const Logged&) = delete;
    Logged& operator=(const Logged&) = delete;
    ~Logged() override { deletions_.push_back(name_); }

  private:
    Deletions& deletions_;
    std::string name_;
};

} // namespace support

#endif
