#include <libKel/SharedBlock.h>
#include <libKel/String.h>
#include <libKel/Utf8.h>

#include <algorithm>
#include <bit>
#include <cassert>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <memory>
#include <new>
#include <ostream>
#include <stdexcept>

namespace kel {

using namespace blocks;

namespace {

constexpr std::size_t longest = std::numeric_limits<unsigned int>::max();

/// Reads the bytes of a `Number`, in memory order.
template <typename Number>
std::uint64_t load(const char* bytes) {
    Number number;
    std::memcpy(&number, bytes, sizeof(number));
    return number;
}

/// Reads fewer than eight bytes, in memory order and followed by zeros. Some are read twice.
std::uint64_t fewBytes(const char* bytes, unsigned int count) {
    const auto place = [](std::uint64_t number, unsigned int size, unsigned int at) {
        constexpr bool little = std::endian::native == std::endian::little;
        return number << 8 * (little ? at : 8 - size - at);
    };
    if (count >= 4) {
        return place(load<std::uint32_t>(bytes), 4, 0) |
               place(load<std::uint32_t>(bytes + count - 4), 4, count - 4);
    }
    if (count == 0) {
        return 0;
    }
    return place(load<unsigned char>(bytes), 1, 0) |
           place(load<unsigned char>(bytes + count / 2), 1, count / 2) |
           place(load<unsigned char>(bytes + count - 1), 1, count - 1);
}

constexpr std::uint64_t highBits = 0x8080808080808080u;

} // namespace

/// Holds `size_` bytes and the NUL: shared with a long string, or copied.
void CString::hold(char* bytes) {
    if (hasHolders(size_)) {
        holdBlock(bytes);
        data_ = bytes;
        return;
    }
    if (size_ > inlineCapacity) {
        data_ = newBlock(size_);
    }
    std::memcpy(data_, bytes, std::size_t{size_} + 1);
}

void CString::release() noexcept {
    dropBlock(data_, size_);
}

String::String(const char* bytes, unsigned int length)
    : data_(inline_), size_(length), capacity_(inlineCapacity) {
    if (length > inlineCapacity) {
        data_ = newBlock(length);
        capacity_ = length;
    }
    store(bytes);
}

String::String(const String& other) : String() {
    *this = other;
}

String::String(String&& other) noexcept : String() {
    take(other);
}

String& String::operator=(const String& other) {
    if (this == &other) {
        return *this;
    }
    // A copy does not keep a block alive if it needs less than half of it.
    if (hasHolders(other.size_) && other.size_ >= other.capacity_ / 2) {
        holdBlock(other.data_);
        release();
        data_ = other.data_;
        size_ = other.size_;
        capacity_ = other.capacity_;
        std::memcpy(inline_, data_, sizeof(std::uint64_t));
        assert(isSound());
    } else {
        assign(other.data_, other.size_);
    }
    return *this;
}

String& String::operator=(String&& other) noexcept {
    if (this != &other) {
        release();
        take(other);
    }
    return *this;
}

String& String::append(const String& other) {
    const unsigned int added = other.size_;
    const std::size_t size = std::size_t{size_} + added;
    if (size > capacity_ || isShared()) {
        grow(size);
    }
    // Read after growing, because `other` may be this string. The NUL is not copied with it,
    // because it would be overwritten in that case.
    std::memcpy(data_ + size_, other.data_, added);
    const bool leading = size_ < sizeof(std::uint64_t) && !isInline();
    size_ = static_cast<unsigned int>(size);
    data_[size_] = '\0';
    if (leading) {
        std::memcpy(inline_, data_, sizeof(std::uint64_t));
    }
    assert(isSound());
    return *this;
}

String String::subString(unsigned int start, unsigned int count) const {
    if (start >= size_) {
        return String();
    }
    return String(data_ + start, std::min(count, size_ - start));
}

void String::UTF8Decode(const char* bytes, unsigned int length, bool) {
    if (length <= inlineCapacity && decodeShort(bytes, length)) {
        return;
    }
    const std::string_view encoded(bytes, length);
    const std::size_t valid = validUtf8Prefix(encoded);
    if (valid == length) {
        assign(bytes, length);
    } else {
        *this = String(repairedUtf8(encoded, valid));
    }
}

/// Decodes ASCII text that fits inline, like most text between two tags. Returns false, with
/// nothing changed, for any other text, or if another string shares the block.
bool String::decodeShort(const char* bytes, unsigned int length) noexcept {
    constexpr unsigned int half = sizeof(std::uint64_t);
    const bool few = length < half;
    const std::uint64_t first = few ? fewBytes(bytes, length) : load<std::uint64_t>(bytes);
    const std::uint64_t last = few ? 0 : load<std::uint64_t>(bytes + length - half);
    if (((first | last) & highBits) != 0 || isShared()) {
        return false;
    }
    size_ = length;
    std::memcpy(data_, &first, half);
    std::memcpy(inline_, &first, half);
    if (!few) {
        std::memcpy(data_ + length - half, &last, half);
        data_[length] = '\0';
    }
    assert(isSound());
    return true;
}

bool String::isUtf8(std::string_view bytes) noexcept {
    return validUtf8Prefix(bytes) == bytes.size();
}

String String::adopt(char* block, std::size_t length, std::size_t capacity) {
    static_assert(adoptedOffset == roomForHolders);
    char* const characters = block + adoptedOffset;
    assert(length <= capacity);
    if (!hasHolders(length) || capacity > longest) {
        const std::unique_ptr<char, decltype(&std::free)> owner(block, &std::free);
        return String(characters, checkedSize(length));
    }
    String adopted;
    new (block) Holders(1);
    characters[length] = '\0';
    adopted.data_ = characters;
    adopted.size_ = static_cast<unsigned int>(length);
    adopted.capacity_ = static_cast<unsigned int>(capacity);
    std::memcpy(adopted.inline_, characters, sizeof(std::uint64_t));
    assert(adopted.isSound());
    return adopted;
}

String String::fromUTF16(std::u16string_view text) {
    return String(utf8FromUtf16(text));
}

std::u16string String::toUTF16() const {
    return utf16FromUtf8(view());
}

#ifdef _WIN32
static_assert(sizeof(wchar_t) == sizeof(char16_t));

String String::fromWide(std::wstring_view text) {
    return fromUTF16({reinterpret_cast<const char16_t*>(text.data()), text.size()});
}

std::wstring String::toWide() const {
    const std::u16string text = toUTF16();
    return std::wstring(text.begin(), text.end());
}
#endif

/// Returns `size` if a string can be that long; otherwise throws.
unsigned int String::checkedSize(std::size_t size) {
    if (size > longest) {
        throw std::length_error("kel::String: longer than 4 GiB - 1 byte");
    }
    return static_cast<unsigned int>(size);
}

/// True if another string or conversion shares the block.
bool String::isShared() const noexcept {
    return hasHolders(capacity_) && isHeldInCommon(data_);
}

/// Replaces the content; the bytes may be this string's own.
void String::assign(const char* bytes, unsigned int length) {
    if (length > capacity_ || isShared()) {
        *this = String(bytes, length);
        return;
    }
    size_ = length;
    store(bytes);
}

/// Copies `size_` characters into the available room, and the first ones to `inline_`. Fewer than
/// eight are combined first, because reading back what was written in parts is slow.
void String::store(const char* bytes) noexcept {
    if (size_ < sizeof(std::uint64_t)) {
        const std::uint64_t all = fewBytes(bytes, size_);
        std::memcpy(data_, &all, sizeof(all));
        std::memcpy(inline_, &all, sizeof(all));
    } else {
        std::memmove(data_, bytes, size_);
        data_[size_] = '\0';
        if (!isInline()) {
            std::memcpy(inline_, data_, sizeof(std::uint64_t));
        }
    }
    assert(isSound());
}

/// Moves the content of `other` into this string, which owns no block.
void String::take(String& other) noexcept {
    assert(isInline() && other.isSound());
    std::memcpy(inline_, other.inline_, sizeof(inline_));
    data_ = other.isInline() ? inline_ : other.data_;
    size_ = other.size_;
    capacity_ = other.capacity_;
    other.data_ = other.inline_;
    other.release();
}

/// Makes room for `size` characters in an unshared block, and for twice the current number, so that
/// appending stays linear. A string that is appended to once is likely to grow further, so small
/// blocks would only be moved again.
void String::grow(std::size_t size) {
    constexpr std::size_t least = 255;
    checkedSize(size);
    assert(size > inlineCapacity && "a new block has nothing past its text to mirror");
    const std::size_t capacity = std::min(std::max({size, size_ * std::size_t{2}, least}), longest);
    if (isInline() || isShared() || hasHolders(capacity) != hasHolders(capacity_)) {
        char* const block = newBlock(capacity);
        std::memcpy(block, data_, std::size_t{size_} + 1);
        if (!isInline()) {
            dropBlock(data_, capacity_);
        }
        data_ = block;
    } else {
        data_ = resizeBlock(data_, capacity);
    }
    capacity_ = static_cast<unsigned int>(capacity);
}

/// Frees the block, if any, and makes the string empty.
void String::release() noexcept {
    if (!isInline()) {
        dropBlock(data_, capacity_);
    }
    data_ = inline_;
    size_ = 0;
    capacity_ = inlineCapacity;
    std::memset(inline_, 0, sizeof(std::uint64_t));
}

#ifndef NDEBUG
/// True if the members satisfy the comment in the class.
bool String::isSound() const noexcept {
    char leading[sizeof(std::uint64_t)] = {};
    std::memcpy(leading, data_, std::min(std::size_t{size_}, sizeof(leading)));
    return size_ <= capacity_ && data_[size_] == '\0' &&
           isInline() == (capacity_ == inlineCapacity) &&
           std::memcmp(data_, leading, sizeof(leading)) == 0 &&
           std::memcmp(inline_, leading, sizeof(leading)) == 0 &&
           (!hasHolders(capacity_) || holdersOf(data_).load(std::memory_order_relaxed) > 0);
}
#endif

std::ostream& operator<<(std::ostream& stream, const String& string) {
    return stream << string.view();
}

} // namespace kel
