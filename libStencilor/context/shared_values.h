#ifndef LIBSTENCILOR_CONTEXT_SHARED_VALUES_H
#define LIBSTENCILOR_CONTEXT_SHARED_VALUES_H

#include <libStencilor/Stencilor.h>

namespace kel::Stencilor::internal {

/// A list under a dotted name: its elements belong to the list that it was copied from.
class shared_list final : public ContextIterable {
  public:
    explicit shared_list(const ContextIterable& owner) : ContextIterable(owner) {}
    shared_list(const shared_list&) = delete;
    shared_list& operator=(const shared_list&) = delete;
    // Assigning drops the elements without deleting them.
    ~shared_list() override { ContextIterable::operator=(ContextIterable()); }
};

/// A boolean under a dotted name: its children belong to the boolean that it was copied from.
class shared_boolean final : public ContextBoolean {
  public:
    explicit shared_boolean(const ContextBoolean& owner) : ContextBoolean(owner) {}
    shared_boolean(const shared_boolean&) = delete;
    shared_boolean& operator=(const shared_boolean&) = delete;
    ~shared_boolean() override { ContextBoolean::operator=(ContextBoolean(false)); }
};

} // namespace kel::Stencilor::internal

#endif
