#ifndef TESTS_WINDOWS_REPLACEDIMPORT_H
#define TESTS_WINDOWS_REPLACEDIMPORT_H

namespace support {

/// Has a DLL that was loaded by this program call `replacement`, as long as it lives, where it
/// calls the function `name` of another DLL. Its table of imported functions is changed for it, so
/// all else in the DLL is as it is. Nothing happens where the DLL does not call the function. Those
/// of one function of a DLL go in the reverse order of their coming.
class ReplacedImport {
  public:
    ReplacedImport(const wchar_t* dll, const char* name, void* replacement);
    ReplacedImport(const ReplacedImport&) = delete;
    ReplacedImport& operator=(const ReplacedImport&) = delete;
    ~ReplacedImport();

    /// True where the DLL calls the function.
    bool isThere() const { return import_ != nullptr; }

  private:
    void** import_;
    void* former_ = nullptr;
};

} // namespace support

#endif
