/* A consumer of Arrow's C interfaces that checks each rule they state for producers, in the language that
   most consumers call them from. */

#include "ArrowRules.h"

#include <errno.h>
#include <stddef.h>
#include <string.h>

#define REQUIRE(condition)               \
  do {                                   \
    if (!(condition)) return #condition; \
  } while (0)

static const char* check_field(const struct ArrowSchema* schema, const struct ArrowArray* array) {
  REQUIRE(schema->release && array->release && schema->name);
  REQUIRE(array->offset == 0 && array->null_count >= 0 && array->null_count <= array->length);
  REQUIRE(array->n_children == schema->n_children);
  REQUIRE((array->dictionary != NULL) == (schema->dictionary != NULL));
  const int list = strncmp(schema->format, "+w:", 3) == 0;
  REQUIRE(array->n_buffers == (list || strcmp(schema->format, "+s") == 0 ? 1
                               : strcmp(schema->format, "u") == 0        ? 3
                                                                         : 2));
  const unsigned char* bits = array->buffers[0];
  REQUIRE((bits != NULL) == (array->null_count > 0));
  if (bits) {
    int64_t nulls = 0;
    for (int64_t i = 0; i < array->length; ++i) nulls += !(bits[i / 8] >> (i % 8) & 1);
    REQUIRE(nulls == array->null_count);
  }
  if (strcmp(schema->format, "u") == 0) {
    const int32_t* offsets = array->buffers[1];
    REQUIRE(offsets[0] == 0);
    for (int64_t i = 0; i < array->length; ++i) REQUIRE(offsets[i] <= offsets[i + 1]);
  }
  if (array->dictionary) {
    const int32_t* codes = array->buffers[1];
    for (int64_t i = 0; i < array->length; ++i)
      REQUIRE(codes[i] >= 0 && codes[i] < array->dictionary->length);
    const char* wrong = check_field(schema->dictionary, array->dictionary);
    if (wrong) return wrong;
  }
  for (int64_t i = 0; i < array->n_children; ++i) {
    REQUIRE(list || array->children[i]->length == array->length);
    const char* wrong = check_field(schema->children[i], array->children[i]);
    if (wrong) return wrong;
  }
  return NULL;
}

const char* check_stream(struct ArrowArrayStream* stream, int64_t* rows, int* status) {
  struct ArrowSchema schema, again;
  struct ArrowArray array, kept;
  *rows = 0;
  kept.release = NULL;
  REQUIRE(stream->get_schema(stream, &schema) == 0 && stream->get_schema(stream, &again) == 0);
  REQUIRE(strcmp(schema.format, "+s") == 0 && schema.n_children == again.n_children);
  again.release(&again);
  REQUIRE(again.release == NULL);
  const char* wrong = NULL;
  while ((*status = stream->get_next(stream, &array)) == 0 && array.release && !wrong) {
    wrong = check_field(&schema, &array);
    *rows += array.length;
    /* A consumer may take a child out of its parent and release the parent: the child still holds. */
    if (kept.release) kept.release(&kept);
    kept = *array.children[0];
    array.children[0]->release = NULL;
    array.release(&array);
    REQUIRE(array.release == NULL && kept.release != NULL);
  }
  if (!wrong && kept.release) {
    wrong = check_field(schema.children[0], &kept);
  }
  if (kept.release) kept.release(&kept);
  schema.release(&schema);
  if (wrong) return wrong;
  REQUIRE((stream->get_last_error(stream) != NULL) == (*status != 0));
  stream->release(stream);
  REQUIRE(stream->release == NULL);
  return NULL;
}
