/* A formula with a function of the program: docs/c.md. */

#include <stdio.h>
#include <string.h>
#include <tovalin/tovalin_c.h>

/* TARIFA( Cargo ): 5% for a manager, 4% for others. */
static void Evaluate(void* context, tov_invocation* call) {
  const tov_handle* evaluador = context;
  tov_value* resultado = &call->arguments[1];
  tov_value* pila = &call->arguments[2];
  tov_value cargo = tov_empty();
  /* An error of this call becomes that of the formula. */
  if (tov_call(*evaluador, "LoadTopePila", TOV_METHOD, pila, 1, &cargo, &call->error)) return;
  const int es_gerente = cargo.type == TOV_STRING && strcmp(cargo.as.utf8, "Gerente") == 0;
  *resultado = tov_double(es_gerente ? 0.05 : 0.04);
  tov_clear(&cargo);
}

static int Fail(tov_error* error) {
  fprintf(stderr, "Error %d: %s\n", (int)error->number, error->description.as.utf8);
  tov_clear_error(error);
  return 1;
}

int main(void) {
  tov_handle evaluador = 0;
  tov_handler handler = {Evaluate, &evaluador, NULL, TOV_UTF8};
  int32_t attachment = 0;
  tov_error error = {0};
  tov_value variable[] = {tov_text("Salario"), tov_double(2500000), tov_text("Salario mensual"),
                          tov_long(1009)};
  tov_value funcion[] = {tov_text("TARIFA("), tov_text("TARIFA"), tov_text("Tarifa de un cargo"),
                         tov_text("TARIFA( Cargo ) ")};
  tov_value formula[] = {tov_text("Salario * TARIFA('Gerente')"), tov_empty()};

  if (tov_create("Evaluador", &evaluador, &error) ||
      tov_call(evaluador, "AddVble", TOV_METHOD, variable, 4, NULL, &error) ||
      tov_call(evaluador, "AddFunction", TOV_METHOD, funcion, 4, NULL, &error) ||
      tov_attach(evaluador, "Evaluate", &handler, &attachment, &error) ||
      tov_call(evaluador, "EvaluatePosfijo", TOV_METHOD, formula, 2, NULL, &error))
    return Fail(&error);
  printf("%g\n", formula[1].as.f64); /* 125000 */
  tov_release(evaluador, NULL);
  return 0;
}
