/* The C interface as a program in C99 uses it: values both ways, calls, events, errors,
 * arrays and tables. Ends with 1 after a failure. */

#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <tovalin/tovalin_c.h>

static int failures = 0;

#define CHECK(holds) Check((holds) != 0, #holds, __LINE__)

static void Check(int holds, const char* what, int line) {
  if (holds) return;
  ++failures;
  fprintf(stderr, "border_test.c:%d: %s\n", line, what);
}

/* A call that must succeed. */
static void Call(tov_handle object, const char* member, int kind, tov_value* arguments,
                 size_t count, tov_value* result, int line) {
  tov_error error = {0};
  if (tov_call(object, member, kind, arguments, count, result, &error) == 0) return;
  ++failures;
  fprintf(stderr, "border_test.c:%d: %s: error %d: %s\n", line, member, (int)error.number,
          error.description.as.utf8 ? error.description.as.utf8 : "");
  tov_clear_error(&error);
}
#define CALL(object, member, kind, arguments, count, result) \
  Call(object, member, kind, arguments, count, result, __LINE__)

static tov_handle Create(const char* class_name) {
  tov_handle object = 0;
  CHECK(tov_create(class_name, &object, NULL) == 0 && object != 0);
  return object;
}

static int HasText(const tov_value* value, const char* text) {
  return value->type == TOV_STRING && value->encoding == TOV_UTF8 &&
         value->length == strlen(text) && memcmp(value->as.utf8, text, strlen(text) + 1) == 0;
}

static tov_value Of(uint16_t type) {
  tov_value value = tov_empty();
  value.type = type;
  return value;
}

/* Each subtype goes into a Collection and comes back with the same bits. */
static void TestScalars(void) {
  tov_value values[11];
  tov_handle list = Create("Collection");
  size_t i;
  values[0] = tov_empty();
  values[1] = Of(TOV_NULL);
  values[2] = Of(TOV_INTEGER);
  values[2].as.i16 = INT16_MIN;
  values[3] = tov_long(INT32_MIN);
  values[4] = Of(TOV_SINGLE);
  values[4].as.f32 = 0.1f;
  values[5] = tov_double(0.1);
  values[6] = Of(TOV_CURRENCY);
  values[6].as.i64 = INT64_MIN;
  values[7] = Of(TOV_DATE);
  values[7].as.f64 = -1.75;
  values[8] = Of(TOV_BOOLEAN);
  values[8].as.i32 = 1;
  values[9] = Of(TOV_BYTE);
  values[9].as.u8 = 255;
  values[10] = Of(TOV_ERROR);
  values[10].as.i32 = -7;
  for (i = 0; i < 11; ++i) {
    tov_value index = tov_long((int32_t)i + 1), result = tov_empty();
    CALL(list, "Add", TOV_METHOD, &values[i], 1, NULL);
    CALL(list, "Item", TOV_METHOD, &index, 1, &result);
    CHECK(memcmp(&result, &values[i], sizeof result) == 0);
  }
  CHECK(tov_release(list, NULL) == 0);
}

static tov_value Utf16(const uint16_t* text, uint64_t length) {
  tov_value value = Of(TOV_STRING);
  value.encoding = TOV_UTF16;
  value.as.utf16 = text;
  value.length = length;
  return value;
}

static void TestTexts(void) {
  static const uint16_t kWide[] = {0xF1, 0, 0x41, 0xD83D, 0xDE00, 0};
  static const char kNarrow[] = "\xC3\xB1\0A\xF0\x9F\x98\x80";
  tov_handle list = Create("Collection");
  tov_value given[4], index = tov_long(1), result = tov_empty();
  size_t i;
  given[0] = Utf16(kWide, 5);
  given[1] = tov_text(kNarrow);
  given[1].length = sizeof kNarrow - 1;
  given[2] = tov_text("");
  given[3] = Utf16(NULL, 0);
  for (i = 0; i < 4; ++i) {
    const uint64_t wide = i < 2 ? 5 : 0, narrow = i < 2 ? sizeof kNarrow - 1 : 0;
    CALL(list, "Add", TOV_METHOD, &given[i], 1, NULL);
    index.as.i32 = (int32_t)i + 1;
    result.encoding = TOV_UTF16;
    CALL(list, "Item", TOV_METHOD, &index, 1, &result);
    CHECK(result.type == TOV_STRING && result.flags == TOV_OWNED && result.length == wide);
    CHECK(result.length == 0 || memcmp(result.as.utf16, kWide, 12) == 0);
    tov_clear(&result);
    CHECK(result.type == TOV_EMPTY && result.encoding == TOV_UTF16);
    result.encoding = TOV_UTF8;
    CALL(list, "Item", TOV_METHOD, &index, 1, &result);
    CHECK(result.length == narrow && memcmp(result.as.utf8, kNarrow, (size_t)narrow) == 0);
    CHECK(result.as.utf8[narrow] == 0);
    tov_clear(&result);
  }
  given[0] = Utf16(kWide, TOV_TO_ZERO); /* up to its first 0 */
  CALL(list, "Add", TOV_METHOD, &given[0], 1, NULL);
  index = tov_long(5);
  CALL(list, "Item", TOV_METHOD, &index, 1, &result);
  CHECK(HasText(&result, "\xC3\xB1"));
  tov_clear(&result);
  tov_clear(&result); /* nothing is left to clear */
  CHECK(tov_release(list, NULL) == 0);
}

/* The same object has the same handle, whatever it comes out of. */
static void TestObjects(void) {
  tov_handle list = Create("Collection"), item = Create("Campo");
  tov_value argument = tov_object(item), index = tov_long(1), result = tov_empty();
  tov_value copy = tov_empty(), name = tov_empty(), none = tov_object(0);
  CALL(list, "Add", TOV_METHOD, &argument, 1, NULL);
  CALL(list, "Item", TOV_METHOD, &index, 1, &result);
  CHECK(result.type == TOV_OBJECT && result.as.handle == item && result.flags == TOV_OWNED);
  CHECK(tov_copy(&result, &copy, NULL) == 0 && copy.as.handle == item);
  tov_clear(&result);
  CHECK(tov_release(item, NULL) == 0);
  CHECK(tov_class(item, &name, NULL) == 0 && HasText(&name, "Campo"));
  tov_clear(&name);
  tov_clear(&copy);
  CHECK(tov_class(item, &name, NULL) == 424); /* given back by everybody */
  CALL(list, "Item", TOV_METHOD, &index, 1, &result);
  CHECK(result.as.handle != item); /* the object lives in the list still */
  tov_clear(&result);
  CALL(list, "Add", TOV_METHOD, &none, 1, NULL);
  index = tov_long(2);
  CALL(list, "Item", TOV_METHOD, &index, 1, &result);
  CHECK(result.type == TOV_OBJECT && result.as.handle == 0 && result.flags == 0);
  CHECK(tov_release(list, NULL) == 0);
}

/* By name, by id, with arguments left out, by reference, properties. */
static void TestCalls(void) {
  tov_handle evaluator = Create("tovalin.EVALUADOR");
  tov_value result = tov_empty();
  tov_value variable[] = {tov_text("Base"), tov_double(10), tov_text(""), tov_long(1009)};
  tov_value formula[] = {tov_text("Base * 2"), tov_empty(), tov_missing()};
  tov_value field[] = {tov_text("a,b"), tov_text(","), tov_text("")};
  tov_value set = tov_text("Nota");
  tov_value list = tov_empty();
  tov_member evaluate = 0;
  CALL(evaluator, "addvble", TOV_METHOD, variable, 4, NULL);
  CALL(evaluator, "EvaluatePosfijo", TOV_METHOD, formula, 3, &result);
  CHECK(result.type == TOV_BOOLEAN && result.as.i32 == 1);
  CHECK(formula[1].type == TOV_DOUBLE && formula[1].as.f64 == 20);
  CHECK(formula[0].length == TOV_TO_ZERO); /* by value: left alone */

  CALL(evaluator, "CSVNextChar", TOV_METHOD, field, 3, &result);
  CHECK(HasText(&result, "a") && HasText(&field[0], "b") && field[0].flags == TOV_OWNED);
  CHECK(!(field[1].flags & TOV_OWNED));
  tov_clear(&result);
  tov_clear(&field[0]);

  CALL(evaluator, "Description", TOV_LET, &set, 1, NULL);
  CALL(evaluator, "Description", TOV_GET, NULL, 0, &result);
  CHECK(HasText(&result, "Nota"));
  tov_clear(&result);

  CHECK(tov_find_member("Evaluador", "evaluateposfijo", TOV_METHOD, &evaluate, NULL) == 0);
  formula[0] = tov_text("Base + 1");
  CHECK(tov_call_id(evaluator, evaluate, formula, 2, NULL, NULL) == 0);
  CHECK(formula[1].as.f64 == 11);
  formula[0] = tov_text("'x'"); /* what the call writes over is cleared by it */
  CHECK(tov_call_id(evaluator, evaluate, formula, 2, NULL, NULL) == 0);
  CHECK(tov_call_id(evaluator, evaluate, formula, 2, NULL, NULL) == 0);
  CHECK(HasText(&formula[1], "x") && formula[1].flags == TOV_OWNED);
  tov_clear(&formula[1]);

  CALL(evaluator, "Variables", TOV_GET, NULL, 0, &list);
  CHECK(list.type == TOV_OBJECT);
  CHECK(tov_call_id(list.as.handle, evaluate, formula, 2, NULL, NULL) ==
        438); /* of another class */
  tov_clear(&list);
  CHECK(tov_release(evaluator, NULL) == 0);
}

static int HasError(tov_error* error, int32_t number, const char* description) {
  const int has = error->number == number && HasText(&error->source, "Tovalin") &&
                  HasText(&error->description, description);
  if (!has) fprintf(stderr, "%d %s\n", (int)error->number, error->description.as.utf8);
  tov_clear_error(error);
  return has;
}

static void TestErrors(void) {
  tov_handle list = Create("Collection"), other = 0;
  tov_value arguments[] = {tov_double(1), tov_text("clave"), tov_empty(), tov_empty(), tov_empty()};
  tov_error error = {0};
  CHECK(tov_create("Nada", &other, &error) == 429 && other == 0);
  CHECK(HasError(&error, 429, "El componente no puede crear el objeto: Nada"));
  CHECK(tov_call(list, "Otro", TOV_METHOD, NULL, 0, NULL, &error) == 438);
  CHECK(HasError(&error, 438, "El objeto no admite esta propiedad o m\xC3\xA9todo: Otro"));
  CALL(list, "Add", TOV_METHOD, arguments, 2, NULL);
  CHECK(tov_call(list, "Add", TOV_METHOD, arguments, 2, NULL, &error) == 457);
  tov_clear_error(&error);
  CHECK(error.number == 0 && error.description.type == TOV_EMPTY);
  error.encoding = TOV_UTF16;
  CHECK(tov_call(list, "Add", TOV_METHOD, arguments, 0, NULL, &error) == 449);
  CHECK(error.description.encoding == TOV_UTF16 && error.description.as.utf16[0] == 'A');
  tov_clear_error(&error);
  CHECK(tov_call(list, "Add", TOV_METHOD, arguments, 5, NULL, NULL) == 450);
  CHECK(tov_call(list, "Add", 3, arguments, 1, NULL, NULL) == 5);
  arguments[0].type = 14; /* a Decimal, which the library does not know */
  CHECK(tov_call(list, "Add", TOV_METHOD, arguments, 1, NULL, NULL) == 13);
  CHECK(tov_release(list, NULL) == 0);
}

/* What a handler meets and does. */
typedef struct Host {
  tov_handle evaluator;
  int calls;
  int released;
  int fails;
  tov_handle kept;
} Host;

static void Answer(void* context, tov_invocation* call) {
  Host* host = context;
  ++host->calls;
  CHECK(strcmp(call->name, "Evaluate") == 0 && call->kind == TOV_EVENT && call->count == 3);
  CHECK(HasText(&call->arguments[0], "DOBLE("));
  CHECK(call->arguments[0].flags == 0 && call->arguments[2].type == TOV_OBJECT);
  if (host->fails) {
    call->error.number = 1234;
    call->error.source = tov_text("Prueba");
    /* A text of its own, which the library takes over. */
    tov_value text = tov_text("No hay tarifa para el a\xC3\xB1o");
    CHECK(tov_copy(&text, &call->error.description, NULL) == 0);
    return;
  }
  tov_value value = tov_empty();
  CALL(host->evaluator, "LoadTopePila", TOV_METHOD, &call->arguments[2], 1, &value);
  if (value.type == TOV_STRING) {
    call->arguments[1] = value; /* with TOV_OWNED: taken over */
  } else {
    call->arguments[1] = tov_double(2 * value.as.f64);
  }
  if (host->kept == 0) {
    tov_value copy = tov_empty();
    CHECK(tov_copy(&call->arguments[2], &copy, NULL) == 0);
    host->kept = copy.as.handle;
  }
}

static void Release(void* context) { ++((Host*)context)->released; }

static void TestEvents(void) {
  Host host = {0, 0, 0, 0, 0};
  tov_handler handler = {Answer, NULL, Release, TOV_UTF8};
  tov_value function[] = {tov_text("DOBLE("), tov_text("DOBLE"), tov_text("x"), tov_text("x")};
  tov_value formula[] = {tov_text("DOBLE(21) + DOBLE(4)"), tov_empty()};
  tov_error error = {0};
  int32_t attachment = 0;
  handler.context = &host;
  host.evaluator = Create("Evaluador");
  CALL(host.evaluator, "AddFunction", TOV_METHOD, function, 4, NULL);
  CHECK(tov_attach(host.evaluator, "Nada", &handler, &attachment, NULL) == 438);
  CHECK(host.released == 0);
  CHECK(tov_attach(host.evaluator, "evaluate", &handler, &attachment, NULL) == 0);
  CALL(host.evaluator, "EvaluatePosfijo", TOV_METHOD, formula, 2, NULL);
  CHECK(formula[1].as.f64 == 50 && host.calls == 2);
  CHECK(tov_release(host.kept, NULL) == 0);

  formula[0] = tov_text("DOBLE('dos')");
  CALL(host.evaluator, "EvaluatePosfijo", TOV_METHOD, formula, 2, NULL);
  CHECK(HasText(&formula[1], "dos"));

  host.fails = 1;
  CHECK(tov_call(host.evaluator, "EvaluatePosfijo", TOV_METHOD, formula, 2, NULL, &error) == 1234);
  CHECK(HasText(&error.source, "Prueba"));
  CHECK(HasText(&error.description, "No hay tarifa para el a\xC3\xB1o"));
  tov_clear_error(&error);
  CHECK(HasText(&formula[1], "dos")); /* an error leaves the result as it was */
  tov_clear(&formula[1]);

  CHECK(tov_detach(host.evaluator, "Evaluate", attachment, NULL) == 0 && host.released == 1);
  CHECK(tov_attach(host.evaluator, "Evaluate", &handler, &attachment, NULL) == 0);
  CHECK(tov_release(host.evaluator, NULL) == 0 && host.released == 2);
}

static void TestArrays(void) {
  tov_value array = tov_empty(), element = tov_text("fila"), out = tov_empty();
  tov_value index = tov_long(1), back = tov_empty();
  tov_handle list = Create("Collection");
  size_t columns = 0, rows = 0;
  CHECK(tov_array_create(2, 3, &array, NULL) == 0 && array.type == TOV_ARRAY);
  CHECK(tov_array_size(array.as.handle, &columns, &rows, NULL) == 0 && columns == 2 && rows == 3);
  CHECK(tov_array_set(array.as.handle, 1, 2, &element, NULL) == 0);
  CALL(list, "Add", TOV_METHOD, &array, 1, NULL);
  element = tov_double(1); /* the list has a copy of its own */
  CHECK(tov_array_set(array.as.handle, 1, 2, &element, NULL) == 0);
  CALL(list, "Item", TOV_METHOD, &index, 1, &back);
  CHECK(back.type == TOV_ARRAY && tov_array_get(back.as.handle, 1, 2, &out, NULL) == 0);
  CHECK(HasText(&out, "fila"));
  tov_clear(&out);
  CHECK(tov_array_get(array.as.handle, 1, 2, &out, NULL) == 0 && out.as.f64 == 1);
  CHECK(tov_array_get(array.as.handle, 2, 0, &out, NULL) == 9);
  CHECK(tov_array_create(SIZE_MAX, 3, &out, NULL) == 7);
  CHECK(tov_array_size(list, &columns, &rows, NULL) == 13);
  tov_clear(&back);
  tov_clear(&array);
  CHECK(tov_release(list, NULL) == 0);
}

/* Columns side by side, and inside the rows of the host. */
static void TestTables(void) {
  struct Row {
    char code[3];
    tov_value rate;
    double base;
    double total;
  } table[3];
  double base[3] = {100, 200, 300}, totals[3] = {0, 0, 0};
  tov_value variable[] = {tov_text("Base"), tov_double(1), tov_text(""), tov_long(1009)};
  tov_value formula = tov_text("Base / Tasa"), prepared = tov_empty();
  tov_handle evaluator = Create("Evaluador");
  tov_row_error errors[1];
  size_t failed = 9;
  int i;
  memset(errors, 0, sizeof errors);
  CALL(evaluator, "AddVble", TOV_METHOD, variable, 4, NULL);
  variable[0] = tov_text("Tasa");
  CALL(evaluator, "AddVble", TOV_METHOD, variable, 4, NULL);
  CALL(evaluator, "Preparar", TOV_METHOD, &formula, 1, &prepared);
  for (i = 0; i < 3; ++i) {
    table[i].rate = i == 1 ? tov_text("nada") : tov_long(i + 1);
    table[i].base = base[i];
  }
  {
    tov_column columns[] = {{"Base", base, 0, TOV_DOUBLE},
                            {"Tasa", &table[0].rate, sizeof table[0], TOV_EMPTY}};
    tov_column results = {NULL, totals, 0, TOV_DOUBLE};
    CHECK(tov_evaluate_table(prepared.as.handle, columns, 2, 3, &results, errors, 1, &failed,
                             NULL) == 0);
    CHECK(failed == 1 && errors[0].row == 1 && errors[0].error.number == 13);
    CHECK(totals[0] == 100 && totals[1] != totals[1] && totals[2] == 100);
    tov_clear_error(&errors[0].error);
    columns[0].values = &table[2].base; /* from the last row to the first */
    columns[0].stride = -(ptrdiff_t)sizeof table[0];
    results.values = &table[0].total;
    results.stride = sizeof table[0];
    CHECK(tov_evaluate_table(prepared.as.handle, columns, 1, 3, &results, NULL, 0, &failed, NULL) ==
          0);
    CHECK(failed == 0 && table[0].total == 300 && table[2].total == 100);
    results.values = &table[0].rate;
    results.type = TOV_EMPTY;
    CHECK(tov_evaluate_table(prepared.as.handle, columns, 1, 3, &results, NULL, 0, &failed, NULL) ==
          0);
    CHECK(table[1].rate.type == TOV_DOUBLE && table[1].rate.as.f64 == 200);
    columns[0].name = "Otra";
    CHECK(tov_evaluate_table(prepared.as.handle, columns, 1, 3, &results, NULL, 0, &failed, NULL) ==
          5);
    CHECK(tov_evaluate_table(evaluator, columns, 1, 3, &results, NULL, 0, NULL, NULL) == 13);
  }
  tov_clear(&prepared);
  CHECK(tov_release(evaluator, NULL) == 0);
}

static void TestDescription(void) {
  tov_value json = tov_empty();
  CHECK(tov_version() >= 10000);
  CHECK(tov_describe("Campos", &json, NULL) == 0 && strstr(json.as.utf8, "SystemList") != NULL);
  CHECK(json.length == strlen(json.as.utf8));
  tov_clear(&json);
  CHECK(tov_describe(NULL, &json, NULL) == 0 && strstr(json.as.utf8, "EvaluatePosfijo") != NULL);
  tov_clear(&json);
  CHECK(tov_describe("Nada", &json, NULL) == 429 && json.type == TOV_EMPTY);
}

int main(void) {
  CHECK(sizeof(tov_value) == 24);
  TestScalars();
  TestTexts();
  TestObjects();
  TestCalls();
  TestErrors();
  TestEvents();
  TestArrays();
  TestTables();
  TestDescription();
  CHECK(tov_handles() == 0);
  return failures == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
