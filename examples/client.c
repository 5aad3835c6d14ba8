/* Lists the patients of a clinic from C, by the plain entries of the host alone.
 *
 *     client libOXClass.so clinic.db
 */
#include "platform/oxplatform.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* ---- texts --------------------------------------------------------------------------------------- */

/* A counted wide string of plain letters; the caller frees it. */
static BSTR NewText(const char* letters) {
    const UINT count = (UINT)strlen(letters);
    BSTR text = SysAllocStringLen(NULL, count);
    for (UINT i = 0; i < count; ++i) text[i] = (OLECHAR)(unsigned char)letters[i];
    return text;
}

/* Prints a text, with a question mark for each character outside of ASCII. */
static void Print(BSTR text) {
    for (UINT i = 0; i < SysStringLen(text); ++i) putchar(text[i] < 128 ? (int)text[i] : '?');
}

/* ---- failures ------------------------------------------------------------------------------------ */

/* Ends the program with what the thread's error record says, if a call failed. */
static void Require(HRESULT code, const char* what) {
    IErrorInfo* record = NULL;
    BSTR description = NULL;
    if (SUCCEEDED(code)) return;
    printf("%s failed with 0x%08X: ", what, (unsigned)code);
    if (GetErrorInfo(0, &record) == S_OK) {
        record->lpVtbl->GetDescription(record, &description);
        Print(description);
        SysFreeString(description);
        record->lpVtbl->Release(record);
    }
    putchar('\n');
    exit(1);
}

/* ---- calls by name ------------------------------------------------------------------------------- */

/* Calls a member with one argument, or with none where it is null. The result is the caller's to clear. */
static VARIANT Call(IDispatch* object, const char* name, VARIANT* argument) {
    BSTR member = NewText(name);
    DISPID id = DISPID_UNKNOWN;
    DISPPARAMS parameters = {argument, NULL, argument ? 1 : 0, 0};
    VARIANT result;
    Require(object->lpVtbl->GetIDsOfNames(object, &IID_NULL, &member, 1, 0, &id), name);
    SysFreeString(member);
    Require(object->lpVtbl->Invoke(object, id, &IID_NULL, 0, DISPATCH_METHOD | DISPATCH_PROPERTYGET, &parameters,
                                   &result, NULL, NULL),
            name);
    return result;
}

/* The same with a text as its argument. */
static VARIANT CallWithText(IDispatch* object, const char* name, const char* text) {
    VARIANT argument = {0}, result;
    argument.vt = VT_BSTR;
    argument.bstrVal = NewText(text);
    result = Call(object, name, &argument);
    VariantClear(&argument);
    return result;
}

static void PrintColumn(IDispatch* rows, const char* column) {
    VARIANT value = CallWithText(rows, "Collect", column);
    if (value.vt == VT_BSTR) Print(value.bstrVal);
    VariantClear(&value);
}

static int IsAtEnd(IDispatch* rows) {
    return Call(rows, "EOF", NULL).boolVal != VARIANT_FALSE;
}

/* ---- the program --------------------------------------------------------------------------------- */

static IDispatch* Create(const char* name) {
    IDispatch* object = NULL;
    BSTR text = NewText(name);
    Require(OxCreateObject(text, &object), name);
    SysFreeString(text);
    return object;
}

/* How many members a collection of the library has, counted by walking it. */
static ULONG CountByWalking(IDispatch* collection) {
    VARIANT walk = Call(collection, "NewEnum", NULL), member;
    IEnumVARIANT* members = NULL;
    ULONG count = 0;
    Require(walk.punkVal->lpVtbl->QueryInterface(walk.punkVal, &IID_IEnumVARIANT, (void**)&members), "NewEnum");
    while (members->lpVtbl->Next(members, 1, &member, NULL) == S_OK) {
        ++count;
        VariantClear(&member);
    }
    members->lpVtbl->Release(members);
    VariantClear(&walk);
    return count;
}

int main(int argc, char** argv) {
    char source[4096];
    if (argc != 3) {
        fputs("usage: client libOXClass.so clinic.db\n", stderr);
        return 2;
    }
    Require(OxUseLibrary(argv[1]), argv[1]);

    IDispatch* connection = Create("ADODB.Connection");
    snprintf(source, sizeof source, "Provider=SQLite;Data Source=%s", argv[2]);
    CallWithText(connection, "Open", source);

    VARIANT patients =
        CallWithText(connection, "Execute", "SELECT PersonNr_CH, LastName_NVC FROM Patient_T ORDER BY LastName_NVC");
    while (!IsAtEnd(patients.pdispVal)) {
        PrintColumn(patients.pdispVal, "PersonNr_CH");
        putchar(' ');
        PrintColumn(patients.pdispVal, "LastName_NVC");
        putchar('\n');
        Call(patients.pdispVal, "MoveNext", NULL);
    }
    VariantClear(&patients);

    IDispatch* doctors = Create("OXClass.cDoctors");
    VARIANT argument = {0};
    argument.vt = VT_DISPATCH;
    argument.pdispVal = connection;
    Call(doctors, "GetAllDoctors", &argument);
    printf("%u doctors\n", (unsigned)CountByWalking(doctors));

    doctors->lpVtbl->Release(doctors);
    connection->lpVtbl->Release(connection);
    return 0;
}
