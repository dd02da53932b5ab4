#ifndef LIBKEL_STRING_H
#define LIBKEL_STRING_H

#include <libKel/Export.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>

/// @file
/// The string type of all interfaces.

/// The base library: strings, buffers, files and logging.
namespace kel {

class String;

/// The bytes of a `String`, as returned by its conversions.
///
/// Ownership: owns the bytes, which stay valid until the object is destroyed, whatever happens to
///   the string.
/// Copying: can be neither copied nor moved.
/// Threads: may be read by any number of threads.
class CString {
  public:
    CString(const CString&) = delete;
    CString& operator=(const CString&) = delete;
    /// Frees the bytes.
    ~CString() {
        if (data_ != inline_) {
            release();
        }
    }

    /// Returns the bytes, followed by a NUL. They may contain NUL bytes.
    const char* c_str() const noexcept { return data_; }

    /// The number of bytes, without the final NUL.
    unsigned int size() const noexcept { return size_; }

  private:
    friend class String;
    explicit CString(const String& string);
    KEL_EXPORT void hold(char* bytes);
    KEL_EXPORT void release() noexcept;

    // Long enough for most values, so that reading them does not allocate.
    static constexpr unsigned int inlineCapacity = 111;

    // Representation: `data_` is `inline_`, or a block of SharedBlock.h that is treated as one for
    // `size_` characters. A string's block may have a larger capacity, but a conversion only holds
    // it if `size_` alone requires a count of holders, so both agree.
    char* data_;
    unsigned int size_;
    char inline_[inlineCapacity + 1];
};

/// A character string: an ordered value type, copied and moved like `std::string`.
///
/// Characters: a character is a byte, and text is UTF-8. The constructors take bytes as they are;
///   only `UTF8Decode` repairs them. NUL bytes are ordinary characters.
/// Order: by unsigned byte, then by length. For UTF-8 this is the order of the code points.
/// Hash: `std::hash` is specialized, for `std::unordered_map` and the like.
/// Copying: a copy is independent. Copies share long strings until one of them changes.
/// Units: lengths and positions count bytes, in 32 bits. Any operation that would produce more than
///   4 GiB - 1 byte throws `std::length_error`.
/// Errors: `std::bad_alloc` and `std::length_error`, which leave the string unchanged.
/// Threads: may be read by any number of threads while none changes it.
class String {
  public:
    /// An empty string.
    constexpr String() noexcept : inline_(), data_(inline_), size_(0), capacity_(inlineCapacity) {}

    /// Copies the bytes up to the first NUL; a null pointer is an empty string.
    String(const char* bytes) : String() {
        if (bytes != nullptr && *bytes != '\0') {
            assign(bytes, checkedSize(std::strlen(bytes)));
        }
    }

    /// Copies `length` bytes, NUL bytes included. `bytes` may be null if the length is 0.
    KEL_EXPORT String(const char* bytes, unsigned int length);

    /// Copies all bytes, NUL bytes included.
    /// @{
    String(std::string_view bytes) : String() {
        if (bytes.size() > inlineCapacity) {
            assign(bytes.data(), checkedSize(bytes.size()));
        } else if (!bytes.empty()) {
            std::memcpy(inline_, bytes.data(), bytes.size());
            size_ = static_cast<unsigned int>(bytes.size());
        }
    }
    String(const std::string& bytes) : String(std::string_view(bytes)) {}
    /// @}

    /// A moved-from string is empty.
    /// @{
    KEL_EXPORT String(const String& other);
    KEL_EXPORT String(String&& other) noexcept;
    KEL_EXPORT String& operator=(const String& other);
    KEL_EXPORT String& operator=(String&& other) noexcept;
    ~String() {
        if (!isInline()) {
            release();
        }
    }
    /// @}

    /// Appends a string, which may be this one.
    String& operator+=(const String& other) { return other.empty() ? *this : append(other); }

    /// Compares with the bytes up to the first NUL. The pointer must not be null.
    bool operator==(const char* bytes) const noexcept { return view() == bytes; }

    /// Compares byte by byte.
    bool operator==(const String& other) const noexcept;

    /// Compares in the order described above.
    bool operator<(const String& other) const noexcept;

    /// The number of characters.
    unsigned int size() const noexcept { return size_; }

    /// True if there are no characters.
    bool empty() const noexcept { return size_ == 0; }

    /// Returns the characters without copying them, valid until this string is changed or
    /// destroyed. A NUL follows them.
    std::string_view view() const noexcept { return {data_, size_}; }

    /// This many bytes can be read from the beginning of `view`, even if the string is shorter.
    /// Those past the end have no meaning.
    static constexpr unsigned int readableBytes = 16;

    /// Returns a copy of the characters, NUL bytes included.
    std::string str() const { return std::string(view()); }

    /// Copies a substring.
    /// @param start the position of its first character; at or past the end, the result is empty
    /// @param count the maximum number of characters; 0xFFFFFFFF means up to the end
    KEL_EXPORT String subString(unsigned int start, unsigned int count) const;

    /// Reduces each character to its low byte, which in this library is the character itself.
    CString getLowerByteString() const { return CString(*this); }

    /// Encodes as UTF-8, which in this library copies the characters. Malformed bytes are kept.
    CString getUTF8String() const { return CString(*this); }

    /// Replaces the content with decoded UTF-8. Each maximal malformed part becomes one U+FFFD (The
    /// Unicode Standard 15.0, section 3.9, table 3-8), so the result is always valid UTF-8, and up
    /// to three times as long.
    /// @param bytes the bytes to decode; they may be this string's own
    /// @param length the number of bytes
    /// @param flag reserved; has no effect
    KEL_EXPORT void UTF8Decode(const char* bytes, unsigned int length, bool flag);

    /// True if the bytes are valid UTF-8, which `UTF8Decode` leaves unchanged.
    KEL_EXPORT static bool isUtf8(std::string_view bytes) noexcept;

    /// The offset of the characters in a block for `adopt`.
    static constexpr std::size_t adoptedOffset = 16;

    /// Makes a string from a block of memory, without copying a long one.
    /// @param block allocated with `malloc`, with the characters at `adoptedOffset`. It belongs to
    ///   the string afterwards, even if the call fails.
    /// @param length the number of characters
    /// @param capacity the number that fits: one less than the room after `adoptedOffset`
    KEL_EXPORT static String adopt(char* block, std::size_t length, std::size_t capacity);

    /// Converts from UTF-16 in the machine's byte order. Malformed units become U+FFFD.
    KEL_EXPORT static String fromUTF16(std::u16string_view text);

    /// Converts to UTF-16 in the machine's byte order. Each maximal malformed part becomes U+FFFD.
    KEL_EXPORT std::u16string toUTF16() const;

#ifdef _WIN32
    /// `fromUTF16` for the character type of the Windows API. Windows only.
    KEL_EXPORT static String fromWide(std::wstring_view text);

    /// `toUTF16` for the character type of the Windows API. Windows only.
    KEL_EXPORT std::wstring toWide() const;
#endif

  private:
    friend class CString;
    static constexpr unsigned int inlineCapacity = 15;

    bool isInline() const noexcept {
        return data_ == inline_;
    }
    bool isSound() const noexcept;
    std::uint64_t leadingBytes() const noexcept;
    bool isLessBehindLeading(const String& other) const noexcept;
    bool isShared() const noexcept;
    KEL_EXPORT String& append(const String& other);
    bool decodeShort(const char* bytes, unsigned int length) noexcept;
    KEL_EXPORT static unsigned int checkedSize(std::size_t size);
    KEL_EXPORT void assign(const char* bytes, unsigned int length);
    void take(String& other) noexcept;
    void grow(std::size_t size);
    void store(const char* bytes) noexcept;
    KEL_EXPORT void release() noexcept;

    // Representation. The characters and a NUL are at `data_`: in `inline_` if `capacity_` is
    // `inlineCapacity`, otherwise in a block of SharedBlock.h for `capacity_` characters. This does
    // not depend on the size: a block is kept when its text becomes shorter.
    //
    // The first eight bytes of `inline_` equal those of the text even if it is in a block. In both
    // places, those past the end of the text are zero. Comparing them as one number decides most
    // comparisons. They are the first member, so that in a map node they are next to the links.
    //
    // A block is shared if its capacity is at least 4,096 and another string or conversion holds
    // it; it is then only read. A copy shares it only if the size is also at least 4,096, and at
    // least half of the capacity.
    char inline_[inlineCapacity + 1];
    static_assert(sizeof(inline_) >= readableBytes); // a block is larger
    char* data_;
    unsigned int size_;
    unsigned int capacity_; // without the NUL
};

// All inline bytes are copied, whatever the length, which takes two or three instructions.
inline CString::CString(const String& string) : data_(inline_), size_(string.size_) {
    static_assert(inlineCapacity >= String::inlineCapacity);
    if (string.isInline()) {
        std::memcpy(inline_, string.inline_, sizeof(string.inline_));
    } else {
        hold(string.data_);
    }
}

inline std::uint64_t String::leadingBytes() const noexcept {
    std::uint64_t bytes;
    std::memcpy(&bytes, inline_, sizeof(bytes));
    if constexpr (std::endian::native == std::endian::big) {
        return bytes;
    }
#if defined(__GNUC__)
    return __builtin_bswap64(bytes);
#else
    return _byteswap_uint64(bytes); // from Microsoft's <stdlib.h>
#endif
}

/// No function is called if the first or the last eight bytes decide.
inline bool String::operator==(const String& other) const noexcept {
    constexpr unsigned int compared = sizeof(std::uint64_t);
    if (size_ != other.size_ || std::memcmp(inline_, other.inline_, compared) != 0) {
        return false;
    }
    if (size_ <= 2 * compared) {
        const unsigned int rest = size_ <= compared ? 0 : size_ - compared;
        return std::memcmp(data_ + rest, other.data_ + rest, compared) == 0;
    }
    return std::memcmp(data_ + compared, other.data_ + compared, size_ - compared) == 0;
}

inline bool String::operator<(const String& other) const noexcept {
    const std::uint64_t mine = leadingBytes();
    const std::uint64_t theirs = other.leadingBytes();
    return mine < theirs || (mine == theirs && isLessBehindLeading(other));
}

inline bool String::isLessBehindLeading(const String& other) const noexcept {
    constexpr unsigned int compared = sizeof(std::uint64_t);
    return size_ <= compared || other.size_ <= compared
               ? size_ < other.size_ // one is a prefix of the other
               : view() < other.view();
}

/// Writes the characters.
KEL_EXPORT std::ostream& operator<<(std::ostream& stream, const String& string);

} // namespace kel

/// @cond
template <>
struct std::hash<kel::String> {
    std::size_t operator()(const kel::String& string) const noexcept {
        return std::hash<std::string_view>()(string.view());
    }
};
/// @endcond

#endif
