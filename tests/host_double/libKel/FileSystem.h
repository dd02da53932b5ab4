#ifndef TESTS_HOST_DOUBLE_LIBKEL_FILESYSTEM_H
#define TESTS_HOST_DOUBLE_LIBKEL_FILESYSTEM_H

#include <libKel/Buffer.h>
#include <libKel/String.h>

namespace kel {

class FileSystem {
  public:
    static bool exists(const String& path);
    static bool loadFile(const String& path, Buffer<unsigned char>& out, unsigned long* length);
};

} // namespace kel

#endif
