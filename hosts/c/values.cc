#include "hosts/c/values.h"

#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

#include "frame/object/error_translation.h"
#include "hosts/c/handle_table.h"

namespace tovalin::c_abi {
namespace {

char16_t Character(const void* utf16, std::size_t index) {
  char16_t c = 0;  // a host's pointer need not be even
  std::memcpy(&c, static_cast<const char*>(utf16) + index * sizeof c, sizeof c);
  return c;
}

std::size_t LengthOf(const tov_value& value) {
  if (value.length != TOV_TO_ZERO) {
    if (value.length > kLongestText) Raise(Failure::OutOfMemory);
    return static_cast<std::size_t>(value.length);
  }
  if (!value.as.utf8) Raise(Failure::InvalidArgument);
  if (value.encoding == TOV_UTF8) return std::strlen(value.as.utf8);
  std::size_t length = 0;
  while (Character(value.as.utf16, length) != 0) ++length;
  return length;
}

// The bytes of a text and a 0 behind them, in memory that Clear gives back.
const void* Duplicate(const void* text, std::size_t length, std::size_t character) {
  void* const copy = std::calloc(length + 1, character);
  if (!copy) throw std::bad_alloc();
  if (length > 0) std::memcpy(copy, text, length * character);
  return copy;
}

tov_value OfType(Subtype subtype) {
  tov_value value{};
  value.type = static_cast<std::uint16_t>(subtype);
  return value;
}

Variant ReadHandle(const tov_value& value, GroupLock& group) {
  const bool is_object = value.type == TOV_OBJECT;
  if (is_object && value.as.handle == 0) return Ref<Object>();
  HandleTable& table = HandleTable::Instance();
  const Pin pin = is_object ? table.FindObject(value.as.handle) : table.FindArray(value.as.handle);
  group.Include(pin->group);
  return pin->value;
}

tov_value WriteHandle(const Variant& value, const Ref<Group>& group) {
  tov_value written = OfType(value.Kind());
  if (value.Is(Subtype::Object) && !value.AsObject()) return written;
  written.as.handle = HandleTable::Instance().Give(value, group);
  written.flags = TOV_OWNED;
  return written;
}

bool SameNumber(const tov_value& left, const tov_value& right) {
  return std::memcmp(&left.as, &right.as, sizeof left.as) == 0;
}

// A value that is neither text, object nor array.
tov_value WriteScalar(const Variant& value) {
  tov_value written = OfType(value.Kind());
  switch (value.Kind()) {
    case Subtype::Integer:
      written.as.i16 = value.AsInteger();
      break;
    case Subtype::Long:
      written.as.i32 = value.AsLong();
      break;
    case Subtype::Single:
      written.as.f32 = value.AsSingle();
      break;
    case Subtype::Double:
      written.as.f64 = value.AsDouble();
      break;
    case Subtype::Currency:
      written.as.i64 = value.AsCurrency().ten_thousandths;
      break;
    case Subtype::Date:
      written.as.f64 = value.AsDate().days;
      break;
    case Subtype::Error:
      written.as.i32 = value.AsErrorCode();
      break;
    case Subtype::Boolean:
      written.as.i32 = value.AsBoolean() ? 1 : 0;
      break;
    case Subtype::Byte:
      written.as.u8 = value.AsByte();
      break;
    default:
      break;
  }
  return written;
}

}  // namespace

Text ReadText(const tov_value& value) {
  if (value.type != TOV_STRING) Raise(Failure::TypeMismatch);
  if (value.encoding > TOV_UTF16) Raise(Failure::InvalidArgument);
  const std::size_t length = LengthOf(value);
  if (length == 0) return {};
  if (!value.as.utf8) Raise(Failure::InvalidArgument);
  if (value.encoding == TOV_UTF8) return FromUtf8({value.as.utf8, length});
  Text text(length, u'\0');
  std::memcpy(text.data(), value.as.utf16, length * sizeof(char16_t));
  return text;
}

Text ReadName(const char* utf8) { return FromUtf8(&Given(utf8)); }

Variant Read(const tov_value& value, GroupLock& group) {
  switch (value.type) {
    case TOV_EMPTY:
      return {};
    case TOV_NULL:
      return Variant::Null();
    case TOV_INTEGER:
      return value.as.i16;
    case TOV_LONG:
      return value.as.i32;
    case TOV_SINGLE:
      return value.as.f32;
    case TOV_DOUBLE:
      return value.as.f64;
    case TOV_CURRENCY:
      return Currency{value.as.i64};
    case TOV_DATE:
      return Date{value.as.f64};
    case TOV_STRING:
      return ReadText(value);
    case TOV_OBJECT:
    case TOV_ARRAY:
      return ReadHandle(value, group);
    case TOV_ERROR:
      return Variant::ErrorValue(value.as.i32);
    case TOV_BOOLEAN:
      return value.as.i32 != 0;
    case TOV_BYTE:
      return value.as.u8;
    default:
      Raise(Failure::TypeMismatch);
  }
}

tov_value WriteText(TextView text, int encoding) {
  tov_value written = OfType(Subtype::String);
  written.flags = TOV_OWNED;
  if (encoding == TOV_UTF16) {
    written.encoding = TOV_UTF16;
    written.length = text.size();
    written.as.utf16 =
        static_cast<const std::uint16_t*>(Duplicate(text.data(), text.size(), sizeof(char16_t)));
  } else {
    const std::string utf8 = ToUtf8(text);
    written.length = utf8.size();
    written.as.utf8 = static_cast<const char*>(Duplicate(utf8.data(), utf8.size(), 1));
  }
  return written;
}

tov_value Write(const Variant& value, int encoding, const Ref<Group>& group) {
  switch (value.Kind()) {
    case Subtype::String:
      return WriteText(value.AsText(), encoding);
    case Subtype::Object:
    case Subtype::Array:
      return WriteHandle(value, group);
    default:
      return WriteScalar(value);
  }
}

void Clear(tov_value& value) noexcept {
  if (value.flags & TOV_OWNED) {
    if (value.type == TOV_STRING)
      std::free(const_cast<char*>(value.as.utf8));
    else if (value.type == TOV_OBJECT || value.type == TOV_ARRAY)
      tov_release(value.as.handle, nullptr);
  }
  const std::uint8_t encoding = value.encoding;  // what the host wants next time, too
  value = tov_value{};
  value.encoding = encoding;
}

void Clear(tov_error& error) noexcept {
  Clear(error.source);
  Clear(error.description);
  error.number = error.position = error.length = 0;
}

bool IsSame(const Variant& left, const Variant& right) {
  if (left.Kind() != right.Kind()) return false;
  switch (left.Kind()) {
    case Subtype::String:
      return left.AsText() == right.AsText();
    case Subtype::Object:
      return left.AsObject() == right.AsObject();
    case Subtype::Array:
      return &left.AsArray() == &right.AsArray();
    default:
      return SameNumber(WriteScalar(left), WriteScalar(right));
  }
}

std::int32_t Tell(const Error& raised, tov_error* error) noexcept {
  const std::int32_t number = raised.number != 0 ? raised.number : kObjectError;
  if (!error) return number;
  error->number = number;
  error->position = error->length = 0;
  error->source = error->description = tov_value{};
  try {
    OwnedValue source(WriteText(raised.source, error->encoding));
    error->description = WriteText(raised.description, error->encoding);
    error->source = source.Take();
  } catch (const std::exception&) {
    // No memory for the texts: the number alone tells.
  }
  return number;
}

Error ReadError(const tov_error& error) {
  const auto text = [](const tov_value& value) {
    return value.type == TOV_EMPTY ? Text() : ReadText(value);
  };
  return {error.number, text(error.source), text(error.description)};
}

std::int32_t Answer(tov_error* error, void (*work)(void* closure), void* closure) noexcept {
  try {
    const std::optional<Error> raised = CatchError([&] { work(closure); });
    return raised ? Tell(*raised, error) : 0;
  } catch (...) {
    return Tell({kObjectError, {}, {}}, error);  // of a C++ host's own object
  }
}

}  // namespace tovalin::c_abi
