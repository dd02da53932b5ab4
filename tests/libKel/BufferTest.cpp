#include "../support/Test.h"

#include <libKel/Buffer.h>

namespace kel {
namespace {

using Bytes = Buffer<unsigned char>;

// One module fills a buffer and another one frees it, so both must agree on the layout.
static_assert(std::is_standard_layout_v<Bytes>);
static_assert(offsetof(Bytes, data) == 0);
static_assert(offsetof(Bytes, size) == sizeof(void*));
static_assert(offsetof(Bytes, capacity) == sizeof(void*) + 8);
static_assert(sizeof(Bytes) == sizeof(void*) + 16);
static_assert(sizeof(Bytes::size) == 8 && sizeof(Bytes::capacity) == 8);
static_assert(std::is_unsigned_v<decltype(Bytes::size)>);
static_assert(std::is_unsigned_v<decltype(Bytes::capacity)>);
static_assert(!std::is_copy_constructible_v<Bytes> && !std::is_copy_assignable_v<Bytes>);

void expectAllZero(const Bytes& buffer) {
    EXPECT_EQ(buffer.data, nullptr);
    EXPECT_EQ(buffer.size, 0u);
    EXPECT_EQ(buffer.capacity, 0u);
}

unsigned char* newBytes(std::size_t count) {
    return static_cast<unsigned char*>(::operator new(count));
}

TEST(Buffer, IsInitiallyZero) {
    const Bytes buffer;
    expectAllZero(buffer);
}

// The address sanitizer detects a block that is not freed, or freed twice.
TEST(Buffer, FreesItsBlockAndBecomesZero) {
    Bytes buffer;
    buffer.data = newBytes(10);
    buffer.size = 3;
    buffer.capacity = 10;
    buffer.release();
    expectAllZero(buffer);
    buffer.release();
    expectAllZero(buffer);
}

TEST(Buffer, FreesNothingWithoutCapacity) {
    unsigned char borrowed[4] = {1, 2, 3, 4};
    {
        Bytes buffer;
        buffer.data = borrowed;
        buffer.size = 4;
    }
    EXPECT_EQ(borrowed[3], 4);
}

TEST(Buffer, FreesNothingThroughANullPointer) {
    Bytes buffer;
    buffer.size = 4;
    buffer.capacity = 4;
    buffer.release();
    expectAllZero(buffer);
}

} // namespace
} // namespace kel
