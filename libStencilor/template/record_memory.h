#ifndef LIBSTENCILOR_TEMPLATE_RECORD_MEMORY_H
#define LIBSTENCILOR_TEMPLATE_RECORD_MEMORY_H

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <new>

namespace kel::Stencilor::internal {

/// Allocates the records and lists of a tree.
///
/// While an object of this class exists, records and lists created by its thread are allocated from
/// a few chunks, and records are numbered from 0 in order of creation. Others, such as copies, are
/// allocated individually. Each chunk is freed with the last part of it, so they may outlive the
/// object.
/// Threads: only one thread at a time may free parts of a chunk.
/// Copying: not possible, because there is one per thread.
class record_memory {
  public:
    /// Prepares memory for records and lists of `bytes` in total; `sizeOf` is the size of each.
    explicit record_memory(std::size_t bytes) noexcept;
    record_memory(const record_memory&) = delete;
    record_memory& operator=(const record_memory&) = delete;
    ~record_memory();

    /// The size of a record in a chunk.
    template <typename Record>
    static constexpr std::size_t sizeOf() {
        static_assert(alignof(Record) <= alignof(header) && sizeof(Record) % alignof(header) == 0);
        return sizeof(header) + sizeof(Record);
    }

    /// The size of a list in a chunk in addition to its nodes.
    static constexpr std::size_t sizeOfList() { return sizeof(header); }

    /// For the allocation functions of the records.
    static void* allocate(std::size_t size) {
        record_memory* const active = active_;
        if (active == nullptr) {
            return allocateAlone(size);
        }
        header* const before = active->allocateFromChunk(size);
        before->number = active->count_++;
        return before + 1;
    }
    static void release(void* allocated) noexcept;

    /// For the nodes of a list.
    static void* allocateList(std::size_t size) {
        record_memory* const active = active_;
        return active == nullptr ? allocateAlone(size) : active->allocateFromChunk(size) + 1;
    }

    /// The number of a record that came from a chunk.
    static std::uint32_t numberOf(const void* record) noexcept {
        assert(static_cast<const header*>(record)[-1].offset != 0);
        return static_cast<const header*>(record)[-1].number;
    }

  private:
    /// Precedes each record and list.
    struct alignas(std::size_t) header {
        std::uint32_t offset; // from the start of the chunk; 0 if allocated individually
        std::uint32_t number; // of a record
    };
    struct chunk {
        std::size_t holders; // its contents, and the object that is still filling it
    };

    static void* allocateAlone(std::size_t size);

    header* allocateFromChunk(std::size_t size) {
        const std::size_t taken = sizeof(header) + size;
        if (taken > size_ - used_) {
            addChunk(taken);
        }
        char* const at = reinterpret_cast<char*>(chunk_) + used_;
        ++chunk_->holders;
        auto* const before = new (at) header{static_cast<std::uint32_t>(used_), 0};
        used_ += taken;
        return before;
    }

    void addChunk(std::size_t size);
    static void leave(chunk* left) noexcept;

    static constinit thread_local record_memory* active_;

    std::size_t expected_; // bytes that were not yet allocated when the chunk was added
    chunk* chunk_ = nullptr;
    std::size_t used_ = 0; // bytes of the chunk
    std::size_t size_ = 0;
    std::uint32_t count_ = 0; // records made so far
    record_memory* const outer_;
};

} // namespace kel::Stencilor::internal

#endif
