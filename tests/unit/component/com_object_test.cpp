// Interface queries, the three forms of an object, and the module's count, on classes made for the purpose.
#include "component/com_object.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>
#include <vector>

namespace {

using namespace KorvaneSoftware;

constexpr GUID kIidFirst = {1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};
constexpr GUID kIidSecond = {1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 12}};
constexpr GUID kIidUnknownToAll = {1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 15}};

#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif
struct IFirst : IUnknown {
    virtual int PIXMORPH_CALL One() = 0;
};
struct ISecond : IUnknown {
    virtual int PIXMORPH_CALL Two() = 0;
};
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

int g_alive = 0;
HRESULT g_finalConstruct = S_OK;
bool g_throw = false;

}  // namespace

template <>
struct KorvaneSoftware::InterfaceId<IFirst> {
    static constexpr GUID value = kIidFirst;
};
template <>
struct KorvaneSoftware::InterfaceId<ISecond> {
    static constexpr GUID value = kIidSecond;
};

namespace {

class CTestObject : public CComponent, public IFirst, public ISecond {
public:
    CTestObject() {
        if (g_throw) throw std::runtime_error("construction");
        ++g_alive;
    }
    static std::span<const InterfaceEntry> Interfaces() {
        static constexpr InterfaceEntry kEntries[] = {
            Entry<CTestObject, IFirst>(),
            Entry<CTestObject, ISecond>(),
        };
        return kEntries;
    }
    HRESULT FinalConstruct() { return g_finalConstruct; }
    int PIXMORPH_CALL One() override { return 1; }
    int PIXMORPH_CALL Two() override { return 2; }

protected:
    ~CTestObject() { --g_alive; }
};

/// An outer object with one interface of its own that offers the inner object's ISecond as well.
class Outer final : public IUnknown {
public:
    HRESULT PIXMORPH_CALL QueryInterface(const GUID& iid, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        if (iid == IID_IUnknown) {
            AddRef();
            *object = static_cast<IUnknown*>(this);
            return S_OK;
        }
        return inner != nullptr ? inner->QueryInterface(iid, object) : E_NOINTERFACE;
    }
    ULONG PIXMORPH_CALL AddRef() override { return ++references; }
    ULONG PIXMORPH_CALL Release() override { return --references; }

    IUnknown* inner = nullptr;
    std::uint32_t references = 1;
};

template <class T>
T* As(void* object) {
    return static_cast<T*>(object);
}

TEST(QueryInterfaceTable, RefusesNullObjectsAndTables) {
    void* result = &result;
    TComObject<CTestObject>* const object = new TComObject<CTestObject>;
    EXPECT_EQ(QueryInterfaceTable(nullptr, CTestObject::Interfaces(), kIidFirst, &result), E_INVALIDARG);
    EXPECT_EQ(QueryInterfaceTable(static_cast<CTestObject*>(object), {}, kIidFirst, &result), E_INVALIDARG);
    // The object comes before the result pointer.
    EXPECT_EQ(QueryInterfaceTable(nullptr, CTestObject::Interfaces(), kIidFirst, nullptr), E_INVALIDARG);
    EXPECT_EQ(QueryInterfaceTable(static_cast<CTestObject*>(object), CTestObject::Interfaces(), kIidFirst, nullptr),
              E_POINTER);
    EXPECT_EQ(object->Release(), 0u);
}

TEST(QueryInterfaceTable, ResultCodesAreThePlatforms) {
    EXPECT_EQ(static_cast<std::uint32_t>(E_INVALIDARG), 0x80070057u);
    EXPECT_EQ(static_cast<std::uint32_t>(E_POINTER), 0x80004003u);
    EXPECT_EQ(static_cast<std::uint32_t>(E_NOINTERFACE), 0x80004002u);
    EXPECT_EQ(static_cast<std::uint32_t>(E_OUTOFMEMORY), 0x8007000Eu);
    EXPECT_EQ(static_cast<std::uint32_t>(E_NOTIMPL), 0x80004001u);
    EXPECT_EQ(static_cast<std::uint32_t>(E_FAIL), 0x80004005u);
}

TEST(TComObject, FindsItsInterfaces) {
    TComObject<CTestObject>* const object = new TComObject<CTestObject>;
    IFirst* const first = object;
    void* result = nullptr;
    EXPECT_EQ(first->QueryInterface(kIidFirst, &result), S_OK);
    EXPECT_EQ(result, static_cast<void*>(first));
    EXPECT_EQ(As<IFirst>(result)->One(), 1);
    EXPECT_EQ(first->QueryInterface(kIidSecond, &result), S_OK);
    EXPECT_EQ(As<ISecond>(result)->Two(), 2);
    EXPECT_NE(result, static_cast<void*>(first));
    // IUnknown is the first entry, from whichever interface it is asked.
    void* fromSecond = nullptr;
    EXPECT_EQ(As<ISecond>(result)->QueryInterface(IID_IUnknown, &fromSecond), S_OK);
    EXPECT_EQ(fromSecond, static_cast<void*>(first));
    // Three references were added to the creator's.
    EXPECT_EQ(first->AddRef(), 5u);
    for (std::uint32_t left = 4; left > 0; --left) EXPECT_EQ(first->Release(), left);
    EXPECT_EQ(g_alive, 1);
    EXPECT_EQ(first->Release(), 0u);
    EXPECT_EQ(g_alive, 0);
}

TEST(TComObject, EndsWithANullResultWhereItLacksTheInterface) {
    TComObject<CTestObject>* const object = new TComObject<CTestObject>;
    IFirst* const first = object;
    void* result = &result;
    EXPECT_EQ(first->QueryInterface(kIidUnknownToAll, &result), E_NOINTERFACE);
    EXPECT_EQ(result, nullptr);
    EXPECT_EQ(first->QueryInterface(kIidUnknownToAll, nullptr), E_POINTER);
    EXPECT_EQ(first->QueryInterface(kIidFirst, nullptr), E_POINTER);
    EXPECT_EQ(first->Release(), 0u);
}

TEST(CreateComponent, GivesOneReference) {
    void* result = nullptr;
    ASSERT_EQ(CreateComponent<CTestObject>(nullptr, kIidSecond, &result), S_OK);
    EXPECT_TRUE(IsModuleLocked());
    EXPECT_EQ(As<ISecond>(result)->Two(), 2);
    EXPECT_EQ(As<ISecond>(result)->Release(), 0u);
    EXPECT_FALSE(IsModuleLocked());
    EXPECT_EQ(g_alive, 0);
}

TEST(CreateComponent, DestroysWhatLacksTheInterface) {
    void* result = &result;
    EXPECT_EQ(CreateComponent<CTestObject>(nullptr, kIidUnknownToAll, &result), E_NOINTERFACE);
    EXPECT_EQ(result, nullptr);
    EXPECT_EQ(g_alive, 0);
    EXPECT_FALSE(IsModuleLocked());
}

TEST(CreateComponent, ReturnsAFailureOfTheLastStep) {
    g_finalConstruct = E_UNEXPECTED;
    void* result = nullptr;
    EXPECT_EQ(CreateComponent<CTestObject>(nullptr, kIidFirst, &result), E_UNEXPECTED);
    Outer outer;
    EXPECT_EQ(CreateComponent<CTestObject>(&outer, IID_IUnknown, &result), E_UNEXPECTED);
    g_finalConstruct = S_OK;
    EXPECT_EQ(result, nullptr);
    EXPECT_EQ(outer.references, 1u);
    EXPECT_EQ(g_alive, 0);
    EXPECT_FALSE(IsModuleLocked());
}

TEST(CreateComponent, LetsNoExceptionOut) {
    g_throw = true;
    void* result = nullptr;
    EXPECT_EQ(CreateComponent<CTestObject>(nullptr, kIidFirst, &result), E_OUTOFMEMORY);
    Outer outer;
    EXPECT_EQ(CreateComponent<CTestObject>(&outer, IID_IUnknown, &result), E_OUTOFMEMORY);
    g_throw = false;
    EXPECT_EQ(result, nullptr);
    EXPECT_FALSE(IsModuleLocked());
}

TEST(Aggregation, CountsAndQueriesGoToTheOuterObject) {
    Outer outer;
    void* result = nullptr;
    ASSERT_EQ(CreateComponent<CTestObject>(&outer, IID_IUnknown, &result), S_OK);
    outer.inner = As<IUnknown>(result);
    EXPECT_EQ(outer.references, 1u) << "the inner object must not hold its owner";
    EXPECT_TRUE(IsModuleLocked());

    ASSERT_EQ(outer.QueryInterface(kIidSecond, &result), S_OK);
    ISecond* const second = As<ISecond>(result);
    EXPECT_EQ(outer.references, 2u);
    EXPECT_EQ(second->Two(), 2);
    EXPECT_EQ(second->AddRef(), 3u);
    EXPECT_EQ(second->Release(), 2u);

    // Identity is the outer object's, from any interface.
    ASSERT_EQ(second->QueryInterface(IID_IUnknown, &result), S_OK);
    EXPECT_EQ(result, static_cast<void*>(&outer));
    EXPECT_EQ(outer.references, 3u);
    ASSERT_EQ(second->QueryInterface(kIidFirst, &result), S_OK);
    EXPECT_EQ(As<IFirst>(result)->One(), 1);
    EXPECT_EQ(outer.references, 4u);
    result = &result;
    EXPECT_EQ(second->QueryInterface(kIidUnknownToAll, &result), E_NOINTERFACE);
    EXPECT_EQ(result, nullptr);
    EXPECT_EQ(outer.references, 4u);

    // The inner IUnknown alone has a count of its own, and is its own identity.
    ASSERT_EQ(outer.inner->QueryInterface(IID_IUnknown, &result), S_OK);
    EXPECT_EQ(result, static_cast<void*>(outer.inner));
    EXPECT_EQ(outer.references, 4u);
    EXPECT_EQ(outer.inner->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
    EXPECT_EQ(outer.inner->Release(), 1u);
    EXPECT_EQ(g_alive, 1);
    EXPECT_EQ(outer.inner->Release(), 0u);
    EXPECT_EQ(g_alive, 0);
    EXPECT_FALSE(IsModuleLocked());
}

TEST(ModuleCount, CountsObjectsAndLocks) {
    EXPECT_FALSE(IsModuleLocked());
    LockModule();
    LockModule();
    UnlockModule();
    EXPECT_TRUE(IsModuleLocked());
    UnlockModule();
    EXPECT_FALSE(IsModuleLocked());
}

TEST(TComObject, CountsAtomically) {
    TComObject<CTestObject>* const object = new TComObject<CTestObject>;
    IFirst* const first = object;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([first] {
            for (int round = 0; round < 5000; ++round) {
                void* result = nullptr;
                first->QueryInterface(kIidSecond, &result);
                As<ISecond>(result)->Release();
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(first->AddRef(), 2u);
    EXPECT_EQ(first->Release(), 1u);
    EXPECT_EQ(first->Release(), 0u);
}

TEST(ComponentCall, TurnsExceptionsIntoFailure) {
    EXPECT_EQ(ComponentCall([]() -> HRESULT { return S_FALSE; }), S_FALSE);
    EXPECT_EQ(ComponentCall([]() -> HRESULT { throw 1; }), E_FAIL);
    EXPECT_EQ(ResultOf(0), S_OK);
    for (const Status status : {1, 2, -2, -6, -13}) EXPECT_EQ(ResultOf(status), E_FAIL);
}

}  // namespace
