#include "evaluator/calculation.h"
#include "frame/object/error_translation.h"
#include "review/review.h"

// Evaluador.Revisar: the evaluator knows nothing of reviews.

namespace tovalin {
namespace {

Ref<Collection> RecordOf(const review::Report& report) {
  auto record = Make<Collection>();
  const auto add = [&](TextView key, Variant value) { record->Add(value, Variant(key)); };
  add(u"Clase", report.severity);
  add(u"Codigo", report.code);
  add(u"Inicio", static_cast<std::int32_t>(report.start));
  add(u"Largo", static_cast<std::int32_t>(report.length));
  add(u"Mensaje", report.message);
  add(u"Sugerencia", report.suggestion);
  return record;
}

}  // namespace

Ref<Collection> Evaluador::Revisar(const Text& Formula, Ref<Campos>* LocalVbles) const {
  return RaisingErrors([&] {
    if (LocalVbles && !*LocalVbles) *LocalVbles = Make<Campos>();
    const review::Surroundings surroundings{
        core_->symbols, LocalVbles ? LocalVbles->get() : nullptr,
        [this](Text text) { return core_->plans.GetLexer().Tokens(std::move(text)); },
        Evaluate.HasHandlers()};
    auto records = Make<Collection>();
    for (const review::Report& report : review::ReviewFormula(surroundings, Formula))
      records->List().Append(RecordOf(report));
    return records;
  });
}

}  // namespace tovalin
