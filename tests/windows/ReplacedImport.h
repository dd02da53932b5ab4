#ifndef TESTS_WINDOWS_REPLACEDIMPORT_H
#define TESTS_WINDOWS_REPLACEDIMPORT_H

namespace support {

/// During its lifetime, makes a DLL of this program call `replacement` instead of the function
/// `name` of another DLL, by changing its import table. Does nothing if the DLL does not call the
/// function. Replacements of the same function must be destroyed in the reverse order of
/// construction.
class ReplacedImport {
  public:
    ReplacedImport(const wchar_t* dll, const char* name, void* replacement);
    ReplacedImport(const ReplacedImport&) = delete;
    ReplacedImport& operator=(const ReplacedImport&) = delete;
    ~ReplacedImport();

    /// True if the DLL calls the function.
    bool isThere() const { return import_ != nullptr; }

  private:
    void** import_;
    void* former_ = nullptr;
};

} // namespace support

#endif
