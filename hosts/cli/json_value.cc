#include "hosts/cli/json_value.h"

#include <cmath>

#include "hosts/cli/command_line.h"
#include "tovalin/collection.h"
#include "tovalin/convert.h"

namespace tovalin::tool {
namespace {

// Keys are looked at one after the other: the records are short.
Json JsonOfItems(const Collection& items) {
  const Ref<Collection> keys = items.Claves();
  const bool has_keys = items.Count() > 0 && !keys->List()[0].AsText().empty();
  Json json = has_keys ? Json(Json::Object()) : Json(Json::Array());
  for (std::size_t i = 0; i < items.List().Size(); ++i) {
    Json item = JsonOf(items.List()[i]);
    if (has_keys)
      json.Add(ToUtf8(keys->List()[i].AsText()), std::move(item));
    else
      json.Add(std::move(item));
  }
  return json;
}

}  // namespace

Json JsonOf(const Variant& value) {
  switch (value.Kind()) {
    case Subtype::Null:
      return {};
    case Subtype::Boolean:
      return ToBoolean(value);
    case Subtype::Byte:
    case Subtype::Integer:
    case Subtype::Long:
      return std::int64_t{ToLong(value)};
    case Subtype::Double:
      if (std::isfinite(ToDouble(value))) return ToDouble(value);
      return ShowValue(value);
    case Subtype::Object:
      if (const Ref<Object>& object = value.AsObject())
        if (const Ref<Collection> items = object.As<Collection>()) return JsonOfItems(*items);
      return ShowValue(value);
    default:
      return ShowValue(value);
  }
}

}  // namespace tovalin::tool
