// A formula with a function of the program: docs/c.md.

using System;
using Tovalin;

static class Tarifa {
  static void Main() {
    using (var evaluador = new TovalinObject("Evaluador")) {
      evaluador.Call("AddVble", "Salario", 2500000.0, "Salario mensual", 1009);
      evaluador.Call("AddFunction", "TARIFA(", "TARIFA", "Tarifa de un cargo", "TARIFA( Cargo ) ");
      evaluador.Attach("Evaluate", arguments => {
        var cargo = evaluador.Call("LoadTopePila", arguments[2]) as string;
        if (cargo == null) throw new TovalinError(13, "Tarifa", "El cargo no es un texto");
        arguments[1] = cargo == "Gerente" ? 0.05 : 0.04;
      });
      Console.WriteLine(Evaluar(evaluador, "Salario * TARIFA('Gerente')"));  // 125000
      try {
        Evaluar(evaluador, "TARIFA(7)");
      } catch (TovalinError error) {
        Console.WriteLine("Error {0} de {1}: {2}", error.Number, error.Source, error.Message);
      }
    }
  }

  static object Evaluar(TovalinObject evaluador, string formula) {
    var arguments = new object[] { formula, null };
    evaluador.Call("EvaluatePosfijo", arguments);
    return arguments[1];
  }
}
