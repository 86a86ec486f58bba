// What registration writes for each class on a platform that has a registry.
#include <cstdio>

#include "component/class_table.h"

namespace KorvaneSoftware {

std::string GuidText(const GUID& guid) {
    char text[39];
    std::snprintf(text, sizeof(text), "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}", guid.Data1, guid.Data2,
                  guid.Data3, guid.Data4[0], guid.Data4[1], guid.Data4[2], guid.Data4[3], guid.Data4[4], guid.Data4[5],
                  guid.Data4[6], guid.Data4[7]);
    return text;
}

std::vector<RegistryRow> RegistrationScript(const ComponentClass& registered) {
    const std::string clsid = GuidText(*registered.clsid);
    const std::string independent = std::string(kModuleName) + "." + registered.name;
    const std::string versioned = independent + ".1";
    const std::string description = std::string(registered.name) + " Class";
    const std::string classKey = "CLSID\\" + clsid;
    return {
        {versioned, "", description},
        {versioned + "\\CLSID", "", clsid},
        {independent, "", description},
        {independent + "\\CLSID", "", clsid},
        {independent + "\\CurVer", "", versioned},
        {classKey, "", description},
        {classKey + "\\ProgID", "", versioned},
        {classKey + "\\VersionIndependentProgID", "", independent},
        {classKey + "\\InprocServer32", "", "%MODULE%"},
        {classKey + "\\InprocServer32", "ThreadingModel", kThreadingModel},
        {classKey + "\\TypeLib", "", GuidText(kTypeLibraryId)},
    };
}

}  // namespace KorvaneSoftware
