#pragma once

// What a fuzz target asserts beyond "no crash": a property that must hold for every input.
// A failed check aborts, which libFuzzer reports as a crash with the input that caused it.

#include <cstdio>
#include <cstdlib>

#define FUZZ_CHECK(condition)                                                                      \
    do {                                                                                           \
        if (!(condition)) {                                                                        \
            std::fprintf(stderr, "%s:%d: check failed: %s\n", __FILE__, __LINE__, #condition);     \
            std::abort();                                                                          \
        }                                                                                          \
    } while (false)
