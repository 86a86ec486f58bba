// The binary surface as an application in another language sees it: the four exports, identifiers as bytes, and methods
// called by the number of their slot. Nothing here comes from the library's headers.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "component/raw_component.h"

namespace {

using namespace raw_component;

struct ClassRow {
    const char* name;
    const char* clsid;
    std::vector<const char*> interfaces;  // The default one first.
};

const ClassRow kClasses[] = {
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
const std::vector<std::string> kRequired = {"CopyMemory"};

struct InterfaceRow {
    const char* name;
    const char* iid;
};

constexpr InterfaceRow kInterfaces[] = {
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

Guid InterfaceIdOf(const std::string& name) {
    for (const InterfaceRow& row : kInterfaces)
        if (row.name == name) return Guid(row.iid);
    throw std::logic_error(name);
}

const ClassRow& ClassOf(const std::string& name) {
    for (const ClassRow& row : kClasses)
        if (row.name == name) return row;
    throw std::logic_error(name);
}

bool IsThere(const ClassRow& row) {
    void* factory = nullptr;
    if (DllGetClassObject(Guid(row.clsid), kIidClassFactory, &factory) != kOk) return false;
    Release(factory);
    return true;
}

/// A new object's interface.
Object Make(const char* className, const char* interfaceName) {
    return Object(Guid(ClassOf(className).clsid), InterfaceIdOf(interfaceName));
}

TEST(Exports, RequiredClassesAreThere) {
    for (const std::string& name : kRequired) EXPECT_TRUE(IsThere(ClassOf(name))) << name;
}

TEST(Exports, ClassObjects) {
    void* object = &object;
    const Guid copyMemory(ClassOf("CopyMemory").clsid);
    EXPECT_EQ(DllGetClassObject(Guid("00000000000000000000000000000001"), kIidClassFactory, &object),
              static_cast<Result>(0x80040111));
    EXPECT_EQ(object, nullptr);
    object = &object;
    EXPECT_EQ(DllGetClassObject(copyMemory, InterfaceIdOf("ICopyMemory"), &object), kNoInterface);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(DllGetClassObject(copyMemory, kIidClassFactory, nullptr), kPointer);
    EXPECT_EQ(DllGetClassObject(Guid("00000000000000000000000000000001"), kIidClassFactory, nullptr), kPointer);

    void* factory = nullptr;
    void* unknown = nullptr;
    ASSERT_EQ(DllGetClassObject(copyMemory, kIidClassFactory, &factory), kOk);
    ASSERT_EQ(DllGetClassObject(copyMemory, kIidUnknown, &unknown), kOk);
    EXPECT_EQ(factory, unknown) << "one class object per class";
    object = &object;
    EXPECT_EQ(QueryInterface(factory, InterfaceIdOf("ICopyMemory"), &object), kNoInterface);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(QueryInterface(factory, kIidUnknown, nullptr), kPointer);
    EXPECT_EQ(CreateInstance(factory, nullptr, InterfaceIdOf("ICopyMemory"), nullptr), kPointer);
    object = &object;
    EXPECT_EQ(CreateInstance(factory, nullptr, InterfaceIdOf("ITitleMixer"), &object), kNoInterface);
    EXPECT_EQ(object, nullptr);
    Release(factory);
    Release(unknown);
}

TEST(Exports, UnloadingWaitsForObjectsAndLocks) {
    EXPECT_EQ(DllCanUnloadNow(), kOk);
    void* factory = nullptr;
    ASSERT_EQ(DllGetClassObject(Guid(ClassOf("CopyMemory").clsid), kIidClassFactory, &factory), kOk);
    EXPECT_EQ(DllCanUnloadNow(), kOk) << "class objects do not count";
    EXPECT_EQ(LockServer(factory, 1), kOk);
    EXPECT_EQ(DllCanUnloadNow(), kFalse);
    EXPECT_EQ(LockServer(factory, 7), kOk);
    EXPECT_EQ(LockServer(factory, 0), kOk);
    EXPECT_EQ(DllCanUnloadNow(), kFalse);
    EXPECT_EQ(LockServer(factory, 0), kOk);
    EXPECT_EQ(DllCanUnloadNow(), kOk);
    void* first = nullptr;
    void* second = nullptr;
    ASSERT_EQ(CreateInstance(factory, nullptr, kIidUnknown, &first), kOk);
    ASSERT_EQ(CreateInstance(factory, nullptr, kIidUnknown, &second), kOk);
    EXPECT_NE(first, second);
    EXPECT_EQ(DllCanUnloadNow(), kFalse);
    AddRef(first);
    Release(first);
    Release(first);
    EXPECT_EQ(DllCanUnloadNow(), kFalse);
    Release(second);
    EXPECT_EQ(DllCanUnloadNow(), kOk);
    Release(factory);
}

TEST(Exports, RegistrationIsHonest) {
    EXPECT_EQ(DllRegisterServer(), kNotImplemented);
    EXPECT_EQ(DllUnregisterServer(), kNotImplemented);
}

TEST(Classes, OfferTheirInterfacesAndNoOthers) {
    for (const ClassRow& row : kClasses) {
        if (!IsThere(row)) continue;
        SCOPED_TRACE(row.name);
        const Guid clsid(row.clsid);
        Object object(clsid, InterfaceIdOf(row.interfaces.front()));
        for (const InterfaceRow& candidate : kInterfaces) {
            SCOPED_TRACE(candidate.name);
            bool expected = false;
            for (const char* offered : row.interfaces) expected = expected || std::string(offered) == candidate.name;
            void* found = &found;
            EXPECT_EQ(QueryInterface(object.get(), Guid(candidate.iid), &found), expected ? kOk : kNoInterface);
            if (!expected) {
                EXPECT_EQ(found, nullptr);
                continue;
            }
            ASSERT_NE(found, nullptr);
            // From every interface the way back leads to the same identity, which is the default interface's.
            void* identity = nullptr;
            EXPECT_EQ(QueryInterface(found, kIidUnknown, &identity), kOk);
            EXPECT_EQ(identity, object.get());
            Release(identity);
            Release(found);
            // And a new object can be asked for it at once.
            const Object direct(clsid, Guid(candidate.iid));
            EXPECT_NE(direct.get(), nullptr);
        }
        EXPECT_EQ(QueryInterface(object.get(), kIidUnknown, nullptr), kPointer);
        EXPECT_EQ(AddRef(object.get()), 2u);
        EXPECT_EQ(Release(object.get()), 1u);
    }
    EXPECT_EQ(DllCanUnloadNow(), kOk);
}

/// A controlling object of an aggregate, laid out by hand.
struct Outer {
    const void* const* table;
    std::uint32_t references = 1;
    void* inner = nullptr;

    static Result Query(Outer* self, const Guid& iid, void** object) {
        if (std::memcmp(&iid, &kIidUnknown, sizeof(iid)) == 0) {
            *object = self;
            ++self->references;
            return kOk;
        }
        return QueryInterface(self->inner, iid, object);
    }
    static std::uint32_t Add(Outer* self) { return ++self->references; }
    static std::uint32_t Drop(Outer* self) { return --self->references; }
};

TEST(Classes, CanBeAggregated) {
    const void* const table[] = {reinterpret_cast<const void*>(&Outer::Query),
                                 reinterpret_cast<const void*>(&Outer::Add),
                                 reinterpret_cast<const void*>(&Outer::Drop)};
    for (const ClassRow& row : kClasses) {
        if (!IsThere(row)) continue;
        SCOPED_TRACE(row.name);
        Outer outer{table};
        void* factory = nullptr;
        ASSERT_EQ(DllGetClassObject(Guid(row.clsid), kIidClassFactory, &factory), kOk);
        void* result = &result;
        EXPECT_EQ(CreateInstance(factory, &outer, InterfaceIdOf(row.interfaces.front()), &result),
                  static_cast<Result>(0x80040110))
            << "an outer object must ask for IUnknown";
        EXPECT_EQ(result, nullptr);
        ASSERT_EQ(CreateInstance(factory, &outer, kIidUnknown, &outer.inner), kOk);
        EXPECT_EQ(outer.references, 1u);
        EXPECT_NE(outer.inner, static_cast<void*>(&outer));
        for (const char* name : row.interfaces) {
            void* found = nullptr;
            ASSERT_EQ(QueryInterface(outer.inner, InterfaceIdOf(name), &found), kOk) << name;
            EXPECT_EQ(outer.references, 2u);
            void* identity = nullptr;
            EXPECT_EQ(QueryInterface(found, kIidUnknown, &identity), kOk);
            EXPECT_EQ(identity, static_cast<void*>(&outer));
            EXPECT_EQ(outer.references, 3u);
            EXPECT_EQ(Release(found), 2u);
            EXPECT_EQ(Release(found), 1u);
        }
        EXPECT_EQ(Release(outer.inner), 0u);
        Release(factory);
    }
    EXPECT_EQ(DllCanUnloadNow(), kOk);
}

TEST(Classes, AreMadeAndReleasedByManyThreads) {
    std::atomic<int> failures{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&failures] {
            for (int round = 0; round < 500; ++round) {
                void* factory = nullptr;
                void* object = nullptr;
                if (DllGetClassObject(Guid(ClassOf("CopyMemory").clsid), kIidClassFactory, &factory) != kOk ||
                    CreateInstance(factory, nullptr, InterfaceIdOf("ICopyMemory"), &object) != kOk) {
                    failures.fetch_add(1);
                    return;
                }
                if (DllCanUnloadNow() != kFalse) failures.fetch_add(1);
                Release(factory);
                if (Release(object) != 0) failures.fetch_add(1);
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(failures.load(), 0);
    EXPECT_EQ(DllCanUnloadNow(), kOk);
}

TEST(Slots, CopyMemory) {
    const Object object = Make("CopyMemory", "ICopyMemory");
    std::vector<std::uint8_t> source(100);
    for (std::size_t i = 0; i < source.size(); ++i) source[i] = static_cast<std::uint8_t>(i * 7);
    std::vector<std::uint8_t> target(100, 0xEE);
    EXPECT_EQ(object.Call<Result>(3, target.data(), source.data(), 99u), kOk);
    EXPECT_TRUE(std::equal(source.begin(), source.begin() + 99, target.begin()));
    EXPECT_EQ(target[99], 0xEE);
    EXPECT_EQ(object.Call<Result>(4, target.data() + 1, 5u, std::uint8_t{0xAB}), kOk);
    EXPECT_EQ(target[0], source[0]);
    for (int i = 1; i < 6; ++i) EXPECT_EQ(target[i], 0xAB);
    EXPECT_EQ(target[6], source[6]);
    EXPECT_EQ(object.Call<Result>(5, target.data() + 11, 2u, std::uint16_t{0x1234}), kOk);
    EXPECT_EQ(std::vector<std::uint8_t>(target.begin() + 11, target.begin() + 15),
              (std::vector<std::uint8_t>{0x34, 0x12, 0x34, 0x12}));
    EXPECT_EQ(target[15], source[15]);
    EXPECT_EQ(object.Call<Result>(6, target.data() + 21, 1u, std::uint32_t{0x12345678}), kOk);
    EXPECT_EQ(std::vector<std::uint8_t>(target.begin() + 21, target.begin() + 25),
              (std::vector<std::uint8_t>{0x78, 0x56, 0x34, 0x12}));
    EXPECT_EQ(object.Call<Result>(7, target.data() + 30, 3u), kOk);
    for (int i = 30; i < 33; ++i) EXPECT_EQ(target[i], 0);
    EXPECT_EQ(target[33], source[33]);
}

TEST(Slots, CopyMemoryWithNothingToDo) {
    const Object object = Make("CopyMemory", "ICopyMemory");
    void* const null = nullptr;
    EXPECT_EQ(object.Call<Result>(3, null, null, 0u), kOk);
    EXPECT_EQ(object.Call<Result>(4, null, 0u, std::uint8_t{1}), kOk);
    EXPECT_EQ(object.Call<Result>(5, null, 0u, std::uint16_t{1}), kOk);
    EXPECT_EQ(object.Call<Result>(6, null, 0u, std::uint32_t{1}), kOk);
    EXPECT_EQ(object.Call<Result>(7, null, 0u), kOk);
}

TEST(Slots, CopyMemoryRefusesNull) {
    const Object object = Make("CopyMemory", "ICopyMemory");
    void* const null = nullptr;
    std::uint8_t bytes[4] = {1, 2, 3, 4};
    void* const some = bytes;
    EXPECT_EQ(object.Call<Result>(3, null, some, 4u), kFail);
    EXPECT_EQ(object.Call<Result>(3, some, null, 4u), kFail);
    EXPECT_EQ(object.Call<Result>(4, null, 4u, std::uint8_t{9}), kFail);
    EXPECT_EQ(object.Call<Result>(5, null, 2u, std::uint16_t{9}), kFail);
    EXPECT_EQ(object.Call<Result>(6, null, 1u, std::uint32_t{9}), kFail);
    EXPECT_EQ(object.Call<Result>(7, null, 4u), kFail);
    EXPECT_EQ(bytes[0], 1);
    EXPECT_EQ(bytes[3], 4);
}

}  // namespace
