#ifndef TOVALIN_C_H
#define TOVALIN_C_H

#include <stddef.h>
#include <stdint.h>

/* The C interface of the library, in C99: for every language that calls C functions.
 *
 *   tov_handle evaluator = 0;
 *   tov_value arguments[2] = {tov_text("2 * 3"), tov_empty()};
 *   tov_error error = {0};
 *   tov_create("Evaluador", &evaluator, &error);
 *   tov_call(evaluator, "EvaluatePosfijo", TOV_METHOD, arguments, 2, NULL, &error);
 *   printf("%g\n", arguments[1].as.f64);                       // 6
 *   tov_release(evaluator, NULL);
 *
 * Classes, members and events are those of the description (tov_describe); all names
 * are without regard to case.
 *
 * Errors. A function that gives int32_t answers 0, or the number of an error; then it
 * fills `error` (unless it is NULL) and leaves its other results as they were. What
 * cannot be right (a handle that is released, NULL where a pointer must be, an id or a
 * type that does not exist) is an error too. No exception leaves a function, and one
 * that leaves a handler is told as an error. A handler must return: no longjmp.
 *
 * Ownership. What the library gives has TOV_OWNED set in its flags: its text or its
 * handle is the host's, which gives it back with tov_clear. What a host hands in is
 * read before the function returns, and stays the host's. A tov_value is moved by
 * assignment; tov_copy makes a second one. Results are written over: clear one before
 * it is used again. Only an argument that the call changes is cleared first.
 *
 * Threads. An object, with all that is reached from it, is used by one thread at a time;
 * two threads may use objects that have nothing to do with each other at the same time.
 * What another thread is using answers an error. tov_release, tov_retain, tov_copy and
 * tov_clear may be called in any thread at any time. */

#if defined(_WIN32) && defined(TOVALIN_BUILDING_SHARED)
#define TOV_API __declspec(dllexport)
#elif defined(_WIN32) && defined(TOVALIN_USING_SHARED)
#define TOV_API __declspec(dllimport)
#elif defined(_WIN32)
#define TOV_API
#else
#define TOV_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* An object or an array that the host holds; 0 is none. Two handles of the same object
 * are equal. A handle that is given back too often is detected, never followed. */
typedef uint64_t tov_handle;

/* A member of a class, found once by tov_find_member. */
typedef uint32_t tov_member;

/* The types of a value, with their automation codes, and where the value stands. */
enum {
  TOV_EMPTY = 0,
  TOV_NULL = 1,
  TOV_INTEGER = 2,  /* i16 */
  TOV_LONG = 3,     /* i32 */
  TOV_SINGLE = 4,   /* f32 */
  TOV_DOUBLE = 5,   /* f64 */
  TOV_CURRENCY = 6, /* i64: ten-thousandths */
  TOV_DATE = 7,     /* f64: days since 30 December 1899 */
  TOV_STRING = 8,   /* utf8 or utf16, and length */
  TOV_OBJECT = 9,   /* handle; 0 is no object */
  TOV_ERROR = 10,   /* i32; TOV_MISSING stands for an argument that is left out */
  TOV_BOOLEAN = 11, /* i32: 0, or 1 (any other number counts as 1) */
  TOV_BYTE = 17,    /* u8 */
  TOV_ARRAY = 8204  /* handle */
};
#define TOV_MISSING (-2147352572)

/* How the text of a value is written. In a value that receives a text it says which
 * one is wanted, so a host sets it before the call: {0} is UTF-8. */
enum { TOV_UTF8 = 0, TOV_UTF16 = 1 };

/* A flag of a value: tov_clear gives its text or handle back. */
enum { TOV_OWNED = 1 };

/* The length of a text that ends with a 0. */
#define TOV_TO_ZERO UINT64_MAX

/* 24 bytes, on every system. */
typedef struct tov_value {
  uint16_t type;
  uint8_t encoding;
  uint8_t flags;
  uint32_t reserved; /* 0 */
  union {
    int64_t i64;
    uint8_t u8;
    int16_t i16;
    int32_t i32;
    float f32;
    double f64;
    const char* utf8;      /* what the library gives ends with a 0 besides */
    const uint16_t* utf16; /* the same */
    tov_handle handle;
  } as;
  uint64_t length; /* of a text: bytes of UTF-8, or characters of UTF-16 */
} tov_value;

/* What went wrong. The texts come in `encoding`, which a host sets before. */
typedef struct tov_error {
  int32_t number; /* 0: nothing */
  int32_t encoding;
  int32_t position; /* where, in characters of the formula or file from 1; 0: not known */
  int32_t length;
  tov_value source;
  tov_value description;
} tov_error;

/* How a member is called. TOV_EVENT only comes to handlers. */
enum { TOV_EVENT = 0, TOV_METHOD = 1, TOV_GET = 2, TOV_LET = 4, TOV_SET = 8 };

/* A call that comes to a handler. It may put other values in the place of `arguments`
 * that are by reference, a result where there is one, and an error, which then
 * reaches whoever made the call. Texts that it puts there are read after it returned;
 * what has TOV_OWNED set is taken over. The arguments are the library's: a
 * handler copies (tov_copy) what it keeps. */
typedef struct tov_invocation {
  const char* name; /* of the event or member */
  int32_t kind;     /* TOV_EVENT, TOV_METHOD ... */
  uint32_t count;
  tov_value* arguments;
  tov_value result;
  tov_error error;
} tov_invocation;

/* Code of the host. `release` (or NULL) is called once with `context` when it is not
 * needed any more, if the function that took the handler succeeded. */
typedef struct tov_handler {
  void (*function)(void* context, tov_invocation* invocation);
  void* context;
  void (*release)(void* context);
  int32_t encoding; /* of the texts that it gets */
} tov_handler;

/* The version of the library: major * 10000 + minor * 100 + patch. */
TOV_API uint32_t tov_version(void);

/* The description of a class, or of everything for NULL, as a JSON text: what
 * DescribeJson in tovalin/describe.h says. */
TOV_API int32_t tov_describe(const char* class_name, tov_value* json, tov_error* error);

/* Values. tov_clear leaves TOV_EMPTY; without TOV_OWNED it does no more than that.
 * tov_copy makes a copy that owns a text or handle of its own; the copy's encoding says
 * which text. */
TOV_API void tov_clear(tov_value* value);
TOV_API void tov_clear_error(tov_error* error);
TOV_API int32_t tov_copy(const tov_value* value, tov_value* copy, tov_error* error);

/* Objects. tov_create makes one by the name of its class, "Evaluador" or
 * "Tovalin.Evaluador". A handle is given back as often as it was given: by tov_create,
 * by a value (tov_clear), by tov_retain. tov_handles counts those that are out. */
TOV_API int32_t tov_create(const char* class_name, tov_handle* object, tov_error* error);
TOV_API int32_t tov_retain(tov_handle handle, tov_error* error);
TOV_API int32_t tov_release(tov_handle handle, tov_error* error);
TOV_API int32_t tov_class(tov_handle object, tov_value* class_name, tov_error* error);
TOV_API size_t tov_handles(void);

/* Calls. Arguments stand in the order of the description; one that is left out is of
 * TOV_ERROR with TOV_MISSING, or not there at the end. For TOV_LET and TOV_SET the new
 * value is the last. Those by reference that the member changes are written back, also
 * when it fails. `result` may be NULL. */
TOV_API int32_t tov_call(tov_handle object, const char* member, int32_t kind, tov_value* arguments,
                         size_t count, tov_value* result, tov_error* error);
TOV_API int32_t tov_find_member(const char* class_name, const char* member, int32_t kind,
                                tov_member* id, tov_error* error);
TOV_API int32_t tov_call_id(tov_handle object, tov_member id, tov_value* arguments, size_t count,
                            tov_value* result, tov_error* error);

/* Events. The attachment is what tov_detach takes. A handler keeps nothing alive. */
TOV_API int32_t tov_attach(tov_handle object, const char* event, const tov_handler* handler,
                           int32_t* attachment, tov_error* error);
TOV_API int32_t tov_detach(tov_handle object, const char* event, int32_t attachment,
                           tov_error* error);

/* An object of the host: every call of a member of it comes to the handler. What kind
 * of control it is says which members LibGeneral calls (tovalin/control.h). */
enum {
  TOV_TEXT_BOX,
  TOV_MASKED_EDIT,
  TOV_COMBO_BOX,
  TOV_LIST_BOX,
  TOV_CHECK_BOX,
  TOV_VALUE_CONTROL,
  TOV_GRID,
  TOV_LIST_VIEW,
  TOV_FORM,
  TOV_OTHER
};
TOV_API int32_t tov_create_host_object(const tov_handler* handler, int32_t control_kind,
                                       tov_handle* object, tov_error* error);

/* What a host puts in the place of the system's; the default again for NULL.
 * tov_use_clock: the handler puts the moment, a TOV_DATE, into the result.
 * tov_use_services (of a LibGeneral): it is called as ActiveControl, which gives an
 * object, MsgBox(prompt, buttons, title), which gives the button, a TOV_LONG, and
 * StatusBar(bar, text, pause).
 * tov_use_memory_settings: settings are kept in the object instead of in files. */
TOV_API int32_t tov_use_clock(tov_handle object, const tov_handler* handler, tov_error* error);
TOV_API int32_t tov_use_services(tov_handle object, const tov_handler* handler, tov_error* error);
TOV_API int32_t tov_use_memory_settings(tov_handle object, tov_error* error);

/* Arrays: values in two dimensions, counted from 0; a list is one column. An array is
 * copied where it goes: what is put into a handle later changes no other. */
TOV_API int32_t tov_array_create(size_t columns, size_t rows, tov_value* array, tov_error* error);
TOV_API int32_t tov_array_size(tov_handle array, size_t* columns, size_t* rows, tov_error* error);
TOV_API int32_t tov_array_get(tov_handle array, size_t column, size_t row, tov_value* value,
                              tov_error* error);
TOV_API int32_t tov_array_set(tov_handle array, size_t column, size_t row, const tov_value* value,
                              tov_error* error);

/* Values one after the other: of a variable or of results. `type` is TOV_DOUBLE for
 * doubles, TOV_EMPTY for values of type tov_value. `stride` is the distance from one to
 * the next in bytes; 0: they lie side by side. */
typedef struct tov_column {
  const char* name; /* of the variable */
  void* values;
  ptrdiff_t stride;
  int32_t type;
} tov_column;

/* A row that failed. The host clears its error. */
typedef struct tov_row_error {
  uint64_t row; /* from 0 */
  tov_error error;
} tov_row_error;

/* Formula.EvaluarTabla: the value of a formula for each of `rows` rows, into `results`,
 * which have no name. A row that fails has no number (NaN), or TOV_EMPTY. `failed`
 * receives how many failed; the first `most_errors` of them are told in `errors`, in
 * the encoding of each. */
TOV_API int32_t tov_evaluate_table(tov_handle formula, const tov_column* columns,
                                   size_t column_count, size_t rows, const tov_column* results,
                                   tov_row_error* errors, size_t most_errors, size_t* failed,
                                   tov_error* error);

/* Values as arguments. A text stays the host's. */
static inline tov_value tov_empty(void) {
  tov_value value = {0, 0, 0, 0, {0}, 0};
  return value;
}
static inline tov_value tov_missing(void) {
  tov_value value = tov_empty();
  value.type = TOV_ERROR;
  value.as.i32 = TOV_MISSING;
  return value;
}
static inline tov_value tov_double(double number) {
  tov_value value = tov_empty();
  value.type = TOV_DOUBLE;
  value.as.f64 = number;
  return value;
}
static inline tov_value tov_long(int32_t number) {
  tov_value value = tov_empty();
  value.type = TOV_LONG;
  value.as.i32 = number;
  return value;
}
static inline tov_value tov_text(const char* utf8) {
  tov_value value = tov_empty();
  value.type = TOV_STRING;
  value.as.utf8 = utf8;
  value.length = TOV_TO_ZERO;
  return value;
}
static inline tov_value tov_object(tov_handle handle) {
  tov_value value = tov_empty();
  value.type = TOV_OBJECT;
  value.as.handle = handle;
  return value;
}

#ifdef __cplusplus
}
#endif

#endif
