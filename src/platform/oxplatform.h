#pragma once

/* The C functions of liboxplatform: what a program in another language needs besides the COM types themselves.
 *
 * Each function returns S_OK or a failure code. When it fails it sets the error record of the calling thread
 * (GetErrorInfo); no exception leaves it. A null pointer for a result returns E_POINTER. Names are null-terminated
 * UTF-16, paths are in the bytes of the file system. Objects belong to the thread that created them. */

#include "platform/component/binary/ComponentModel.h"

/* ---- classes by name ----------------------------------------------------------------------------- */

/* Creates an object of the class of this name, without regard to case: "Collection", "ADODB.Connection",
 * "ADODB.Recordset", and the classes of libraries that OxUseLibrary loaded or that are registered, such as
 * "OXClass.cPatient". 0x800A01AD (429) if no class has the name or its library can't be loaded. */
STDAPI OxCreateObject(LPCOLESTR name, IDispatch** object);

/* Returns the instance of a global class that all callers on this thread share. It is created on first use and
 * released when the thread ends. 0x800A01AD for a class that is not global, and as OxCreateObject. */
STDAPI OxGlobal(LPCOLESTR name, IDispatch** object);

/* Makes the classes of a library file creatable in this process without any registration. A library that is
 * in use already is not replaced. CO_E_DLLNOTFOUND if the file can't be loaded, CO_E_ERRORINDLL if it is not a
 * library of classes. */
STDAPI OxUseLibrary(const char* path);

/* Adds a library file to the registry file (the one that OXCLASS_REGISTRY names, otherwise oxclass/classes.json in
 * the user's data folder), or removes it, by the library's own DllRegisterServer and DllUnregisterServer. The file
 * is unchanged on failure. */
STDAPI OxRegisterLibrary(const char* path);
STDAPI OxUnregisterLibrary(const char* path);

/* Returns the classes that OxCreateObject can create, as JSON: an array of {"name": "OXClass.cPatient", "identifier":
 * "...", "library": path, "threading": "Apartment", "instancing": "multi-use" or "global"}. */
STDAPI OxClasses(BSTR* json);

/* Returns the members of an object of the platform or of one of its libraries, as JSON:
 *
 *   {"class": "cPatient", "members": [{"name": "LastName", "kind": "put", "id": 1610809346,
 *     "arguments": [{"name": "Value", "type": "text", "byReference": false, "comesBack": false,
 *                    "optional": false}], "result": "none"}, ...]}
 *
 * For a "byReference" argument the address of the value is passed, except for the object of a putref, which is
 * passed itself. "kind" is operation, get, put or putref; "type" and "result" are none, boolean, short, long,
 * single, double, date, text, variant, object or enumeration, and the last two have their name in "of" (in
 * "resultOf" for a result). E_NOINTERFACE for a foreign object. */
STDAPI OxDescribe(IUnknown* object, BSTR* json);

/* ---- services of the platform ------------------------------------------------------------------------ */

/* A handler may be set at any time, on any thread. One that is replaced may still be running on another
 * thread. */

/* Sets the function that shows a message box. It is called with the text (which it must not free) and the buttons;
 * the box is closed when it returns. Null restores the default, which writes to standard error. The handler is
 * called on the thread that shows the box. */
typedef void (*OxMsgBoxHandler)(void* context, BSTR prompt, LONG buttons);
STDAPI OxSetMsgBox(OxMsgBoxHandler handler, void* context);

/* What pending-message calls do; null: nothing. */
typedef void (*OxDoEventsHandler)(void* context);
STDAPI OxSetDoEvents(OxDoEventsHandler handler, void* context);

/* The local time as days since 1899-12-30; null brings back the machine's clock. Seconds since midnight
 * (Timer) follow from it. */
typedef DATE (*OxNowHandler)(void* context);
STDAPI OxSetNow(OxNowHandler handler, void* context);

/* ---- connections --------------------------------------------------------------------------------- */

/* What a connection tells of the statements that run on it, on its thread, inside the call. Each function may
 * be null. */
typedef struct OxConnectionEvents {
    /* Before a statement: anything but 0 cancels it, and the caller gets 3712. */
    LONG (*WillExecute)(void* context, BSTR source);
    /* After it: rows hit by an action statement (-1 for a select), seconds, and how it failed: 0 and null
     * where it didn't, else the number as a return code, source and text. */
    void (*ExecuteComplete)(void* context, BSTR source, LONGLONG records, DOUBLE seconds, HRESULT failure,
                            BSTR failureSource, BSTR failureDescription);
    /* The connection lets go of the events: it ended, or OxUnadvise took them out. The last call; the
     * connection may not be used in it. */
    void (*Released)(void* context);
} OxConnectionEvents;

/* Adds events to an ADODB.Connection, which copies the functions and holds them until it ends; the connection
 * is not kept alive. `cookie` names them for OxUnadvise. E_NOINTERFACE for another object, RPC_E_WRONG_THREAD
 * on another thread than the connection's, E_INVALIDARG for a cookie that names nothing. */
STDAPI OxAdvise(IUnknown* connection, const OxConnectionEvents* events, void* context, ULONG* cookie);
STDAPI OxUnadvise(IUnknown* connection, ULONG cookie);
