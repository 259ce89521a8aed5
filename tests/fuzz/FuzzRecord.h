#ifndef QUILLSET_FUZZ_RECORD_H
#define QUILLSET_FUZZ_RECORD_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>

// A record of type T on the heap, exactly its size, so that a read past its end is caught. Its
// bytes repeat the input's, so that short inputs can still fill every field to the brim; an
// empty input gives a zeroed record.
template <typename T>
std::unique_ptr<T> recordFrom(const uint8_t *data, size_t size) {
    std::unique_ptr<T> record(new T);
    unsigned char *bytes = reinterpret_cast<unsigned char *>(record.get());
    for (size_t k = 0; k < sizeof(T); ++k)
        bytes[k] = size ? data[k % size] : 0;
    return record;
}

#endif
