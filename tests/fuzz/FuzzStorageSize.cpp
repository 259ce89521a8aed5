// The storage line: 8 bytes of used bytes (a double, any bit pattern) and one byte of buffer
// size.

#include <cstdint>
#include <cstring>
#include <memory>

#include "FuzzCheck.h"
#include "StInfoTextUtils.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    double used = 0;
    if (size > 0)
        memcpy(&used, data, size < sizeof(used) ? size : sizeof(used));
    int bufferSize = size > sizeof(used) ? data[sizeof(used)] : 50;

    // Exactly bufferSize bytes on the heap, so that a write past them is caught.
    std::unique_ptr<char[]> buffer(new char[bufferSize + 1]);
    memset(buffer.get(), 'x', bufferSize + 1);
    formatStorageSize(used, buffer.get(), bufferSize);
    FUZZ_CHECK(buffer[bufferSize] == 'x');
    if (bufferSize > 0)
        FUZZ_CHECK(memchr(buffer.get(), '\0', bufferSize) != nullptr);
    return 0;
}
