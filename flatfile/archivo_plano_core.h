#pragma once

#include <memory>
#include <vector>

#include "flatfile/error_log.h"
#include "flatfile/layout.h"
#include "tovalin/archivo_plano.h"

namespace tovalin {

class ArchivoPlano::Core {
 public:
  // A layout is never changed, so that a handler that sets another one in the midst of a
  // file leaves that file its own.
  std::shared_ptr<const flat::Layout> layout;
  Ref<Campos> parameters = Make<Campos>();
  Ref<Evaluador> evaluator;
  bool partial = false;
  std::int32_t limit = 1000;
  flat::ErrorLog log{0};
  std::int64_t refused = 0;
  std::vector<std::int64_t> records;
  std::vector<Text> kinds;  // the names of those records
  bool published = false;
  bool busy = false;

  std::shared_ptr<const flat::Layout> Required() const {
    if (!layout) RaiseOwn(kClassName, u"No se ha dado el diseño del archivo");
    return layout;
  }
  void Set(flat::Layout value) { layout = std::make_shared<const flat::Layout>(std::move(value)); }
  const flat::Layout* Begin(const std::shared_ptr<const flat::Layout>& begun) {
    const flat::Layout& used = *begun;
    log = flat::ErrorLog(static_cast<std::size_t>(limit));
    refused = 0;
    published = false;
    records.assign(used.records.size(), 0);
    kinds.clear();
    for (const flat::RecordLayout& record : used.records) kinds.push_back(record.name);
    return &used;
  }
};

namespace flat {

/// The names of the columns of the rows.
std::vector<Text> NamesOf(const Layout& layout);

/// The number of a kind of record, of the first detail for an empty name. Raises 5 for an
/// unknown one.
std::size_t KindOf(const Layout& layout, TextView name);

/// A count as hosts take it.
std::int32_t ToCount(std::int64_t count);

}  // namespace flat
}  // namespace tovalin
