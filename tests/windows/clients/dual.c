/* A client in C by the dual interfaces, compiled from the header of the type library. Its database is the argument. */
#define COBJMACROS
#define INITGUID
#include "OXClass.h"
#include <cguid.h>
#include <ocidl.h>
#include "check.h"

#include <string.h>

static int Equals(BSTR text, const wchar_t* expected) {
    const int equal = text && wcscmp(text, expected) == 0;
    SysFreeString(text);
    return equal;
}

/* Opens the database by name, because the connection has no type library. */
static IDispatch* Connection(const wchar_t* source) {
    CLSID class;
    IDispatch* connection = NULL;
    wchar_t* open = L"Open";
    DISPID id;
    VARIANT text;
    DISPPARAMS parameters = {&text, NULL, 1, 0};
    CHECK(CLSIDFromProgID(L"OXPlatform.Connection", &class) == S_OK);
    CHECK(CoCreateInstance(&class, NULL, CLSCTX_INPROC_SERVER, &IID_IDispatch, (void**)&connection) == S_OK);
    CHECK(IDispatch_GetIDsOfNames(connection, &IID_NULL, &open, 1, 0, &id) == S_OK);
    text.vt = VT_BSTR;
    text.bstrVal = SysAllocString(source);
    CHECK(IDispatch_Invoke(connection, id, &IID_NULL, 0, DISPATCH_METHOD, &parameters, NULL, NULL, NULL) == S_OK);
    VariantClear(&text);
    return connection;
}

static _cPatient* NewPatient(void) {
    _cPatient* patient = NULL;
    CHECK(CoCreateInstance(&CLSID_cPatient, NULL, CLSCTX_INPROC_SERVER, &IID__cPatient, (void**)&patient) == S_OK);
    return patient;
}

static void SaveAndLoad(IDispatch* connection) {
    _cPatient *patient = NewPatient(), *again = NewPatient();
    BSTR identifier = SysAllocString(L"C-1"), name = SysAllocString(L"\x00c5kesson"), read = NULL;
    LONG saved = 9, key = 0, found = 0;
    CHECK(_cPatient_put_PatientID(patient, identifier) == S_OK);
    CHECK(_cPatient_put_LastName(patient, name) == S_OK);
    CHECK(_cPatient_Save(patient, connection, &saved) == S_OK && saved == 0);
    CHECK(_cPatient_LoadOnPatientIDorPDBID(again, connection, &identifier, &key, &found) == S_OK && found == 1);
    CHECK(_cPatient_get_LastName(again, &read) == S_OK && Equals(read, L"\x00c5kesson"));
    SysFreeString(identifier);
    SysFreeString(name);
    CHECK(_cPatient_Release(again) == 0);
    CHECK(_cPatient_Release(patient) == 0);
}

/* A failure is the return code, and a record of the thread that names source and text. */
static void Failure(IDispatch* connection) {
    _cPatient* patient = NewPatient();
    ISupportErrorInfo* support = NULL;
    IErrorInfo* record = NULL;
    BSTR text = SysAllocString(L"x'"), source = NULL;
    LONG saved = 0;
    CHECK(_cPatient_QueryInterface(patient, &IID_ISupportErrorInfo, (void**)&support) == S_OK);
    CHECK(ISupportErrorInfo_InterfaceSupportsErrorInfo(support, &IID__cPatient) == S_OK);
    ISupportErrorInfo_Release(support);
    _cPatient_put_Sex(patient, text);
    SysFreeString(text);
    CHECK(_cPatient_Save(patient, connection, &saved) == (HRESULT)0x80040E14);
    CHECK(GetErrorInfo(0, &record) == S_OK);
    CHECK(IErrorInfo_GetSource(record, &source) == S_OK && SysStringLen(source) > 0);
    CHECK(IErrorInfo_GetDescription(record, &text) == S_OK && SysStringLen(text) > 0);
    SysFreeString(source);
    SysFreeString(text);
    IErrorInfo_Release(record);
    _cPatient_Release(patient);
}

/* The type library describes the interface and the class. */
static void Description(void) {
    _cPatient* patient = NewPatient();
    ITypeInfo* info = NULL;
    IProvideClassInfo* provider = NULL;
    TYPEATTR* attributes = NULL;
    BSTR name = NULL;
    UINT count = 9;
    CHECK(IDispatch_GetTypeInfoCount((IDispatch*)patient, &count) == S_OK && count == 1);
    CHECK(IDispatch_GetTypeInfo((IDispatch*)patient, 1, 0, &info) == DISP_E_BADINDEX && !info);
    CHECK(IDispatch_GetTypeInfo((IDispatch*)patient, 0, 0, &info) == S_OK);
    CHECK(ITypeInfo_GetTypeAttr(info, &attributes) == S_OK && IsEqualGUID(&attributes->guid, &IID__cPatient));
    ITypeInfo_ReleaseTypeAttr(info, attributes);
    ITypeInfo_Release(info);
    CHECK(_cPatient_QueryInterface(patient, &IID_IProvideClassInfo, (void**)&provider) == S_OK);
    CHECK(provider->lpVtbl->GetClassInfo(provider, &info) == S_OK);
    provider->lpVtbl->Release(provider);
    CHECK(ITypeInfo_GetDocumentation(info, MEMBERID_NIL, &name, NULL, NULL, NULL) == S_OK && Equals(name, L"cPatient"));
    ITypeInfo_Release(info);
    CHECK(_cPatient_Release(patient) == 0);
}

int wmain(int count, wchar_t** arguments) {
    wchar_t source[MAX_PATH + 40];
    if (count != 2) return 2;
    swprintf(source, sizeof source / sizeof *source, L"Provider=SQLite;Data Source=%ls", arguments[1]);
    CHECK(CoInitialize(NULL) == S_OK);
    IDispatch* connection = Connection(source);
    SaveAndLoad(connection);
    Failure(connection);
    Description();
    CHECK(IDispatch_Release(connection) == 0);
    CoUninitialize();
    return Failures();
}
