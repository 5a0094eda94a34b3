#pragma once

#include <cstdio>
#include <cstdlib>

/// Ends the run as a finding when a promise of a parser is broken, in every kind of build.
#define REQUIRE(condition) /* NOLINT: only a macro can show the condition's text */                \
    do {                                                                                           \
        if (!(condition)) {                                                                        \
            std::fprintf(stderr, "%s:%d: broken: %s\n", __FILE__, __LINE__, #condition);           \
            std::abort();                                                                          \
        }                                                                                          \
    } while (false)
