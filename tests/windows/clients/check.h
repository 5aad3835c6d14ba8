#pragma once

/* What the clients share: checks that count. A client returns Failures() from main. */

#include <stdio.h>

static int checks = 0, failed = 0;

#define CHECK(condition)                                           \
    do {                                                           \
        ++checks;                                                  \
        if (!(condition)) {                                        \
            ++failed;                                              \
            printf("FAILED: line %d: %s\n", __LINE__, #condition); \
        }                                                          \
    } while (0)

static int Failures(void) {
    printf("%s: %d checks, %d failed\n", failed ? "FAILED" : "done", checks, failed);
    return failed != 0;
}
