#pragma once

// What the shared library gives to hosts: only what is marked LUMBARN_API, as all else is built hidden.
// scripts/test-package compares it with cmake/exported-symbols.txt.
#if defined(__GNUC__)
#define LUMBARN_API __attribute__((visibility("default")))
#else
#define LUMBARN_API
#endif
