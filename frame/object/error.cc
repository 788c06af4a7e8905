#include "tovalin/error.h"

#include "frame/object/error_translation.h"

namespace tovalin {
namespace {

struct FailureText {
  Failure failure;
  TextView description;
};

constexpr FailureText kFailureTexts[] = {
    {Failure::InvalidArgument, u"Llamada a procedimiento o argumento no válido"},
    {Failure::Overflow, u"Desbordamiento"},
    {Failure::OutOfMemory, u"Memoria insuficiente"},
    {Failure::SubscriptOutOfRange, u"Subíndice fuera del intervalo"},
    {Failure::DivisionByZero, u"División por cero"},
    {Failure::TypeMismatch, u"No coinciden los tipos"},
    {Failure::OutOfStack, u"Espacio de pila insuficiente"},
    {Failure::BadFileName, u"Nombre o número de archivo incorrecto"},
    {Failure::FileNotFound, u"No se encontró el archivo"},
    {Failure::DiskFull, u"Disco lleno"},
    {Failure::ReadPastEnd, u"La entrada pasa del final del archivo"},
    {Failure::PermissionDenied, u"Permiso denegado"},
    {Failure::PathAccess, u"Error de acceso a la ruta o al archivo"},
    {Failure::PathNotFound, u"No se encontró la ruta de acceso"},
    {Failure::ObjectNotSet, u"Variable de objeto no establecida"},
    {Failure::ObjectRequired, u"Se requiere un objeto"},
    {Failure::CannotCreateObject, u"El componente no puede crear el objeto"},
    {Failure::NoSuchMember, u"El objeto no admite esta propiedad o método"},
    {Failure::ArgumentNotOptional, u"Argumento no opcional"},
    {Failure::WrongArgumentCount,
     u"Número de argumentos incorrecto o asignación de propiedad no válida"},
    {Failure::DuplicateKey, u"Esta clave ya está asociada a un elemento de esta colección"},
};

}  // namespace

Error PlatformError(Failure failure) {
  for (const FailureText& row : kFailureTexts)
    if (row.failure == failure)
      return {static_cast<std::int32_t>(failure), u"Tovalin", Text(row.description)};
  return {static_cast<std::int32_t>(failure), u"Tovalin", {}};
}

Error MemoryError() noexcept {
  try {
    return PlatformError(Failure::OutOfMemory);
  } catch (const std::bad_alloc&) {
    return {static_cast<std::int32_t>(Failure::OutOfMemory), u"Tovalin", u"Memoria"};
  }
}

Error ErrorAbout(Failure failure, TextView name) noexcept {
  try {
    Error error = PlatformError(failure);
    error.description.append(u": ").append(name);
    return error;
  } catch (const std::exception& exception) {
    return ErrorOf(exception);
  }
}

Error ErrorOf(const std::exception& exception) noexcept {
  const bool is_memory = dynamic_cast<const std::bad_alloc*>(&exception) ||
                         dynamic_cast<const std::length_error*>(&exception);
  if (is_memory) return MemoryError();
  try {
    return {kObjectError, u"Tovalin", FromUtf8(exception.what())};
  } catch (const std::bad_alloc&) {
    return MemoryError();
  }
}

void Raise(Failure failure) {
  throw RaisingErrors([failure] { return PlatformError(failure); });
}

void RaiseOwn(TextView source, TextView description) {
  throw RaisingErrors([=] { return Error{kObjectError, Text(source), Text(description)}; });
}

}  // namespace tovalin
