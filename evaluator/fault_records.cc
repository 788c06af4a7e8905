#include "evaluator/fault_records.h"

#include "evaluator/infix_check.h"

namespace tovalin {
namespace {

Ref<Collection> FaultRecord(const Variant& expression, const Fault& fault) {
  auto record = Make<Collection>();
  const auto add = [&](TextView key, Variant value) { record->Add(value, Variant(key)); };
  add(u"Codigo", static_cast<std::int32_t>(fault.code));
  add(u"Inicio", static_cast<std::int32_t>(fault.start + 1));
  add(u"Largo", static_cast<std::int32_t>(fault.length));
  add(u"Mensaje", fault.message);
  add(u"Expresion", expression);
  return record;
}

}  // namespace

void AppendFaultRecords(Collection& records, const FaultReport& report) {
  std::vector<Fault> faults = report.faults;
  MoveSpansToHostText(faults, report.text, report.host_text);
  const Variant expression(report.host_text);  // shared by all records
  for (const Fault& fault : faults) records.Add(FaultRecord(expression, fault));
}

void AppendFaultLines(Text& lines, std::size_t& number, const FaultReport& report) {
  for (const Fault& fault : report.faults)
    lines.append(FromUtf8(std::to_string(++number)))
        .append(u" - ")
        .append(fault.message)
        .append(u"\r\n");
}

}  // namespace tovalin
