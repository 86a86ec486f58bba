#include "component/class_table.h"

#include "component/com_object.h"
#include "component/copy_memory.h"

namespace KorvaneSoftware {

namespace {

constexpr ComponentClass kClasses[] = {
    {&CLSID_CopyMemory, "CopyMemory", &CreateComponent<CCopyMemory>},
};

}  // namespace

std::span<const ComponentClass> ComponentClasses() { return kClasses; }

}  // namespace KorvaneSoftware
