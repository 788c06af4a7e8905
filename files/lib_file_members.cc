#include "tovalin/dispatch.h"
#include "tovalin/lib_file.h"

namespace tovalin {
namespace {

constexpr TextView kPath = u"La ruta, con \"\\\" entre sus directorios";
constexpr TextView kCancel = u"El manejador pone Verdadero para no seguir";

constexpr MemberRow kMembers[] = {
    Method<&LibFile::DirExist>(1, u"DirExist", {{u"vstrFile", kPath}},
                               u"Indica si existe un directorio")
        .Reference(u"Indica si la ruta es un directorio sin más atributos que, si acaso, el de "
                   u"archivar: uno de solo lectura u oculto da Falso. No provoca errores."),
    Method<&LibFile::FileExist>(2, u"FileExist", {{u"vstrFileName", kPath}},
                                u"Indica si existe un archivo")
        .Reference(u"Indica si hay algo con ese nombre en el disco, se pueda leer o no.")
        .Errors({{13, u"el valor no tiene texto"}}),
    Method<&LibFile::Ejecutar>(
        3, u"Ejecutar",
        {{u"cmdLine",
          u"El programa y sus argumentos, separados por blancos; entre comillas dobles "
          u"los que tienen blancos"},
         Optional({u"Sincronico", u"Verdadero para esperar a que el programa termine"}, false)},
        u"Ejecuta una línea de comandos, esperando o no su fin")
        .Reference(u"Ejecuta una línea de comandos, esperando sin límite a que el programa termine "
                   u"o sin esperar. Un programa que no se puede iniciar no provoca un error."),
    Method<&LibFile::IsUNCName>(4, u"IsUNCName", {{u"strPathName", u"La ruta"}},
                                u"Indica si una ruta es un nombre de red")
        .Reference(u"Indica si una ruta empieza como un nombre de red (\"\\\\\", \"//\", \"\\/\" o "
                   u"\"/\\\"), o es un solo separador, o es vacía.")
        .Result(u"-1 si lo es, 0 si no"),
    Method<&LibFile::StripFileName>(5, u"StripFileName", {Unchanged({u"rsFileName", kPath})},
                                    u"Devuelve el nombre de archivo de una ruta")
        .Reference(u"Devuelve el nombre de archivo de una ruta, lo que sigue al último \"\\\": de "
                   u"\"C:\\datos\\a.txt\", \"a.txt\"."),
    Method<&LibFile::StripPath>(6, u"StripPath", {{u"vstrFile", kPath}},
                                u"Devuelve el directorio de una ruta")
        .Reference(u"Devuelve el directorio de una ruta con su \"\\\" final: de "
                   u"\"C:\\datos\\a.txt\", \"C:\\datos\\\". Si no lo tiene, \"\\\"."),
    Method<&LibFile::FileToText>(7, u"FileToText", {{u"FileName", kPath}},
                                 u"Devuelve el texto de un archivo")
        .Reference(u"Devuelve el texto de un archivo en la página de códigos 1252, con retorno de "
                   u"carro y salto de línea después de cada línea; vacío si no hay nada con ese "
                   u"nombre.")
        .Errors({{62, u"el archivo está vacío"},
                 {70, u"no hay permiso para leerlo"},
                 {75, u"es un directorio, o falla la lectura"},
                 {53, u"el archivo desaparece durante la llamada"},
                 {76, u"su directorio desaparece durante la llamada"},
                 {7, u"el texto es demasiado largo"}}),
};

constexpr EventRow kEvents[] = {
    DescribeEvent<&LibFile::OnProcess>(1, u"OnProcess", {{u"Cancel", kCancel}},
                                       u"Una operación larga avanza; ningún miembro lo provoca"),
    DescribeEvent<&LibFile::BeforeDelete>(
        2, u"BeforeDelete", {{u"Cancel", kCancel}},
        u"Un archivo se va a eliminar; ningún miembro lo provoca"),
};

}  // namespace

constinit const ClassInfo LibFile::kInfo =
    DescribeClass<LibFile, kMembers, kEvents>(u"Rutas, archivos de texto y programas");

const ClassInfo& LibFile::Class() const { return kInfo; }

}  // namespace tovalin
