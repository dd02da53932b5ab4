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
/// The text of all interfaces.

/// The base library: strings, buffers, files and logging.
namespace kel {

class String;

/// The narrow bytes of a `String`, as its conversions return them.
///
/// Ownership: holds the bytes; `c_str()` stays valid until the object is destroyed, whatever
///   becomes of the string.
/// Copying: neither copied nor moved, it is read where it was made.
/// Threads: may be read by many threads.
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

    /// Gives the bytes. There may be NUL bytes among them.
    /// @return the bytes, followed by a NUL
    const char* c_str() const noexcept { return data_; }

    /// Counts the bytes.
    /// @return their number, without the NUL at the end
    unsigned int size() const noexcept { return size_; }

  private:
    friend class String;
    explicit CString(const String& string);
    KEL_EXPORT void hold(char* bytes);
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
/// Hash: there is a `std::hash` of it, for `std::unordered_map` and the like.
/// Copying: a copy is a value of its own. Long texts are held in common until one of the strings
///   changes.
/// Units: lengths and positions count bytes, in 32 bits. What would be longer than 4 GiB - 1 byte
///   throws `std::length_error`.
/// Errors: `std::bad_alloc` and `std::length_error`; the string is then unchanged.
/// Threads: may be read by many threads while none changes it.
class String {
  public:
    /// An empty string.
    String() noexcept : inline_(), data_(inline_), size_(0), capacity_(inlineCapacity) {}

    /// The bytes up to the first NUL.
    /// @param bytes the bytes, which are copied; a null pointer gives an empty string
    String(const char* bytes) : String() {
        if (bytes != nullptr && *bytes != '\0') {
            assign(bytes, checkedSize(std::strlen(bytes)));
        }
    }

    /// So many bytes, NUL bytes included.
    /// @param bytes the bytes, which are copied; it may be null where the length is 0
    /// @param length how many there are
    KEL_EXPORT String(const char* bytes, unsigned int length);

    /// All bytes, NUL bytes included.
    /// @param bytes the bytes, which are copied
    String(std::string_view bytes) : String(bytes.data(), checkedSize(bytes.size())) {}

    /// All bytes, NUL bytes included.
    /// @param bytes the bytes, which are copied
    String(const std::string& bytes) : String(std::string_view(bytes)) {}

    /// Copies the characters.
    /// @param other the string that is copied
    KEL_EXPORT String(const String& other);

    /// Takes the characters.
    /// @param other is empty afterwards
    KEL_EXPORT String(String&& other) noexcept;

    /// Copies the characters.
    /// @param other the string that is copied, which may be this one
    /// @return this string
    KEL_EXPORT String& operator=(const String& other);

    /// Takes the characters.
    /// @param other is empty afterwards
    /// @return this string
    KEL_EXPORT String& operator=(String&& other) noexcept;

    /// Frees the characters.
    ~String() {
        if (!isInline()) {
            release();
        }
    }

    /// Appends characters.
    /// @param other the string that is appended, which may be this one
    /// @return this string
    String& operator+=(const String& other) { return other.empty() ? *this : append(other); }

    /// Compares byte by byte.
    /// @param bytes ends at its first NUL, and is not null
    /// @return true if the characters are exactly those of `bytes`
    bool operator==(const char* bytes) const noexcept { return view() == bytes; }

    /// Compares byte by byte.
    /// @param other the string to compare with
    /// @return true if both have the same characters
    bool operator==(const String& other) const noexcept { return view() == other.view(); }

    /// Compares in the order told above.
    /// @param other the string to compare with
    /// @return true if this string comes first
    bool operator<(const String& other) const noexcept;

    /// Counts the characters.
    /// @return their number
    unsigned int size() const noexcept { return size_; }

    /// Tells whether there are no characters.
    /// @return true if the size is 0
    bool empty() const noexcept { return size_ == 0; }

    /// Gives the characters without copying them.
    /// @return the characters, valid until this string is changed or destroyed
    std::string_view view() const noexcept { return {data_, size_}; }

    /// Gives a copy of the characters.
    /// @return the characters, NUL bytes included
    std::string str() const { return std::string(view()); }

    /// Copies a part.
    /// @param start the position of its first character; at or past the end the part is empty
    /// @param count how many characters at most; 0xFFFFFFFF means up to the end
    /// @return the part
    KEL_EXPORT String subString(unsigned int start, unsigned int count) const;

    /// Reduces each character to one byte, its low 8 bits: here the characters themselves.
    /// @return the bytes
    CString getLowerByteString() const { return CString(*this); }

    /// Encodes in UTF-8: here the characters themselves. Bytes that are not valid UTF-8 stay.
    /// @return the bytes
    CString getUTF8String() const { return CString(*this); }

    /// Replaces the content by the decoding of UTF-8. Each maximal part that is malformed becomes
    /// one U+FFFD (The Unicode Standard 15.0, section 3.9, table 3-8), so that the result is always
    /// valid UTF-8.
    /// @param bytes what is decoded
    /// @param length how many bytes there are
    /// @param flag reserved; it changes nothing
    KEL_EXPORT void UTF8Decode(const char* bytes, unsigned int length, bool flag);

    /// Checks text that may come from anywhere.
    /// @param bytes the text
    /// @return true if it is valid UTF-8, which `UTF8Decode` keeps as it is
    KEL_EXPORT static bool isUtf8(std::string_view bytes) noexcept;

    /// Where the characters begin in a block for `adopt`.
    static constexpr std::size_t adoptedOffset = 16;

    /// Makes a string of a block of memory; a long one is not copied.
    /// @param block comes from `malloc`, has the characters at `adoptedOffset`, and belongs to the
    ///   string afterwards, whatever the outcome
    /// @param length how many characters there are
    /// @param capacity how many fit, one less than there is room for behind `adoptedOffset`
    /// @return the string
    KEL_EXPORT static String adopt(char* block, std::size_t length, std::size_t capacity);

    /// Converts from UTF-16 in the machine's byte order. What is malformed becomes U+FFFD.
    /// @param text the text in UTF-16
    /// @return the text in UTF-8
    KEL_EXPORT static String fromUTF16(std::u16string_view text);

    /// Converts to UTF-16 in the machine's byte order. What is malformed becomes U+FFFD.
    /// @return the text in UTF-16
    KEL_EXPORT std::u16string toUTF16() const;

#ifdef _WIN32
    /// `fromUTF16` with the character type of the Windows interfaces; on Windows only.
    /// @param text the text in UTF-16
    /// @return the text in UTF-8
    KEL_EXPORT static String fromWide(std::wstring_view text);

    /// `toUTF16` with the character type of the Windows interfaces; on Windows only.
    /// @return the text in UTF-16
    KEL_EXPORT std::wstring toWide() const;
#endif

  private:
    friend class CString;
    static constexpr unsigned int inlineCapacity = 15;

    bool isInline() const noexcept {
        return data_ == inline_;
    }
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

    // The characters while they fit. Where they do not, a copy of the first eight. Bytes past the
    // end are zero among the first eight, here and in a block: comparing those as one number
    // decides most comparisons. They come first: in the node of a map that is beside the links.
    char inline_[inlineCapacity + 1];

    char* data_; // NUL-terminated; inline_, or a block of malloc
    unsigned int size_;
    unsigned int capacity_; // without the NUL
};

// What is inline is copied whole, whatever its length: that takes two instructions or three.
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
    return _byteswap_uint64(bytes); // <stdlib.h> of Microsoft's run-time
#endif
}

inline bool String::operator<(const String& other) const noexcept {
    const std::uint64_t mine = leadingBytes();
    const std::uint64_t theirs = other.leadingBytes();
    return mine < theirs || (mine == theirs && isLessBehindLeading(other));
}

inline bool String::isLessBehindLeading(const String& other) const noexcept {
    constexpr unsigned int compared = sizeof(std::uint64_t);
    return size_ <= compared || other.size_ <= compared
               ? size_ < other.size_ // one begins the other
               : view() < other.view();
}

/// Writes the characters.
/// @param stream where they are written
/// @param string the string that is written
/// @return `stream`
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
