#pragma once

/* The host side of component clients, as plain C: everything that a program in another language needs of
 * liboxplatform beside the component model itself.
 *
 * Each entry gives S_OK or a failing return code, leaves an error record on the calling thread when it fails
 * (GetErrorInfo), and lets no exception out. A null pointer where a result goes gives E_POINTER. Names are
 * zero-ended UTF-16, paths are in the file system's bytes. Objects belong to the thread that made them. */

#include "platform/component/binary/ComponentModel.h"

/* ---- classes by name ----------------------------------------------------------------------------- */

/* Makes an object of the class of this name, without regard to case: "Collection", "ADODB.Connection",
 * "ADODB.Recordset", and the classes of the libraries that OxUseLibrary took in or that are registered, such
 * as "OXClass.cPatient". 0x800A01AD (429) where there is no such class or its library can't be loaded. */
STDAPI OxCreateObject(LPCOLESTR name, IDispatch** object);

/* The instance of a global class that all callers on this thread share, made on first use and ended with the
 * thread unless somebody else holds it. 0x800A01AD for a class that is not global, and as OxCreateObject. */
STDAPI OxGlobal(LPCOLESTR name, IDispatch** object);

/* Makes the classes of a library file creatable in this process without any registration. A library that is
 * in use already stays. CO_E_DLLNOTFOUND where the file can't be loaded, CO_E_ERRORINDLL where it is no
 * library of classes. */
STDAPI OxUseLibrary(const char* path);

/* Enters a library file into the registry file (the one that OXCLASS_REGISTRY names, else
 * oxclass/classes.json in the user's data folder), or removes it, by the library's own DllRegisterServer and
 * DllUnregisterServer. On a failure the file stays as it was. */
STDAPI OxRegisterLibrary(const char* path);
STDAPI OxUnregisterLibrary(const char* path);

/* The classes that OxCreateObject knows, as JSON: an array of {"name": "OXClass.cPatient", "identifier":
 * "...", "library": path, "threading": "Apartment", "instancing": "multi-use" or "global"}. */
STDAPI OxClasses(BSTR* json);

/* The members of an object of this host or of one of its libraries, as JSON:
 *
 *   {"class": "cPatient", "members": [{"name": "LastName", "kind": "put", "id": 1610809346,
 *     "arguments": [{"name": "Value", "type": "text", "byReference": false, "comesBack": false,
 *                    "optional": false}], "result": "none"}, ...]}
 *
 * "byReference" arguments cross as the place of their value, but for the object of a putref, which crosses
 * itself. "kind" is operation, get, put or putref; "type" and "result" are none, boolean, short, long,
 * single, double, date, text, variant, object or enumeration, and the last two have their name in "of" (in
 * "resultOf" for a result). E_NOINTERFACE for an object of somebody else. */
STDAPI OxDescribe(IUnknown* object, BSTR* json);

/* ---- services of the host ------------------------------------------------------------------------ */

/* A handler may be set at any time, on any thread. One that is replaced may still be running on another
 * thread. */

/* What a text box does: called with its text (the callee doesn't free it) and its buttons; the box counts as
 * dismissed when it returns. Null brings back the own one, which writes to standard error. All threads' boxes
 * go to the one handler, each on its own thread. */
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
