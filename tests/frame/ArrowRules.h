#ifndef LUMBARN_TESTS_ARROW_RULES_H
#define LUMBARN_TESTS_ARROW_RULES_H

#include "frame/arrow_c.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Reads a stream to its end and releases it. Gives the first rule that it breaks, null when there is none;
   the rows that came, and what the last get_next returned. */
const char* check_stream(struct ArrowArrayStream* stream, int64_t* rows, int* status);

#ifdef __cplusplus
}
#endif

#endif
