#include "tovalin/dispatch.h"
#include "tovalin/lib_file.h"

namespace tovalin {
namespace {

constexpr MemberRow kMembers[] = {
    Method<&LibFile::DirExist>(1, u"DirExist", {{u"vstrFile"}}, u"Indica si existe un directorio"),
    Method<&LibFile::FileExist>(2, u"FileExist", {{u"vstrFileName"}},
                                u"Indica si existe un archivo"),
    Method<&LibFile::Ejecutar>(3, u"Ejecutar", {{u"cmdLine"}, Optional({u"Sincronico"}, false)},
                               u"Ejecuta una línea de comandos, esperando o no su fin"),
    Method<&LibFile::IsUNCName>(4, u"IsUNCName", {{u"strPathName"}},
                                u"Indica si una ruta es un nombre de red"),
    Method<&LibFile::StripFileName>(5, u"StripFileName", {{u"rsFileName"}},
                                    u"Devuelve el nombre de archivo de una ruta"),
    Method<&LibFile::StripPath>(6, u"StripPath", {{u"vstrFile"}},
                                u"Devuelve el directorio de una ruta"),
    Method<&LibFile::FileToText>(7, u"FileToText", {{u"FileName"}},
                                 u"Devuelve el texto de un archivo"),
};

constexpr EventRow kEvents[] = {
    DescribeEvent<&LibFile::OnProcess>(1, u"OnProcess", {{u"Cancel"}}, u""),
    DescribeEvent<&LibFile::BeforeDelete>(2, u"BeforeDelete", {{u"Cancel"}}, u""),
};

}  // namespace

constinit const ClassInfo LibFile::kInfo = DescribeClass<LibFile, kMembers, kEvents>(u"");

const ClassInfo& LibFile::Class() const { return kInfo; }

}  // namespace tovalin
