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

namespace kel {

/// The narrow bytes of a `String`, as its conversions return them.
///
/// Ownership: holds its own copy; `c_str()` stays valid until the object is destroyed.
/// Copying: neither copied nor moved, it is read where it was made.
/// Threads: may be read by many threads.
class CString {
  public:
    CString(const CString&) = delete;
    CString& operator=(const CString&) = delete;
    ~CString() {
        if (data_ != inline_) {
            release();
        }
    }

    /// The bytes, followed by a NUL. There may be NUL bytes among them.
    const char* c_str() const noexcept { return data_; }

    /// The number of bytes, without the NUL at the end.
    unsigned int size() const noexcept { return size_; }

  private:
    friend class String;
    CString(const char* bytes, unsigned int length);
    KEL_EXPORT void release() noexcept;

    // Long enough for most values of a template, so that reading one allocates nothing.
    static constexpr unsigned int inlineCapacity = 111;

    char* data_;
    unsigned int size_;
    char inline_[inlineCapacity + 1];
};

/// A character string: an ordered value that is copied and moved like a `std::string`.
///
/// Characters: a character is a byte, and text is UTF-8. The constructors take bytes as they are;
///   `UTF8Decode` is the one that repairs. NUL bytes are characters like all others.
/// Order: by unsigned byte, then by length. For UTF-8 this is the order of the code points.
/// Units: lengths and positions count bytes, in 32 bits. What would be longer than 4 GiB - 1 byte
///   throws `std::length_error`.
/// Errors: `std::bad_alloc` and `std::length_error`; the string is then unchanged.
/// Threads: may be read by many threads while none changes it.
class String {
  public:
    /// An empty string.
    String() noexcept : data_(inline_), size_(0), capacity_(inlineCapacity), inline_() {}

    /// The bytes up to the first NUL. A null pointer gives an empty string.
    String(const char* bytes)
        : String(bytes, bytes == nullptr ? 0 : checkedSize(std::strlen(bytes))) {}

    /// `length` bytes, NUL bytes included. The pointer may be null where the length is 0.
    KEL_EXPORT String(const char* bytes, unsigned int length);

    String(std::string_view bytes) : String(bytes.data(), checkedSize(bytes.size())) {}
    String(const std::string& bytes) : String(std::string_view(bytes)) {}

    KEL_EXPORT String(const String& other);
    /// `other` is empty afterwards.
    KEL_EXPORT String(String&& other) noexcept;
    KEL_EXPORT String& operator=(const String& other);
    /// `other` is empty afterwards.
    KEL_EXPORT String& operator=(String&& other) noexcept;
    ~String() {
        if (!isInline()) {
            release();
        }
    }

    /// Appends `other`, which may be this string.
    KEL_EXPORT String& operator+=(const String& other);

    /// True if the characters are exactly those of `bytes`, which ends at its first NUL and is not
    /// null.
    bool operator==(const char* bytes) const noexcept { return view() == bytes; }
    bool operator==(const String& other) const noexcept { return view() == other.view(); }
    bool operator<(const String& other) const noexcept;

    /// The number of characters.
    unsigned int size() const noexcept { return size_; }
    bool empty() const noexcept { return size_ == 0; }

    /// The characters, valid until this string is changed or destroyed.
    std::string_view view() const noexcept { return {data_, size_}; }
    std::string str() const { return std::string(view()); }

    /// At most `count` characters from position `start` on; 0xFFFFFFFF means up to the end. A
    /// start at or past the end gives an empty string.
    KEL_EXPORT String subString(unsigned int start, unsigned int count) const;

    /// One byte for each character, its low 8 bits: here the characters themselves.
    KEL_EXPORT CString getLowerByteString() const;

    /// The UTF-8 form: here the characters themselves. Bytes that are not valid UTF-8 stay.
    KEL_EXPORT CString getUTF8String() const;

    /// Replaces the content by the decoding of `length` bytes of UTF-8. Each maximal part that is
    /// malformed becomes one U+FFFD (The Unicode Standard 15.0, section 3.9, table 3-8), so that
    /// the result is always valid UTF-8. `flag` is reserved and changes nothing.
    KEL_EXPORT void UTF8Decode(const char* bytes, unsigned int length, bool flag);

    /// Converts from and to UTF-16 in the machine's byte order. What is malformed, in either
    /// direction, becomes U+FFFD.
    KEL_EXPORT static String fromUTF16(std::u16string_view text);
    KEL_EXPORT std::u16string toUTF16() const;

#ifdef _WIN32
    /// The same with the character type of the Windows interfaces.
    KEL_EXPORT static String fromWide(std::wstring_view text);
    KEL_EXPORT std::wstring toWide() const;
#endif

  private:
    static constexpr unsigned int inlineCapacity = 23;

    bool isInline() const noexcept {
        return data_ == inline_;
    }
    std::uint64_t leadingBytes() const noexcept;
    KEL_EXPORT static unsigned int checkedSize(std::size_t size);
    void assign(const char* bytes, unsigned int length);
    void take(String& other) noexcept;
    void grow(std::size_t size);
    void store(const char* bytes) noexcept;
    KEL_EXPORT void release() noexcept;

    char* data_; // NUL-terminated; inline_, or a block of malloc
    unsigned int size_;
    unsigned int capacity_; // without the NUL

    // The characters while they fit. Where they do not, a copy of the first eight. Bytes past the
    // end are zero among the first eight, here and in a block: comparing those as one number
    // decides most comparisons.
    char inline_[inlineCapacity + 1];
};

inline std::uint64_t String::leadingBytes() const noexcept {
    std::uint64_t bytes;
    std::memcpy(&bytes, inline_, sizeof(bytes));
    if constexpr (std::endian::native == std::endian::big) {
        return bytes;
    }
#if defined(__GNUC__)
    return __builtin_bswap64(bytes);
#else
    return _byteswap_uint64(bytes); // <stdlib.h> of Microsoft's run-time
#endif
}

inline bool String::operator<(const String& other) const noexcept {
    const std::uint64_t mine = leadingBytes();
    const std::uint64_t theirs = other.leadingBytes();
    if (mine != theirs) {
        return mine < theirs;
    }
    if (size_ <= sizeof(mine) || other.size_ <= sizeof(theirs)) {
        return size_ < other.size_; // one of them begins the other
    }
    return view() < other.view();
}

/// Writes the characters to `stream`.
KEL_EXPORT std::ostream& operator<<(std::ostream& stream, const String& string);

} // namespace kel

template <>
struct std::hash<kel::String> {
    std::size_t operator()(const kel::String& string) const noexcept {
        return std::hash<std::string_view>()(string.view());
    }
};

#endif
