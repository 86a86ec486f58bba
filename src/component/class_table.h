// The component classes of the module: what DllGetClassObject knows, and what registration would write.
#pragma once

#include <pixmorph/pixmorph.h>
#include <span>
#include <string>
#include <vector>

namespace KorvaneSoftware {

inline constexpr char kModuleName[] = "IPixmorph";
inline constexpr char kTypeLibraryName[] = "IPIXMORPHLib";
inline constexpr char kTypeLibraryVersion[] = "1.0";
inline constexpr GUID kTypeLibraryId = {0xB6D80AF6, 0xB6D4, 0x411A, {0xBF, 0xD6, 0x77, 0xC1, 0x61, 0x3F, 0x51, 0x1F}};
inline constexpr char kThreadingModel[] = "Both";

/// A class that this module can create.
struct ComponentClass {
    const GUID* clsid;
    const char* name;
    HRESULT (*create)(IUnknown* outer, const GUID& iid, void** object);
};

/// All classes of the module.
std::span<const ComponentClass> ComponentClasses();

/// One value that registration writes: below the classes root, `key`'s value `name` (empty: the key's own).
struct RegistryRow {
    std::string key;
    std::string name;
    std::string value;
};

/// The rows of a class, in the order in which they are written. "%MODULE%" stands for the module's path.
std::vector<RegistryRow> RegistrationScript(const ComponentClass& registered);

/// "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}"
std::string GuidText(const GUID& guid);

}  // namespace KorvaneSoftware
