#pragma once

#include <cstdio>
#include <cstdlib>

/// Stops a fuzzer where something that must always hold does not; the input is then kept by the fuzzer.
#define REQUIRE(condition)                                                                                             \
    do {                                                                                                               \
        if (!(condition)) {                                                                                            \
            std::fprintf(stderr, "%s:%d: not so: %s\n", __FILE__, __LINE__, #condition);                               \
            std::abort();                                                                                              \
        }                                                                                                              \
    } while (false)
