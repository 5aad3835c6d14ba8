#pragma once

/* The binary form of the component model: return codes, identifiers, counted wide strings, the variant, safe
 * arrays, the standard interfaces and the functions that keep their memory.
 *
 * On a system that has them these are its own headers, and everything here that is built on this file builds
 * on them. Elsewhere this file declares the same names with the same layout: 32-bit `LONG`, 16-bit wide
 * characters, interfaces without a virtual destructor. The functions are in liboxplatform; any thread may
 * call them.
 *
 * Readable by C and C++; in C an interface is a pointer to its table of functions, as everywhere. */

#ifdef _WIN32

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#include <oaidl.h>
#include <olectl.h>
#include <oleauto.h>
#undef DeleteFile
#undef GetClassInfo
#undef Yield

#else

#include <stddef.h>
#include <stdint.h>

/* ---- plain types --------------------------------------------------------------------------------- */

typedef int32_t HRESULT;
typedef int32_t SCODE;
typedef int32_t LONG;
typedef uint32_t ULONG;
typedef uint32_t DWORD;
typedef uint32_t UINT;
typedef int32_t INT;
typedef uint16_t WORD;
typedef uint16_t USHORT;
typedef int16_t SHORT;
typedef uint8_t BYTE;
typedef int64_t LONGLONG;
typedef uint64_t ULONGLONG;
typedef int32_t BOOL;
typedef float FLOAT;
typedef double DOUBLE;
typedef char CHAR;

#ifdef __cplusplus
typedef char16_t OLECHAR; /* one UTF-16 unit */
#else
typedef uint16_t OLECHAR;
#endif
typedef OLECHAR* LPOLESTR;
typedef const OLECHAR* LPCOLESTR;

/* A text: points at its first unit; in front of it stands its length in bytes as a 32-bit number, behind it a
 * zero. Null is the empty text. Made by SysAllocString..., freed by SysFreeString. */
typedef OLECHAR* BSTR;

typedef int16_t VARIANT_BOOL; /* -1 true, 0 false */
#define VARIANT_TRUE ((VARIANT_BOOL)-1)
#define VARIANT_FALSE ((VARIANT_BOOL)0)
typedef double DATE;          /* days since 1899-12-30 */
typedef uint32_t LCID;
typedef int32_t DISPID;
typedef uint16_t VARTYPE;

typedef struct GUID {
    uint32_t Data1;
    uint16_t Data2;
    uint16_t Data3;
    uint8_t Data4[8];
} GUID;
typedef GUID IID;
typedef GUID CLSID;
#ifdef __cplusplus
typedef const IID& REFIID;
typedef const CLSID& REFCLSID;
typedef const GUID& REFGUID;
#else
typedef const IID* REFIID;
typedef const CLSID* REFCLSID;
typedef const GUID* REFGUID;
#endif

#define STDMETHODCALLTYPE
#define STDAPICALLTYPE
#ifdef __cplusplus
#define EXTERN_C extern "C"
#else
#define EXTERN_C extern
#endif
#define STDAPI EXTERN_C __attribute__((visibility("default"))) HRESULT STDAPICALLTYPE
#define STDAPI_(type) EXTERN_C __attribute__((visibility("default"))) type STDAPICALLTYPE

/* ---- return codes -------------------------------------------------------------------------------- */

#define SUCCEEDED(code) (((HRESULT)(code)) >= 0)
#define FAILED(code) (((HRESULT)(code)) < 0)
#define S_OK ((HRESULT)0)
#define S_FALSE ((HRESULT)1)
#define E_NOTIMPL ((HRESULT)0x80004001)
#define E_NOINTERFACE ((HRESULT)0x80004002)
#define E_POINTER ((HRESULT)0x80004003)
#define E_FAIL ((HRESULT)0x80004005)
#define E_UNEXPECTED ((HRESULT)0x8000FFFF)
#define E_OUTOFMEMORY ((HRESULT)0x8007000E)
#define E_INVALIDARG ((HRESULT)0x80070057)
#define RPC_E_WRONG_THREAD ((HRESULT)0x8001010E)
#define DISP_E_UNKNOWNINTERFACE ((HRESULT)0x80020001)
#define DISP_E_MEMBERNOTFOUND ((HRESULT)0x80020003)
#define DISP_E_PARAMNOTFOUND ((HRESULT)0x80020004)
#define DISP_E_TYPEMISMATCH ((HRESULT)0x80020005)
#define DISP_E_UNKNOWNNAME ((HRESULT)0x80020006)
#define DISP_E_NONAMEDARGS ((HRESULT)0x80020007)
#define DISP_E_BADVARTYPE ((HRESULT)0x80020008)
#define DISP_E_EXCEPTION ((HRESULT)0x80020009)
#define DISP_E_OVERFLOW ((HRESULT)0x8002000A)
#define DISP_E_BADINDEX ((HRESULT)0x8002000B)
#define DISP_E_ARRAYISLOCKED ((HRESULT)0x8002000D)
#define DISP_E_BADPARAMCOUNT ((HRESULT)0x8002000E)
#define DISP_E_PARAMNOTOPTIONAL ((HRESULT)0x8002000F)
#define CLASS_E_NOAGGREGATION ((HRESULT)0x80040110)
#define CLASS_E_CLASSNOTAVAILABLE ((HRESULT)0x80040111)
#define SELFREG_E_TYPELIB ((HRESULT)0x80040200)
#define SELFREG_E_CLASS ((HRESULT)0x80040201)
#define CO_E_DLLNOTFOUND ((HRESULT)0x800401F8)
#define CO_E_ERRORINDLL ((HRESULT)0x800401F9)

/* ---- the variant --------------------------------------------------------------------------------- */

enum VARENUM {
    VT_EMPTY = 0,
    VT_NULL = 1,
    VT_I2 = 2,
    VT_I4 = 3,
    VT_R4 = 4,
    VT_R8 = 5,
    VT_CY = 6,
    VT_DATE = 7,
    VT_BSTR = 8,
    VT_DISPATCH = 9,
    VT_ERROR = 10,
    VT_BOOL = 11,
    VT_VARIANT = 12,
    VT_UNKNOWN = 13,
    VT_DECIMAL = 14,
    VT_I1 = 16,
    VT_UI1 = 17,
    VT_UI2 = 18,
    VT_UI4 = 19,
    VT_I8 = 20,
    VT_UI8 = 21,
    VT_INT = 22,
    VT_UINT = 23,
    VT_ARRAY = 0x2000,
    VT_BYREF = 0x4000,
    VT_TYPEMASK = 0x0FFF
};

typedef struct IUnknown IUnknown;
typedef struct IDispatch IDispatch;
typedef struct ITypeInfo ITypeInfo;

typedef union CY {
    int64_t int64; /* ten-thousandths */
} CY;

typedef struct DECIMAL {
    uint16_t wReserved;
    uint8_t scale; /* decimal digits behind the point, 0 to 28 */
    uint8_t sign;  /* 0x80 negative */
    uint32_t Hi32;
    uint64_t Lo64;
} DECIMAL;

typedef struct SAFEARRAYBOUND {
    ULONG cElements;
    LONG lLbound;
} SAFEARRAYBOUND;

#define FADF_HAVEVARTYPE 0x0080
#define FADF_BSTR 0x0100
#define FADF_UNKNOWN 0x0200
#define FADF_DISPATCH 0x0400
#define FADF_VARIANT 0x0800

typedef struct SAFEARRAY {
    USHORT cDims;
    USHORT fFeatures;
    ULONG cbElements;
    ULONG cLocks;
    void* pvData;
    SAFEARRAYBOUND rgsabound[1]; /* the last dimension first */
} SAFEARRAY;

typedef struct VARIANT VARIANT;
struct VARIANT {
    __extension__ union {
        __extension__ struct {
            VARTYPE vt;
            WORD wReserved1;
            WORD wReserved2;
            WORD wReserved3;
            __extension__ union {
                LONGLONG llVal;
                LONG lVal;
                BYTE bVal;
                SHORT iVal;
                FLOAT fltVal;
                DOUBLE dblVal;
                VARIANT_BOOL boolVal;
                SCODE scode;
                CY cyVal;
                DATE date;
                BSTR bstrVal;
                IUnknown* punkVal;
                IDispatch* pdispVal;
                SAFEARRAY* parray;
                BYTE* pbVal;
                SHORT* piVal;
                LONG* plVal;
                LONGLONG* pllVal;
                FLOAT* pfltVal;
                DOUBLE* pdblVal;
                VARIANT_BOOL* pboolVal;
                SCODE* pscode;
                CY* pcyVal;
                DATE* pdate;
                BSTR* pbstrVal;
                IUnknown** ppunkVal;
                IDispatch** ppdispVal;
                SAFEARRAY** pparray;
                VARIANT* pvarVal;
                void* byref;
                CHAR cVal;
                USHORT uiVal;
                ULONG ulVal;
                ULONGLONG ullVal;
                INT intVal;
                UINT uintVal;
                DECIMAL* pdecVal;
                __extension__ struct {
                    void* pvRecord;
                    void* pRecInfo;
                };
            };
        };
        DECIMAL decVal;
    };
};
typedef VARIANT VARIANTARG;

typedef struct DISPPARAMS {
    VARIANTARG* rgvarg; /* the last argument first; named ones before all others */
    DISPID* rgdispidNamedArgs;
    UINT cArgs;
    UINT cNamedArgs;
} DISPPARAMS;

typedef struct EXCEPINFO {
    WORD wCode;
    WORD wReserved;
    BSTR bstrSource;
    BSTR bstrDescription;
    BSTR bstrHelpFile;
    DWORD dwHelpContext;
    void* pvReserved;
    HRESULT (*pfnDeferredFillIn)(struct EXCEPINFO*);
    SCODE scode;
} EXCEPINFO;

#define DISPID_VALUE 0
#define DISPID_UNKNOWN (-1)
#define DISPID_PROPERTYPUT (-3)
#define DISPID_NEWENUM (-4)
#define DISPATCH_METHOD 1
#define DISPATCH_PROPERTYGET 2
#define DISPATCH_PROPERTYPUT 4
#define DISPATCH_PROPERTYPUTREF 8

/* ---- interfaces ---------------------------------------------------------------------------------- */

#ifdef __cplusplus

struct IUnknown {
    virtual HRESULT QueryInterface(REFIID riid, void** object) = 0;
    virtual ULONG AddRef() = 0;
    virtual ULONG Release() = 0;
};

struct IDispatch : IUnknown {
    virtual HRESULT GetTypeInfoCount(UINT* count) = 0;
    virtual HRESULT GetTypeInfo(UINT which, LCID lcid, ITypeInfo** info) = 0;
    virtual HRESULT GetIDsOfNames(REFIID riid, LPOLESTR* names, UINT count, LCID lcid, DISPID* ids) = 0;
    virtual HRESULT Invoke(DISPID id, REFIID riid, LCID lcid, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                           EXCEPINFO* failure, UINT* wrongArgument) = 0;
};

struct IClassFactory : IUnknown {
    virtual HRESULT CreateInstance(IUnknown* outer, REFIID riid, void** object) = 0;
    virtual HRESULT LockServer(BOOL lock) = 0;
};

struct IEnumVARIANT : IUnknown {
    virtual HRESULT Next(ULONG count, VARIANT* values, ULONG* fetched) = 0;
    virtual HRESULT Skip(ULONG count) = 0;
    virtual HRESULT Reset() = 0;
    virtual HRESULT Clone(IEnumVARIANT** copy) = 0;
};

struct ISupportErrorInfo : IUnknown {
    virtual HRESULT InterfaceSupportsErrorInfo(REFIID riid) = 0;
};

struct IErrorInfo : IUnknown {
    virtual HRESULT GetGUID(GUID* guid) = 0;
    virtual HRESULT GetSource(BSTR* source) = 0;
    virtual HRESULT GetDescription(BSTR* description) = 0;
    virtual HRESULT GetHelpFile(BSTR* file) = 0;
    virtual HRESULT GetHelpContext(DWORD* context) = 0;
};

struct ICreateErrorInfo : IUnknown {
    virtual HRESULT SetGUID(REFGUID guid) = 0;
    virtual HRESULT SetSource(LPOLESTR source) = 0;
    virtual HRESULT SetDescription(LPOLESTR description) = 0;
    virtual HRESULT SetHelpFile(LPOLESTR file) = 0;
    virtual HRESULT SetHelpContext(DWORD context) = 0;
};

#else

typedef struct IClassFactory IClassFactory;
typedef struct IEnumVARIANT IEnumVARIANT;
typedef struct ISupportErrorInfo ISupportErrorInfo;
typedef struct IErrorInfo IErrorInfo;
typedef struct ICreateErrorInfo ICreateErrorInfo;

/* The first three functions of every interface. */
#define OX_UNKNOWN_FUNCTIONS(type)                                \
    HRESULT (*QueryInterface)(type*, REFIID riid, void** object); \
    ULONG (*AddRef)(type*);                                       \
    ULONG (*Release)(type*)

typedef struct IUnknownVtbl {
    OX_UNKNOWN_FUNCTIONS(IUnknown);
} IUnknownVtbl;
struct IUnknown {
    const IUnknownVtbl* lpVtbl;
};

typedef struct IDispatchVtbl {
    OX_UNKNOWN_FUNCTIONS(IDispatch);
    HRESULT (*GetTypeInfoCount)(IDispatch*, UINT* count);
    HRESULT (*GetTypeInfo)(IDispatch*, UINT which, LCID lcid, ITypeInfo** info);
    HRESULT (*GetIDsOfNames)(IDispatch*, REFIID riid, LPOLESTR* names, UINT count, LCID lcid, DISPID* ids);
    HRESULT(*Invoke)
    (IDispatch*, DISPID id, REFIID riid, LCID lcid, WORD flags, DISPPARAMS* parameters, VARIANT* result,
     EXCEPINFO* failure, UINT* wrongArgument);
} IDispatchVtbl;
struct IDispatch {
    const IDispatchVtbl* lpVtbl;
};

typedef struct IClassFactoryVtbl {
    OX_UNKNOWN_FUNCTIONS(IClassFactory);
    HRESULT (*CreateInstance)(IClassFactory*, IUnknown* outer, REFIID riid, void** object);
    HRESULT (*LockServer)(IClassFactory*, BOOL lock);
} IClassFactoryVtbl;
struct IClassFactory {
    const IClassFactoryVtbl* lpVtbl;
};

typedef struct IEnumVARIANTVtbl {
    OX_UNKNOWN_FUNCTIONS(IEnumVARIANT);
    HRESULT (*Next)(IEnumVARIANT*, ULONG count, VARIANT* values, ULONG* fetched);
    HRESULT (*Skip)(IEnumVARIANT*, ULONG count);
    HRESULT (*Reset)(IEnumVARIANT*);
    HRESULT (*Clone)(IEnumVARIANT*, IEnumVARIANT** copy);
} IEnumVARIANTVtbl;
struct IEnumVARIANT {
    const IEnumVARIANTVtbl* lpVtbl;
};

typedef struct ISupportErrorInfoVtbl {
    OX_UNKNOWN_FUNCTIONS(ISupportErrorInfo);
    HRESULT (*InterfaceSupportsErrorInfo)(ISupportErrorInfo*, REFIID riid);
} ISupportErrorInfoVtbl;
struct ISupportErrorInfo {
    const ISupportErrorInfoVtbl* lpVtbl;
};

typedef struct IErrorInfoVtbl {
    OX_UNKNOWN_FUNCTIONS(IErrorInfo);
    HRESULT (*GetGUID)(IErrorInfo*, GUID* guid);
    HRESULT (*GetSource)(IErrorInfo*, BSTR* source);
    HRESULT (*GetDescription)(IErrorInfo*, BSTR* description);
    HRESULT (*GetHelpFile)(IErrorInfo*, BSTR* file);
    HRESULT (*GetHelpContext)(IErrorInfo*, DWORD* context);
} IErrorInfoVtbl;
struct IErrorInfo {
    const IErrorInfoVtbl* lpVtbl;
};

typedef struct ICreateErrorInfoVtbl {
    OX_UNKNOWN_FUNCTIONS(ICreateErrorInfo);
    HRESULT (*SetGUID)(ICreateErrorInfo*, REFGUID guid);
    HRESULT (*SetSource)(ICreateErrorInfo*, LPOLESTR source);
    HRESULT (*SetDescription)(ICreateErrorInfo*, LPOLESTR description);
    HRESULT (*SetHelpFile)(ICreateErrorInfo*, LPOLESTR file);
    HRESULT (*SetHelpContext)(ICreateErrorInfo*, DWORD context);
} ICreateErrorInfoVtbl;
struct ICreateErrorInfo {
    const ICreateErrorInfoVtbl* lpVtbl;
};

#endif

EXTERN_C __attribute__((visibility("default"))) const IID IID_NULL;
EXTERN_C __attribute__((visibility("default"))) const IID IID_IUnknown;
EXTERN_C __attribute__((visibility("default"))) const IID IID_IDispatch;
EXTERN_C __attribute__((visibility("default"))) const IID IID_IClassFactory;
EXTERN_C __attribute__((visibility("default"))) const IID IID_IEnumVARIANT;
EXTERN_C __attribute__((visibility("default"))) const IID IID_ISupportErrorInfo;
EXTERN_C __attribute__((visibility("default"))) const IID IID_IErrorInfo;
EXTERN_C __attribute__((visibility("default"))) const IID IID_ICreateErrorInfo;

/* ---- texts --------------------------------------------------------------------------------------- */

/* Make a text: of a zero-ended one (null gives null), of so many units (null: not filled), of so many bytes.
 * Null when there is no memory. */
STDAPI_(BSTR) SysAllocString(LPCOLESTR text);
STDAPI_(BSTR) SysAllocStringLen(LPCOLESTR text, UINT units);
STDAPI_(BSTR) SysAllocStringByteLen(const char* bytes, UINT count);
/* Null is allowed everywhere below: it is the empty text. */
STDAPI_(void) SysFreeString(BSTR text);
STDAPI_(UINT) SysStringLen(BSTR text);
STDAPI_(UINT) SysStringByteLen(BSTR text);

/* ---- variants ------------------------------------------------------------------------------------ */

STDAPI_(void) VariantInit(VARIANTARG* variant);
/* Frees what the variant holds and makes it empty; what a by-reference variant points at stays.
 * DISP_E_BADVARTYPE for a type that no variant has, as SafeArrayDestroy for an array; nothing is freed then.
 */
STDAPI VariantClear(VARIANTARG* variant);
/* Clears `to` and makes it a copy of `from`. On a failure `to` stays as it was. */
STDAPI VariantCopy(VARIANTARG* to, const VARIANTARG* from);

/* ---- safe arrays --------------------------------------------------------------------------------- */

/* An array of one dimension whose elements are zero. Null for a type that can't be an element. */
STDAPI_(SAFEARRAY*) SafeArrayCreateVector(VARTYPE type, LONG lowerBound, ULONG count);
/* Frees the array with its elements; DISP_E_ARRAYISLOCKED while somebody works on its data, E_INVALIDARG for
 * an array that its owner described himself (without FADF_HAVEVARTYPE). */
STDAPI SafeArrayDestroy(SAFEARRAY* array);
/* A copy of an array of one dimension, with its elements. */
STDAPI SafeArrayCopy(SAFEARRAY* array, SAFEARRAY** copy);
STDAPI SafeArrayAccessData(SAFEARRAY* array, void** data);
STDAPI SafeArrayUnaccessData(SAFEARRAY* array);
STDAPI_(UINT) SafeArrayGetDim(SAFEARRAY* array);
STDAPI SafeArrayGetLBound(SAFEARRAY* array, UINT dimension, LONG* bound);
STDAPI SafeArrayGetUBound(SAFEARRAY* array, UINT dimension, LONG* bound);
STDAPI SafeArrayGetVartype(SAFEARRAY* array, VARTYPE* type);

/* ---- error records ------------------------------------------------------------------------------- */

/* The calling thread's error record: what the last failed call left. Get takes it out (S_FALSE and null where
 * there is none). `reserved` is 0. */
STDAPI SetErrorInfo(ULONG reserved, IErrorInfo* record);
STDAPI GetErrorInfo(ULONG reserved, IErrorInfo** record);
STDAPI CreateErrorInfo(ICreateErrorInfo** record);

#endif
