#pragma once

#include <muParser.h>

#include <deque>
#include <lua.hpp>
#include <string>

#include "bench/formulas.h"
#include "tovalin/evaluador.h"

namespace tovalin::bench {

// The three engines with the same variables, each used as its own manual says.

inline Ref<Evaluador> MakeEvaluador() {
  auto evaluador = Make<Evaluador>();
  for (const NumberVariable& variable : kNumbers)
    evaluador->AddVble(FromUtf8(variable.name), variable.value, u"", kNumeric);
  for (const TextVariable& variable : kTexts)
    evaluador->AddVble(FromUtf8(variable.name), variable.value, u"", kText);
  evaluador->AddVble(u"FechaIngreso", Date{41000}, u"", kDate);
  return evaluador;
}

class MuParser {
 public:
  MuParser() {
    for (const NumberVariable& variable : kNumbers)
      parser_.DefineVar(variable.name, &values_.emplace_back(variable.value));
  }
  void Prepare(const std::string& formula) { parser_.SetExpr(formula); }
  double Eval() { return parser_.Eval(); }

 private:
  std::deque<double> values_;
  mu::Parser parser_;
};

class Lua {
 public:
  Lua() : state_(luaL_newstate()) {
    luaL_openlibs(state_);
    for (const NumberVariable& variable : kNumbers) {
      lua_pushnumber(state_, variable.value);
      lua_setglobal(state_, variable.name);
    }
    for (const TextVariable& variable : kTexts) {
      lua_pushstring(state_, ToUtf8(variable.value).c_str());
      lua_setglobal(state_, variable.name);
    }
  }
  Lua(const Lua&) = delete;
  Lua& operator=(const Lua&) = delete;
  ~Lua() { lua_close(state_); }

  /// Leaves the function of `chunk` on the stack.
  bool Load(const std::string& chunk) { return luaL_loadstring(state_, chunk.c_str()) == LUA_OK; }
  /// Calls the function on the stack, which stays there; false when it fails.
  bool Call() {
    lua_pushvalue(state_, -1);
    return CallOnce();
  }
  /// Calls the function on the stack, which is gone then.
  bool CallOnce() {
    const bool called = lua_pcall(state_, 0, 1, 0) == LUA_OK;
    number_ = lua_tonumber(state_, -1);
    lua_pop(state_, 1);
    return called;
  }
  double Number() const { return number_; }

 private:
  lua_State* state_;
  double number_ = 0;
};

}  // namespace tovalin::bench
