// A client in C++ by the dual interfaces: collections, objects passed back into a call, threads, the life of the
// library file. Its database is the argument.
#define INITGUID
#include "OXClass.h"
#include <cguid.h>
#include <ocidl.h>
#include "check.h"

#include <string>
#include <thread>
#include <utility>

namespace {

/// A reference to an interface.
template <class I>
class Pointer {
public:
    Pointer() = default;
    Pointer(const Pointer&) = delete;
    ~Pointer() { Reset(); }
    void Reset() {
        if (pointer_) std::exchange(pointer_, nullptr)->Release();
    }
    I* Get() const { return pointer_; }
    I* operator->() const { return pointer_; }
    I** Place() {
        Reset();
        return &pointer_;
    }
    /// Returns the place of the pointer, for an argument that is written back.
    I** Both() { return &pointer_; }
    void** Any() { return reinterpret_cast<void**>(Place()); }

private:
    I* pointer_ = nullptr;
};

class Text {
public:
    explicit Text(const wchar_t* text) : text_(SysAllocString(text)) {}
    ~Text() { SysFreeString(text_); }
    Text(const Text&) = delete;
    BSTR Get() const { return text_; }
    BSTR* Place() { return &text_; }

private:
    BSTR text_;
};

template <class I>
HRESULT Create(REFCLSID classID, Pointer<I>& made) {
    return CoCreateInstance(classID, nullptr, CLSCTX_INPROC_SERVER, __uuidof(I), made.Any());
}

void Open(Pointer<IDispatch>& connection, const std::wstring& source) {
    CLSID classID;
    CHECK(CLSIDFromProgID(L"OXPlatform.Connection", &classID) == S_OK);
    CHECK(Create(classID, connection) == S_OK);
    wchar_t name[] = L"Open";
    wchar_t* names = name;
    DISPID id = 0;
    CHECK(connection->GetIDsOfNames(IID_NULL, &names, 1, 0, &id) == S_OK);
    const Text text(source.c_str());
    VARIANT argument{};
    argument.vt = VT_BSTR;
    argument.bstrVal = text.Get();
    DISPPARAMS parameters{&argument, nullptr, 1, 0};
    CHECK(connection->Invoke(id, IID_NULL, 0, DISPATCH_METHOD, &parameters, nullptr, nullptr, nullptr) == S_OK);
}

/// Hangs two images that exist in memory; the collection is passed as the object that the library returned.
void HangSeries(IDispatch* connection) {
    Pointer<_cSerie> series;
    Pointer<_cImages> images;
    CHECK(Create(CLSID_cSerie, series) == S_OK && Create(CLSID_cImages, images) == S_OK);
    for (const wchar_t* teeth : {L"17,16,15,14,47,46,45,44,", L"24,25,26,27,34,35,36,37,"}) {
        Pointer<_cImage> image, added;
        const Text text(teeth), bitewing(L"T-D1213");
        CHECK(Create(CLSID_cImage, image) == S_OK);
        CHECK(image->put_sTeeth(text.Get()) == S_OK && image->put_AnaRegion(bitewing.Get()) == S_OK);
        CHECK(images->AddObject(image.Both(), nullptr, added.Place()) == S_OK);
        CHECK(!image.Get() && added.Get());
    }
    LONG layout = 0, count = 0;
    CHECK(images->get_Count(&count) == S_OK && count == 2);
    IDispatch* collection = images.Get();
    CHECK(series->put_ImgCount(2) == S_OK);
    CHECK(series->HangSeries(&collection, &connection, &layout) == S_OK && layout == 8);

    Pointer<IUnknown> walk;
    Pointer<IEnumVARIANT> members;
    CHECK(images->get_NewEnum(walk.Place()) == S_OK);
    CHECK(walk->QueryInterface(IID_IEnumVARIANT, members.Any()) == S_OK);
    VARIANT member{};
    LONG frames = 0;
    for (LONG expected = 1; members->Next(1, &member, nullptr) == S_OK; ++expected) {
        LONG frame = 0;
        Pointer<_cImage> image;
        CHECK(member.punkVal->QueryInterface(__uuidof(_cImage), image.Any()) == S_OK);
        CHECK(image->get_FrameNumber(&frame) == S_OK && frame == expected);
        frames += frame;
        VariantClear(&member);
    }
    CHECK(frames == 3);
}

/// An object belongs to the thread that created it.
void OtherThread() {
    Pointer<_cPatient> patient;
    CHECK(Create(CLSID_cPatient, patient) == S_OK);
    HRESULT code = S_OK;
    std::thread([&] {
        LONG id = 0;
        code = patient->get_ID(&id);
    }).join();
    CHECK(code == RPC_E_WRONG_THREAD);
}

/// The system unloads the library file when no object is left, and loads it again.
void Unload() {
    for (int i = 0; i < 3; ++i) {
        Pointer<_cImages> images;
        CHECK(Create(CLSID_cImages, images) == S_OK);
        CoFreeUnusedLibrariesEx(0, 0);
        CoFreeUnusedLibrariesEx(0, 0);
        CHECK(GetModuleHandleW(L"OXClass.dll") != nullptr);
        images.Reset();
        CoFreeUnusedLibrariesEx(0, 0);
        CoFreeUnusedLibrariesEx(0, 0);
        CHECK(GetModuleHandleW(L"OXClass.dll") == nullptr);
    }
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
    if (count != 2) return 2;
    CHECK(CoInitialize(nullptr) == S_OK);
    {
        Pointer<IDispatch> connection;
        Open(connection, std::wstring(L"Provider=SQLite;Data Source=") + arguments[1]);
        HangSeries(connection.Get());
        OtherThread();
    }
    Unload();
    CoUninitialize();
    return Failures();
}
