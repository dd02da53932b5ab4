#ifndef TESTS_HOST_DOUBLE_LIBKEL_STRING_H
#define TESTS_HOST_DOUBLE_LIBKEL_STRING_H

#include <string>
#include <utility>

// A fictional base library of another project: its characters have 32 bits, and its narrow
// constructors interpret each byte as one character. It only has what the engine may use, so that
// the engine does not compile if it uses more.

namespace kel {

class CString {
  public:
    explicit CString(std::string bytes) : bytes_(std::move(bytes)) {}
    CString(const CString&) = delete;
    CString& operator=(const CString&) = delete;
    ~CString() = default;

    const char* c_str() const { return bytes_.c_str(); }

  private:
    std::string bytes_;
};

class String {
  public:
    String() = default;
    String(const char* bytes);
    String(const char* bytes, unsigned int length);
    String(const String& other) = default;
    String(String&& other) = default;
    String& operator=(const String& other) = default;
    String& operator=(String&& other) = default;
    ~String() = default;

    String& operator+=(const String& other);
    bool operator==(const char* bytes) const;
    bool operator<(const String& other) const { return text_ < other.text_; }

    unsigned int size() const { return static_cast<unsigned int>(text_.size()); }
    String subString(unsigned int start, unsigned int count) const;
    CString getLowerByteString() const;
    CString getUTF8String() const;
    void UTF8Decode(const char* bytes, unsigned int length, bool flag);

  private:
    friend struct HostDouble;

    std::u32string text_;
};

} // namespace kel

#endif
