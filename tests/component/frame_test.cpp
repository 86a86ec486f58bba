// The binary surface as an application in another language sees it: the four exports, identifiers as bytes, and methods
// called by the number of their slot. Nothing here comes from the library's headers.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "component/raw_classes.h"

namespace {

using namespace raw_component;

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
    EXPECT_EQ(DllCanUnloadNow(), kFalse) << "a held class object keeps the module";
    EXPECT_EQ(LockServer(factory, 1), kOk);
    EXPECT_EQ(LockServer(factory, 7), kOk);
    Release(factory);
    EXPECT_EQ(DllCanUnloadNow(), kFalse);
    EXPECT_EQ(LockServer(factory, 0), kOk);
    EXPECT_EQ(DllCanUnloadNow(), kFalse);
    EXPECT_EQ(LockServer(factory, 0), kOk);
    EXPECT_EQ(DllCanUnloadNow(), kOk);
    ASSERT_EQ(DllGetClassObject(Guid(ClassOf("CopyMemory").clsid), kIidClassFactory, &factory), kOk);
    void* first = nullptr;
    void* second = nullptr;
    ASSERT_EQ(CreateInstance(factory, nullptr, kIidUnknown, &first), kOk);
    ASSERT_EQ(CreateInstance(factory, nullptr, kIidUnknown, &second), kOk);
    EXPECT_NE(first, second);
    EXPECT_EQ(DllCanUnloadNow(), kFalse);
    AddRef(first);
    Release(first);
    Release(first);
    Release(factory);
    EXPECT_EQ(DllCanUnloadNow(), kFalse);
    Release(second);
    EXPECT_EQ(DllCanUnloadNow(), kOk);
}

TEST(Exports, EachHeldClassObjectKeepsTheModule) {
    void* first = nullptr;
    void* again = nullptr;
    void* other = nullptr;
    ASSERT_EQ(DllGetClassObject(Guid(ClassOf("CopyMemory").clsid), kIidClassFactory, &first), kOk);
    ASSERT_EQ(DllGetClassObject(Guid(ClassOf("CopyMemory").clsid), kIidUnknown, &again), kOk);
    ASSERT_EQ(DllGetClassObject(Guid(ClassOf("TitleMixer").clsid), kIidClassFactory, &other), kOk);
    EXPECT_EQ(AddRef(other), 2u);
    EXPECT_EQ(Release(first), 1u);
    EXPECT_EQ(Release(other), 1u);
    EXPECT_EQ(DllCanUnloadNow(), kFalse);
    EXPECT_EQ(Release(again), 0u);
    EXPECT_EQ(DllCanUnloadNow(), kFalse);
    EXPECT_EQ(Release(other), 0u);
    EXPECT_EQ(DllCanUnloadNow(), kOk);
    // A query that fails holds nothing.
    void* none = nullptr;
    EXPECT_EQ(DllGetClassObject(Guid(ClassOf("CopyMemory").clsid), InterfaceIdOf("ICopyMemory"), &none), kNoInterface);
    EXPECT_EQ(DllCanUnloadNow(), kOk);
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

}  // namespace
