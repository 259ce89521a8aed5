#ifndef QUILLSET_FUZZ_CHECK_H
#define QUILLSET_FUZZ_CHECK_H

#include <cstdio>
#include <cstdlib>

// A property every input must keep; a broken one stops the run as a crash would, so that the
// fuzzer saves the input and the corpus replay fails on it.
#define FUZZ_CHECK(condition)                                                                \
    do {                                                                                     \
        if (!(condition)) {                                                                  \
            fprintf(stderr, "%s:%d: property broken: %s\n", __FILE__, __LINE__, #condition); \
            abort();                                                                         \
        }                                                                                    \
    } while (0)

#endif
