#include "component/class_table.h"

#include "component/com_object.h"
#include "component/copy_memory.h"
#include "component/pixmorph.h"
#include "component/stretch_image.h"

namespace KorvaneSoftware {

namespace {

constexpr ComponentClass kClasses[] = {
    {&CLSID_Pixmorph, "Pixmorph", &CreateComponent<CPixmorph>},
    {&CLSID_StretchImage, "StretchImage", &CreateComponent<CStretchImage>},
    {&CLSID_CopyMemory, "CopyMemory", &CreateComponent<CCopyMemory>},
};

}  // namespace

std::span<const ComponentClass> ComponentClasses() { return kClasses; }

}  // namespace KorvaneSoftware
