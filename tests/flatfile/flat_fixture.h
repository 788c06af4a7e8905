#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>
#include <string>

#include "files/temporary_directory.h"
#include "tovalin/archivo_plano.h"

namespace tovalin {

using Row = std::vector<Variant>;

inline Variant TableOf(const std::vector<Row>& rows) {
  auto array = Make<VariantArray>(rows.empty() ? 0 : rows.front().size(), rows.size());
  for (std::size_t r = 0; r < rows.size(); ++r)
    for (std::size_t c = 0; c < rows[r].size(); ++c) array->At(c, r) = rows[r][c];
  return array;
}

/// A file in a directory of its own, and what is written to it by a layout.
class FlatFileTest : public testing::Test {
 protected:
  Text Path(const char* name = "archivo.txt") const { return here.Host(name); }
  std::string Contents(const char* name = "archivo.txt") const { return here.Read(name); }
  void Put(const std::string& bytes, const char* name = "archivo.txt") const {
    here.Write(name, bytes);
  }
  bool Exists(const char* name = "archivo.txt") const { return here.Has(name); }
  void Remove(const char* name = "archivo.txt") const { std::filesystem::remove(here / name); }
  /// All that is in the directory: nothing may be left behind.
  std::size_t Files() const {
    return static_cast<std::size_t>(
        std::distance(std::filesystem::directory_iterator(here / ""), {}));
  }

  static Ref<ArchivoPlano> WithLayout(const std::string& json) {
    auto file = Make<ArchivoPlano>();
    file->LetDiseno(FromUtf8(json));
    return file;
  }
  /// A layout of one fixed field "V" with these attributes.
  static std::string Fixed(const std::string& attributes) {
    return R"({"tovalin:formato": "fijo", "fields": [{"name": "V", )" + attributes + "}]}";
  }
  static std::string Delimited(const std::string& attributes, const std::string& file = "") {
    return "{" + file + R"("fields": [{"name": "V", )" + attributes + "}]}";
  }

  /// The faults of the last run: "row|record|field|value|reason", a line each.
  static std::string Faults(const ArchivoPlano& file) {
    std::string lines;
    for (const ArchivoPlano::Fallo& fault : file.Fallos())
      lines += std::to_string(fault.fila) + "|" + ToUtf8(fault.registro) + "|" +
               ToUtf8(fault.campo) + "|" + ToUtf8(fault.valor) + "|" + ToUtf8(fault.motivo) + "\n";
    return lines;
  }
  /// What one value becomes in the file: the line, or the reason of its refusal.
  std::string Written(const std::string& json, const Variant& value) const {
    const auto file = WithLayout(json);
    if (file->Escribir(TableOf({{value}}), Path())) return Contents();
    EXPECT_FALSE(Exists());
    return file->Fallos().empty() ? "?" : ToUtf8(file->Fallos().front().motivo);
  }

  TemporaryDirectory here;
};

}  // namespace tovalin
