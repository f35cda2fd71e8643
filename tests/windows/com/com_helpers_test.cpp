// The COM helpers against real OLE Automation (Wine's oleaut32): text and VARIANT conversions,
// reference ownership, class objects and module counts, errors both ways, late-bound calls and
// event subscriptions on scriptable objects.
#include <gtest/gtest.h>

#include "windows/com/bstr.h"
#include "windows/com/class_factory.h"
#include "windows/com/connection_point.h"
#include "windows/com/dispatch.h"
#include "windows/com/error_info.h"
#include "windows/com/fake_object.h"

namespace arbolet::windows::com {
namespace {

using testing::Answer;
using testing::FakeObject;
using testing::Transcript;

constexpr DispMember kCount{L"Count", 10, "Things"};
constexpr DispMember kItem{L"Item", 0, "Things"};
constexpr DispMember kCaption{L"Caption", 0x60040003, "Things"};
constexpr DispMember kFail{L"Fail", 77, "Things"};

TEST(ComText, Utf8SurvivesTheRoundTripThroughBstrIncludingNulAndAccents) {
    const std::string text = std::string(
                                 "Gr\xC3\xB6\xC3\x9F"
                                 "e \xE2\x82\xAC") +
                             '\0' + "x";
    Bstr bstr(text);
    EXPECT_EQ(SysStringLen(bstr.Get()), 9u);
    EXPECT_EQ(bstr.Utf8(), text);
    EXPECT_EQ(Bstr().Utf8(), "");
    Bstr copy = bstr;
    EXPECT_NE(copy.Get(), bstr.Get());
    EXPECT_EQ(copy.Utf8(), text);
}

TEST(ComVariant, ConvertsByVbRulesAndReadsThroughReferences) {
    EXPECT_EQ(Variant("42").ToInt32(), 42);
    EXPECT_EQ(Variant(std::int32_t{-1}).ToBool(), true);
    EXPECT_EQ(Variant(true).ToUtf8(), "True");
    EXPECT_FALSE(Variant("x").ToInt32().has_value());
    EXPECT_EQ(Variant::Missing().Type(), VT_ERROR);

    Variant inner(std::int32_t{7});
    VARIANT byRef;
    VariantInit(&byRef);
    byRef.vt = VT_VARIANT | VT_BYREF;
    byRef.pvarVal = inner.Get();
    EXPECT_EQ(Variant::Copy(byRef).ToInt32(), 7);

    auto transcript = std::make_shared<Transcript>();
    ComPtr<FakeObject> object = FakeObject::Create("Things", transcript);
    {
        Variant holder(static_cast<IDispatch*>(object.Get()));
        EXPECT_EQ(object->References(), 2u);
        EXPECT_EQ(holder.ToDispatch().Get(), static_cast<IDispatch*>(object.Get()));
    }
    EXPECT_EQ(object->References(), 1u) << "a Variant releases the object it held";
}

TEST(ComPointer, OwnsExactlyOneReference) {
    ComPtr<FakeObject> object = FakeObject::Create("Things", nullptr);
    {
        ComPtr<FakeObject> copy = object;
        ComPtr<FakeObject> moved = std::move(copy);
        EXPECT_EQ(object->References(), 2u);
        ComPtr<IDispatch> asDispatch = moved.As<IDispatch>(IID_IDispatch);
        EXPECT_EQ(object->References(), 3u);
        EXPECT_FALSE(moved.As<IPersist>(IID_IPersist));
        IDispatch* out = nullptr;
        asDispatch.CopyTo(&out);
        EXPECT_EQ(object->References(), 4u);
        out->Release();
    }
    EXPECT_EQ(object->References(), 1u);
    EXPECT_TRUE(SameObject(static_cast<IDispatch*>(object.Get()),
                           static_cast<IConnectionPointContainer*>(object.Get())));
}

// A class for the class-object table: counts itself in the module.
class Counted final : public IUnknown, private ModuleObject {
  public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override {
        if (iid != IID_IUnknown) {
            *object = nullptr;
            return E_NOINTERFACE;
        }
        *object = this;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return refs_.AddRef(); }
    ULONG STDMETHODCALLTYPE Release() noexcept override {
        const ULONG count = refs_.Release();
        if (count == 0) delete this;
        return count;
    }

  private:
    RefCount refs_;
};

constexpr CLSID kCountedClass = {0x1, 0x2, 0x3, {4, 5, 6, 7, 8, 9, 10, 11}};
const ClassEntry kTable[] = {{&kCountedClass, &CreateAndQuery<Counted>}};

TEST(ComClassObjects, CreateFromTheTableAndKeepTheModuleCount) {
    const LONG before = module::ActiveCount();
    ComPtr<IClassFactory> factory;
    EXPECT_EQ(GetClassObject(kTable, ids::CLSID_Connection, IID_IClassFactory, factory.PutVoid()),
              CLASS_E_CLASSNOTAVAILABLE);
    ASSERT_EQ(GetClassObject(kTable, kCountedClass, IID_IClassFactory, factory.PutVoid()), S_OK);
    EXPECT_EQ(module::ActiveCount(), before + 1) << "a live factory keeps the DLL";

    ComPtr<IUnknown> instance;
    EXPECT_EQ(factory->CreateInstance(instance.Get(), IID_IUnknown, instance.PutVoid()), S_OK);
    ComPtr<IUnknown> aggregated;
    EXPECT_EQ(factory->CreateInstance(instance.Get(), IID_IUnknown, aggregated.PutVoid()),
              CLASS_E_NOAGGREGATION);
    ComPtr<IDispatch> wrongInterface;
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_IDispatch, wrongInterface.PutVoid()),
              E_NOINTERFACE);
    EXPECT_EQ(module::ActiveCount(), before + 2) << "the failed query freed its instance";

    factory->LockServer(TRUE);
    factory.Reset();
    instance.Reset();
    EXPECT_EQ(module::ActiveCount(), before + 1) << "the lock outlives the factory";
    ComPtr<IClassFactory> again;
    GetClassObject(kTable, kCountedClass, IID_IClassFactory, again.PutVoid());
    again->LockServer(FALSE);
    again.Reset();
    EXPECT_EQ(module::ActiveCount(), before);
}

TEST(ComErrors, ExceptionsBecomeHresultsWithErrorInfo) {
    HRESULT hr = Guarded(
        "Source", []() -> HRESULT { throw VbError(9, "Arbolet.Thing", "Subscript out of range"); });
    EXPECT_EQ(hr, static_cast<HRESULT>(0x800A0009));
    ComPtr<IErrorInfo> info;
    ASSERT_EQ(GetErrorInfo(0, info.Put()), S_OK);
    Bstr description;
    Bstr source;
    info->GetDescription(description.Put());
    info->GetSource(source.Put());
    EXPECT_EQ(description.Utf8(), "Subscript out of range");
    EXPECT_EQ(source.Utf8(), "Arbolet.Thing");

    EXPECT_EQ(Guarded("S", []() -> HRESULT { throw std::runtime_error("boom"); }), E_FAIL);
    EXPECT_EQ(Guarded("S", []() -> HRESULT { throw 1; }), E_UNEXPECTED);
    EXPECT_EQ(Guarded("S", []() -> HRESULT { return S_FALSE; }), S_FALSE);

    EXPECT_EQ(VbNumberFromHResult(static_cast<HRESULT>(0x800AEA9B)), 60059);
    EXPECT_EQ(VbNumberFromHResult(DISP_E_UNKNOWNNAME), 438);
    EXPECT_EQ(VbNumberFromHResult(E_ACCESSDENIED), static_cast<std::int32_t>(E_ACCESSDENIED));
    EXPECT_EQ(HResultFromVbNumber(-2147221504), static_cast<HRESULT>(0x80040000));
}

TEST(ComDispatch, CallsByNameWithTheArgumentsInOrderAndCachesTheNames) {
    auto transcript = std::make_shared<Transcript>();
    ComPtr<FakeObject> object = FakeObject::Create("Things", transcript);
    object->Property(kCount, Variant(std::int32_t{3}));
    object->Property(kCaption, Variant("old"));
    object->Method(kItem, [](WORD, const std::vector<Variant>& args, Variant& result) {
        result = Variant(*args.at(0).ToUtf8() + "/" + *args.at(1).ToUtf8());
        return S_OK;
    });

    Dispatch things(object.Get());
    EXPECT_EQ(things.GetInt(kCount), 3);
    EXPECT_EQ(things.GetInt(kCount), 3);
    EXPECT_EQ(object->NameLookups(), 1) << "the DISPID of Count is looked up once";
    EXPECT_EQ(things.GetText(kItem, {Variant("a"), Variant(std::int32_t{2})}), "a/2");
    things.Put(kCaption, Variant("new"));
    EXPECT_EQ(object->PropertyValue(kCaption).ToUtf8(), "new");
    EXPECT_EQ(*transcript, (Transcript{"get Things.Count", "get Things.Count",
                                       "get Things.Item \"a\" 2", "put Things.Caption \"new\""}));
}

TEST(ComDispatch, FallsBackToKnownDispidsAndRaisesTheCalleesErrors) {
    ComPtr<FakeObject> object = FakeObject::Create("Things", nullptr);
    object->AnswerNoNames();
    object->Property(kCaption, Variant("by id"));
    object->Method(kFail, [](WORD, const std::vector<Variant>&, Variant&) {
        return HResultFromVbNumber(60059);
    });
    Dispatch things(object.Get());
    EXPECT_EQ(things.GetText(kCaption), "by id");
    try {
        things.Call(kFail);
        FAIL() << "the callee's error must be raised";
    } catch (const VbError& error) {
        EXPECT_EQ(error.Number, 60059);
        EXPECT_EQ(error.Source, "Things");
        EXPECT_EQ(error.Description, "Failure of call Things.Fail");
    }
    try {
        things.Get(kCount);
        FAIL() << "an unknown member must be raised";
    } catch (const VbError& error) {
        EXPECT_EQ(error.Number, 438);
    }
    try {
        Dispatch().Get(kCount);
        FAIL() << "Nothing has no members";
    } catch (const VbError& error) {
        EXPECT_EQ(error.Number, 91);
    }
}

// An event sink that counts the events it receives.
class CountingSink final : public IDispatch {
  public:
    int calls = 0;
    DISPID lastId = 0;
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override {
        if (iid == IID_IUnknown || iid == IID_IDispatch || iid == ids::DIID_VBProjectsEvents) {
            *object = this;
            AddRef();
            return S_OK;
        }
        *object = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return ++refs; }
    ULONG STDMETHODCALLTYPE Release() noexcept override { return --refs; }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) noexcept override {
        *count = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) noexcept override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID,
                                            DISPID*) noexcept override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*,
                                     EXCEPINFO*, UINT*) noexcept override {
        ++calls;
        lastId = id;
        return S_OK;
    }
    ULONG refs = 1;
};

TEST(ComEvents, AdviseDeliversAndUnadvisesWhenReleased) {
    ComPtr<FakeObject> source = FakeObject::Create("VBProjectsEvents", nullptr);
    source->AddEvents(ids::DIID_VBProjectsEvents);
    CountingSink sink;
    {
        Advised subscription;
        EXPECT_EQ(subscription.Advise(static_cast<IDispatch*>(source.Get()),
                                      ids::DIID_VBComponentsEvents, &sink),
                  CONNECT_E_NOCONNECTION);
        ASSERT_EQ(subscription.Advise(static_cast<IDispatch*>(source.Get()),
                                      ids::DIID_VBProjectsEvents, &sink),
                  S_OK);
        EXPECT_EQ(source->SinkCount(ids::DIID_VBProjectsEvents), 1u);
        source->Raise(ids::DIID_VBProjectsEvents, ids::VBProjectsEvents::ItemRemoved, {});
        EXPECT_EQ(sink.calls, 1);
        EXPECT_EQ(sink.lastId, ids::VBProjectsEvents::ItemRemoved);
        Advised moved = std::move(subscription);
        EXPECT_EQ(source->SinkCount(ids::DIID_VBProjectsEvents), 1u);
    }
    EXPECT_EQ(source->SinkCount(ids::DIID_VBProjectsEvents), 0u);
    EXPECT_EQ(sink.refs, 1u) << "the source released the sink";
}

}  // namespace
}  // namespace arbolet::windows::com
