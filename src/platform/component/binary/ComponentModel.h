#pragma once

/* The binary types of COM: return codes, identifiers, BSTR, VARIANT, SAFEARRAY, the standard interfaces, and the
 * functions that allocate and free them.
 *
 * On Windows this file includes the system's own headers. On other systems it declares the same names with the same
 * layout: 32-bit `LONG`, 16-bit wide characters, interfaces without a virtual destructor. The functions are then in
 * liboxplatform. Any thread may call them; a BSTR, a VARIANT, a SAFEARRAY or an object is used by one thread at a time.
 *
 * Defining OX_OWN_TYPES selects these declarations on Windows, too; such a file can't include the headers of the
 * system.
 *
 * The file compiles as C and as C++. In C an interface is a structure whose only member, `lpVtbl`, points to the table
 * of its functions. */

#if defined(_WIN32) && !defined(OX_OWN_TYPES)

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>
#undef DeleteFile
#undef GetClassInfo
#undef Yield

#include <oaidl.h>
#include <olectl.h>
#include <oleauto.h>

#else

#include <stddef.h>
#include <stdint.h>

/* ---- plain types --------------------------------------------------------------------------------- */

/* Integers of a fixed width. An HRESULT is a return code, an SCODE a return code that is stored as a value; a BOOL is 0
 * or another number. */
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
/* Texts that end with a zero unit and contain none. The caller owns them; a function that receives one copies it. */
typedef OLECHAR* LPOLESTR;
typedef const OLECHAR* LPCOLESTR;

/* A text, as a pointer to its first unit. A 32-bit number before the first unit contains the length in bytes, and a
 * zero unit follows the last one. A text may contain zero units. Null is an empty text. The SysAllocString functions
 * allocate a BSTR, SysFreeString frees it; malloc and free must not be used.
 *
 * The owner frees it. A BSTR argument that a function only reads belongs to the caller, and the function copies it. A
 * BSTR that a function stores in the caller's variable belongs to the caller afterwards. */
typedef OLECHAR* BSTR;

typedef int16_t VARIANT_BOOL; /* -1 true, 0 false */
#define VARIANT_TRUE ((VARIANT_BOOL)-1)
#define VARIANT_FALSE ((VARIANT_BOOL)0)
typedef double DATE;          /* days since 1899-12-30 */
typedef uint32_t LCID;        /* a locale, which calls ignore */
typedef int32_t DISPID;       /* a dispatch identifier: the number of a member in its interface */
typedef uint16_t VARTYPE;     /* a number of VARENUM */

/* An identifier of 128 bits: of an interface (IID), of a class (CLSID), of a library. The text form has the fields in
 * this order, in hexadecimal. Two are equal if all fields are. */
typedef struct GUID {
    uint32_t Data1;
    uint16_t Data2;
    uint16_t Data3;
    uint8_t Data4[8];
} GUID;
typedef GUID IID;
typedef GUID CLSID;
/* How a function receives an identifier: C++ passes a reference, C a pointer. Both are the same in binary form. Null is
 * not allowed. The function does not keep the address. */
#ifdef __cplusplus
typedef const IID& REFIID;
typedef const CLSID& REFCLSID;
typedef const GUID& REFGUID;
#else
typedef const IID* REFIID;
typedef const CLSID* REFCLSID;
typedef const GUID* REFGUID;
#endif

/* The calling convention of the members of an interface and of exported functions: that of the system. STDAPI declares
 * an exported function with C linkage that returns an HRESULT, STDAPI_ one that returns another type. */
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

/* A code below 0 is a failure. The platform returns the failures of its objects as follows: a short error number n as
 * 0x800A0000 + n, the number of a database engine unchanged, and one of the codes below for a call that did not reach
 * the member. */
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

/* The type of a VARIANT's value, VARIANT.vt. VT_ARRAY is added for a SAFEARRAY of the type, VT_BYREF for the address of
 * a value of the type. */
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

/* ITypeInfo is declared for the signature of IDispatch::GetTypeInfo only; no object has this interface. */
typedef struct IUnknown IUnknown;
typedef struct IDispatch IDispatch;
typedef struct ITypeInfo ITypeInfo;

/* A currency amount. The platform accepts it as an argument, as a double, and never returns one. */
typedef union CY {
    int64_t int64; /* ten-thousandths */
} CY;

/* A decimal number: a whole number of 96 bits, divided by a power of ten. The platform accepts it as an argument, as a
 * double of about 15 digits, and never returns one. In a VARIANT its first field has the place of `vt`. */
typedef struct DECIMAL {
    uint16_t wReserved;
    uint8_t scale; /* decimal digits behind the point, 0 to 28 */
    uint8_t sign;  /* 0x80 negative */
    uint32_t Hi32; /* the upper 32 bits of the number, without its sign */
    uint64_t Lo64; /* the lower 64 bits */
} DECIMAL;

/* The bounds of one dimension of an array. */
typedef struct SAFEARRAYBOUND {
    ULONG cElements; /* the number of elements; may be 0 */
    LONG lLbound;    /* the first index; 0 in the arrays that the platform returns */
} SAFEARRAYBOUND;

/* The features of a SAFEARRAY: its element type is stored; its elements are BSTRs, interface pointers or VARIANTs,
 * which SafeArrayDestroy frees. */
#define FADF_HAVEVARTYPE 0x0080
#define FADF_BSTR 0x0100
#define FADF_UNKNOWN 0x0200
#define FADF_DISPATCH 0x0400
#define FADF_VARIANT 0x0800

/* An array with the type of its elements. SafeArrayCreateVector and SafeArrayCopy allocate it, SafeArrayDestroy frees
 * it with its elements. One structure belongs to one thread at a time.
 *
 * The platform returns arrays of BSTRs, with one dimension. As an argument it accepts an array of BSTRs or of VARIANTs
 * that contain neither arrays nor references, with one dimension; any other one is DISP_E_BADVARTYPE. A program reads
 * the fields through the functions. A structure that it allocates itself must not have FADF_HAVEVARTYPE, because the
 * element type then precedes the structure. */
typedef struct SAFEARRAY {
    USHORT cDims;                /* the number of dimensions  */
    USHORT fFeatures;            /* FADF_ */
    ULONG cbElements;            /* the size of an element in bytes */
    ULONG cLocks;                /* calls of SafeArrayAccessData without SafeArrayUnaccessData */
    void* pvData;                /* the elements, which the array owns */
    SAFEARRAYBOUND rgsabound[1]; /* the last dimension first */
} SAFEARRAY;

/* A value with its type. VariantInit initialises it, VariantClear frees what it owns: a BSTR, an array, a reference to
 * an object. With VT_BYREF it owns nothing, and the address must be valid as long as the VARIANT is used.
 *
 * `vt` selects the member of the union that is valid. The caller allocates the VARIANT itself, on the stack as a rule.
 * An argument belongs to the caller. A result belongs to the caller too, who clears it: the function overwrites it
 * without freeing what was in it before. An assignment of one VARIANT to another copies no text and adds no reference;
 * VariantCopy does. */
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

/* The arguments of IDispatch::Invoke. The caller owns both arrays and the values, before and after the call; both
 * pointers may be null if their count is 0. A VARIANT of type VT_ERROR with DISP_E_PARAMNOTFOUND is an argument that is
 * left out. For a put, the new value has the identifier DISPID_PROPERTYPUT. Positional arguments that are left out at
 * the end need not be passed. */
typedef struct DISPPARAMS {
    VARIANTARG* rgvarg;        /* the named arguments, then the others with the last one first */
    DISPID* rgdispidNamedArgs; /* for each named argument its position, from 0 */
    UINT cArgs;                /* the number of all arguments */
    UINT cNamedArgs;           /* the number of named ones; more than cArgs is E_INVALIDARG */
} DISPPARAMS;

/* What a member raised, filled by IDispatch::Invoke if it returns DISP_E_EXCEPTION. The caller allocates the structure,
 * whose former content is overwritten without being freed, and frees the texts. After any other result every field is
 * zero. */
typedef struct EXCEPINFO {
    WORD wCode; /* always 0: the number is in `scode` */
    WORD wReserved;
    BSTR bstrSource;      /* the operation that failed */
    BSTR bstrDescription; /* the text of the failure */
    BSTR bstrHelpFile;    /* always null */
    DWORD dwHelpContext;
    void* pvReserved;
    HRESULT (*pfnDeferredFillIn)(struct EXCEPINFO*); /* always null */
    SCODE scode;                                     /* the number of the failure as a return code */
} EXCEPINFO;

/* Dispatch identifiers with a fixed meaning: the default member, an unknown name, the new value of a put, the
 * enumerator of a collection. Then the kinds of a call, which IDispatch::Invoke receives as flags. */
#define DISPID_VALUE 0
#define DISPID_UNKNOWN (-1)
#define DISPID_PROPERTYPUT (-3)
#define DISPID_NEWENUM (-4)
#define DISPATCH_METHOD 1
#define DISPATCH_PROPERTYGET 2
#define DISPATCH_PROPERTYPUT 4
#define DISPATCH_PROPERTYPUTREF 8

/* ---- interfaces ---------------------------------------------------------------------------------- */

/* The server allocates an object and deletes it with its last reference; a client never frees one. Who receives an
 * interface pointer in a variable of its own has a reference and releases it. Who is passed one as an argument calls
 * AddRef if it keeps the pointer after the call. The calls of an object are made on the thread on which it was first
 * passed to a client, AddRef and Release too; class factories and error records count references atomically.
 *
 * No function throws. One that can't allocate memory returns E_OUTOFMEMORY. */

#ifdef __cplusplus

/* The base of every interface. QueryInterface stores another interface of the same object, with a reference that the
 * caller releases; it stores null and returns E_NOINTERFACE if the object doesn't have it, E_POINTER for a null
 * `object`. Two objects are the same if they return the same pointer for IID_IUnknown. AddRef and Release return the
 * new number of references; the last Release deletes the object. */
struct IUnknown {
    virtual HRESULT QueryInterface(REFIID riid, void** object) = 0;
    virtual ULONG AddRef() = 0;
    virtual ULONG Release() = 0;
};

/* Calls by name. The contracts are those of the platform's own objects; `riid` must be IID_NULL, otherwise they return
 * DISP_E_UNKNOWNINTERFACE, and `lcid` is ignored. */
struct IDispatch : IUnknown {
    /* Stores 0: objects have no type information at run time. */
    virtual HRESULT GetTypeInfoCount(UINT* count) = 0;
    /* Stores null and returns DISP_E_BADINDEX. */
    virtual HRESULT GetTypeInfo(UINT which, LCID lcid, ITypeInfo** info) = 0;
    /* Stores the identifier of the member `names[0]`, and for the other names the positions of its arguments, without
     * regard to case. Returns DISP_E_UNKNOWNNAME if a name is unknown; its identifier is DISPID_UNKNOWN then. Returns
     * E_POINTER for a null array and E_INVALIDARG for a `count` of 0. */
    virtual HRESULT GetIDsOfNames(REFIID riid, LPOLESTR* names, UINT count, LCID lcid, DISPID* ids) = 0;
    /* Calls the member with this identifier and kind (`flags`). Stores its result in `result`, which may be null, and
     * writes back the arguments that were passed with VT_BYREF, also if the member raises. `result` is VT_EMPTY after a
     * failure and for a member without a result. The object lives at least until the call returns.
     *
     * Returns DISP_E_MEMBERNOTFOUND, DISP_E_BADPARAMCOUNT, DISP_E_PARAMNOTFOUND, DISP_E_PARAMNOTOPTIONAL,
     * DISP_E_TYPEMISMATCH or DISP_E_OVERFLOW for a wrong call, RPC_E_WRONG_THREAD on another thread than the object's;
     * the member is not called then, and `wrongArgument` may have the index of the argument in `rgvarg`. Returns
     * DISP_E_EXCEPTION if the member raised; `failure`, which may be null, and the error record then describe it. */
    virtual HRESULT Invoke(DISPID id, REFIID riid, LCID lcid, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                           EXCEPINFO* failure, UINT* wrongArgument) = 0;
};

/* Creates the objects of one class. Any thread may call. DllGetClassObject of the library returns it; while a factory,
 * an object or a lock exists, DllCanUnloadNow returns S_FALSE. */
struct IClassFactory : IUnknown {
    /* Stores an interface of a new object, which belongs to the calling thread. CLASS_E_NOAGGREGATION if `outer` is not
     * null, E_NOINTERFACE, E_POINTER, and what the constructor raises. */
    virtual HRESULT CreateInstance(IUnknown* outer, REFIID riid, void** object) = 0;
    /* Keeps the library loaded until the same number of calls with 0. A call with 0 that has no counterpart is ignored.
     * Returns S_OK. */
    virtual HRESULT LockServer(BOOL lock) = 0;
};

/* Iterates over the members of a collection, from the first to the last. Members may be added and removed meanwhile: a
 * removed member is not visited, and no member is visited twice. Each function returns RPC_E_WRONG_THREAD on another
 * thread than that of the object, and clears the error record of the thread. */
struct IEnumVARIANT : IUnknown {
    /* Stores at most `count` members, and their number in `fetched`, which may be null if `count` is 1. Returns S_FALSE
     * if fewer were left. The caller clears the values. What was in them before is not freed. Returns E_POINTER for
     * null `values`, and for null `fetched` with another `count`. */
    virtual HRESULT Next(ULONG count, VARIANT* values, ULONG* fetched) = 0;
    /* Skips members. Returns S_FALSE if fewer were left. */
    virtual HRESULT Skip(ULONG count) = 0;
    /* Makes the first member the next one. */
    virtual HRESULT Reset() = 0;
    /* Stores another enumerator at the same position, which the caller releases. */
    virtual HRESULT Clone(IEnumVARIANT** copy) = 0;
};

/* Returns S_OK if the object sets the error record when a member of the interface fails, otherwise S_FALSE. The objects
 * of the platform return S_OK for IDispatch and for their dual interface. */
struct ISupportErrorInfo : IUnknown {
    virtual HRESULT InterfaceSupportsErrorInfo(REFIID riid) = 0;
};

/* An error record, to be read. Each function stores a copy, and returns E_POINTER for null. The caller frees the texts.
 * A text that was not set is empty. A record of the platform has the source and the description of a failure; the
 * number of the failure is the return code of the call. */
struct IErrorInfo : IUnknown {
    virtual HRESULT GetGUID(GUID* guid) = 0;
    virtual HRESULT GetSource(BSTR* source) = 0;
    virtual HRESULT GetDescription(BSTR* description) = 0;
    virtual HRESULT GetHelpFile(BSTR* file) = 0;
    virtual HRESULT GetHelpContext(DWORD* context) = 0;
};

/* An error record, to be filled. The texts are copied; null removes a text. QueryInterface returns its IErrorInfo, for
 * SetErrorInfo. CreateErrorInfo creates it; the last Release deletes it. */
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

/* The same interfaces for C: the functions in the same order, with the object as their first argument, and the
 * contracts above. A call is object->lpVtbl->Function(object, ...). The server owns the tables; a client must not
 * change them. */

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

/* The identifiers of these interfaces, for QueryInterface; IID_NULL is all zero and names none. They are constant data
 * of liboxplatform. */
EXTERN_C __attribute__((visibility("default"))) const IID IID_NULL;
EXTERN_C __attribute__((visibility("default"))) const IID IID_IUnknown;
EXTERN_C __attribute__((visibility("default"))) const IID IID_IDispatch;
EXTERN_C __attribute__((visibility("default"))) const IID IID_IClassFactory;
EXTERN_C __attribute__((visibility("default"))) const IID IID_IEnumVARIANT;
EXTERN_C __attribute__((visibility("default"))) const IID IID_ISupportErrorInfo;
EXTERN_C __attribute__((visibility("default"))) const IID IID_IErrorInfo;
EXTERN_C __attribute__((visibility("default"))) const IID IID_ICreateErrorInfo;

/* ---- texts --------------------------------------------------------------------------------------- */

/* Return a new text, which the caller frees: a copy of a null-terminated one (null for null), of this number of units,
 * or of this number of bytes (zeros for null). Return null if memory can't be allocated, or if the length in bytes is
 * not a 32-bit number. The units are not checked: they need not be valid UTF-16. */
STDAPI_(BSTR) SysAllocString(LPCOLESTR text);
STDAPI_(BSTR) SysAllocStringLen(LPCOLESTR text, UINT units);
STDAPI_(BSTR) SysAllocStringByteLen(const char* bytes, UINT count);
/* Frees a text; does nothing for null. */
STDAPI_(void) SysFreeString(BSTR text);
/* Return the length in units or in bytes, without the terminating zero; 0 for null. An odd number of bytes is rounded
 * down to units. */
STDAPI_(UINT) SysStringLen(BSTR text);
STDAPI_(UINT) SysStringByteLen(BSTR text);

/* ---- variants ------------------------------------------------------------------------------------ */

/* Makes the variant VT_EMPTY without freeing its value; does nothing for null. A VARIANT must be initialised before any
 * other function receives it. */
STDAPI_(void) VariantInit(VARIANTARG* variant);
/* Frees what the variant owns and makes it VT_EMPTY. With VT_BYREF the value that it points to is unchanged. Returns
 * E_INVALIDARG for null, DISP_E_BADVARTYPE for an unknown type, and for an array as SafeArrayDestroy; nothing is freed
 * then. */
STDAPI VariantClear(VARIANTARG* variant);
/* Clears `to` and makes it a copy of `from`. A text or an array is copied, an object gets another reference. Returns
 * E_INVALIDARG for null, DISP_E_BADVARTYPE for an unknown type, E_OUTOFMEMORY, and for an array as SafeArrayCopy; `to`
 * is unchanged then. Does nothing if both are the same variant. With VT_BYREF the address is copied, not the value. */
STDAPI VariantCopy(VARIANTARG* to, const VARIANTARG* from);

/* ---- safe arrays --------------------------------------------------------------------------------- */

/* Returns a new array of one dimension, which the caller destroys. Its elements are zero. Returns null for a type that
 * can't be an element, or if memory can't be allocated. */
STDAPI_(SAFEARRAY*) SafeArrayCreateVector(VARTYPE type, LONG lowerBound, ULONG count);
/* Frees the array with its elements; does nothing for null. Returns DISP_E_ARRAYISLOCKED between SafeArrayAccessData
 * and SafeArrayUnaccessData, E_INVALIDARG for an array without FADF_HAVEVARTYPE, which these functions did not create;
 * nothing is freed then. */
STDAPI SafeArrayDestroy(SAFEARRAY* array);
/* Stores a copy of an array of one dimension, with its elements. Returns E_INVALIDARG for null, for several dimensions
 * and for an array without an element type, and E_OUTOFMEMORY; `*copy` is null then. */
STDAPI SafeArrayCopy(SAFEARRAY* array, SAFEARRAY** copy);
/* Lock the array and store the address of its elements; unlock it. Each lock needs an unlock; E_UNEXPECTED for one too
 * many, E_INVALIDARG for null. The address is valid until the unlock; the elements belong to the array. A lock prevents
 * only the destruction of the array: it does not exclude another thread. */
STDAPI SafeArrayAccessData(SAFEARRAY* array, void** data);
STDAPI SafeArrayUnaccessData(SAFEARRAY* array);
/* Returns the number of dimensions; 0 for null. */
STDAPI_(UINT) SafeArrayGetDim(SAFEARRAY* array);
/* Store the first or the last index. Only dimension 1 exists: DISP_E_BADINDEX for any other. The last index of an empty
 * array is the first one less 1. */
STDAPI SafeArrayGetLBound(SAFEARRAY* array, UINT dimension, LONG* bound);
STDAPI SafeArrayGetUBound(SAFEARRAY* array, UINT dimension, LONG* bound);
/* Stores the type of the elements; E_INVALIDARG if the array does not contain it. */
STDAPI SafeArrayGetVartype(SAFEARRAY* array, VARTYPE* type);

/* ---- error records ------------------------------------------------------------------------------- */

/* Each thread has at most one error record, which describes its last failed call. `reserved` is 0. Every call of a
 * member of the platform's objects removes the record first, so a client reads it directly after the failed call. The
 * record is released when the thread ends. */

/* Replaces the thread's record and adds a reference to the new one; null removes the record. */
STDAPI SetErrorInfo(ULONG reserved, IErrorInfo* record);
/* Stores the thread's record, which the caller releases, and removes it from the thread. Stores null and returns
 * S_FALSE if the thread has none. Returns E_INVALIDARG for null; the record is then unchanged. */
STDAPI GetErrorInfo(ULONG reserved, IErrorInfo** record);
/* Stores a new, empty record, which the caller releases. Returns E_POINTER for null; if memory can't be allocated,
 * stores null and returns E_OUTOFMEMORY. */
STDAPI CreateErrorInfo(ICreateErrorInfo** record);

#endif
