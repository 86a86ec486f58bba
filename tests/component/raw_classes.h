// The classes and interfaces of the library as texts, typed here a second time.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "component/raw_component.h"

namespace raw_component {

struct ClassRow {
    const char* name;
    const char* clsid;
    std::vector<const char*> interfaces;  // The default one first.
};

inline const ClassRow kClasses[] = {
    {"Pixmorph",
     "2ACC22E9B8814873BC39DE01DD49185E",
     {"IPixmorph", "IColorConversion", "IPixmorphYUVPlanar", "IPixmorphGamma", "IPixmorphToYUV420Planar"}},
    {"StretchImage", "31E38A3B4457422795B0AC737DAC583E", {"IStretchImage", "IResizeImage"}},
    {"CopyMemory", "8EAE9EC194D84BC4AC19CA65EEC825FE", {"ICopyMemory"}},
    {"TitleMixer", "C98ABA7ED4E346309601C7323F6FCE7A", {"ITitleMixer"}},
    {"TitleMixer2", "CE746614B7FD4A03947260AACEF375B9", {"ITitleMixer2"}},
    {"TitleMixer3", "C318E9A74C9046F3B9E0682D36F87FE5", {"ITitleMixer3", "ITitleMixer4"}},
    {"Y16ARLECompressor", "0B5E501E45134CA781BBF08E129CA27A", {"IY16ARLECompressor"}},
    {"DeinterlaceMaker", "6105D26A775A47A69EB2321639DD398E", {"IDeinterlaceMaker"}},
    {"VideoInterpolation", "6B16BA9EEDD14D8598B0D03640925B7C", {"IVideoInterpolation", "IVideoInterpolation2"}},
    {"VideoDeinterlacer", "1DFC1AAAD3E24361B2656332DD0E75F5", {"IVideoDeinterlacer"}},
    {"VideoCodec", "FC71E80615F04A769C82AFCB64847416", {"IVideoCodecEnum", "IVideoEncoder", "IVideoDecoder"}},
};

// The classes that must be there. The others either answer in full or not at all.
inline const std::vector<std::string> kRequired = {
    "Pixmorph",          "StretchImage",     "CopyMemory",         "TitleMixer",        "TitleMixer2", "TitleMixer3",
    "Y16ARLECompressor", "DeinterlaceMaker", "VideoInterpolation", "VideoDeinterlacer", "VideoCodec"};

struct InterfaceRow {
    const char* name;
    const char* iid;
};

inline constexpr InterfaceRow kInterfaces[] = {
    {"IPixmorph", "7F399F71B8E54AAC97D292991D677866"},
    {"IColorConversion", "6B67CD226EEF4CD79F561E766762D3D1"},
    {"IPixmorphYUVPlanar", "EBC3AE440A7C4BA5AF5D9EA475C2DC11"},
    {"IPixmorphGamma", "D3A57963280A4BCA881EDDCBF832EF61"},
    {"IPixmorphToYUV420Planar", "B203849609EA4DCDB18F55FDB181F492"},
    {"IStretchImage", "076F9D3DD66541EC8DAE71D679F9E118"},
    {"IResizeImage", "FDCD0A0D95B544E3A153F6EC06F4C162"},
    {"ICopyMemory", "A3EA29A55FA1455A81B0BEC10EC6173D"},
    {"ITitleMixer", "9A0ABE85062D432A97C4080E38CA558B"},
    {"ITitleMixer2", "765250E839F2473DB0E289A823A8FC2A"},
    {"ITitleMixer3", "47AEE8E08BC84AE1B48D89E4D41EAA5D"},
    {"ITitleMixer4", "1E439B6C963447148A1D888FAD20A083"},
    {"IY16ARLECompressor", "8F29D605BC2A482E8A44C32B42517356"},
    {"IDeinterlaceMaker", "323C5C6C92A64024A80E03F78EC4105E"},
    {"IVideoInterpolation", "2017185AA78545738503E0E7FFF1A1AF"},
    {"IVideoInterpolation2", "CC50A4CB6906480A855BA091D159DA61"},
    {"IVideoDeinterlacer", "90463ED76A5D448089687DD1D9589EF3"},
    {"IVideoCodecEnum", "802705BEAE5242D58FDD5A88FBB22297"},
    {"IVideoEncoder", "98E14A9E23404DE892BE4AB033F826D4"},
    {"IVideoDecoder", "292E7CEE412B4EC2AE5D7CE49B80829D"},
};

inline Guid InterfaceIdOf(const std::string& name) {
    for (const InterfaceRow& row : kInterfaces)
        if (row.name == name) return Guid(row.iid);
    throw std::logic_error(name);
}

inline const ClassRow& ClassOf(const std::string& name) {
    for (const ClassRow& row : kClasses)
        if (row.name == name) return row;
    throw std::logic_error(name);
}

inline bool IsThere(const ClassRow& row) {
    void* factory = nullptr;
    if (DllGetClassObject(Guid(row.clsid), kIidClassFactory, &factory) != kOk) return false;
    Release(factory);
    return true;
}

/// A new object's interface.
inline Object Make(const char* className, const char* interfaceName) {
    return Object(Guid(ClassOf(className).clsid), InterfaceIdOf(interfaceName));
}

}  // namespace raw_component
