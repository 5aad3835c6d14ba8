#pragma once

/* The C functions of liboxplatform: what a program in another language needs besides the COM types themselves.
 *
 * Each function returns S_OK or a failure code. When it fails it sets the error record of the calling thread
 * (GetErrorInfo); no exception leaves it. A null pointer for a result returns E_POINTER. Names are null-terminated
 * UTF-16, paths are in the bytes of the file system, on Windows in UTF-8. Objects belong to the thread that created
 * them.
 *
 * On Windows the functions are in oxplatform.dll, and the platform is inside of each library file. A process uses that
 * of the first file that OxUseLibrary names, otherwise of the one that is registered; the functions for services need
 * one of both. */

#include "platform/component/binary/ComponentModel.h"

/* ---- classes by name ----------------------------------------------------------------------------- */

/* Creates an object of the class of this name, without regard to case: "Collection", "ADODB.Connection",
 * "ADODB.Recordset", and the classes of libraries that OxUseLibrary loaded or that are registered, such as
 * "OXClass.cPatient". 0x800A01AD (429) if no class has the name or its library can't be loaded. */
STDAPI OxCreateObject(LPCOLESTR name, IDispatch** object);

/* Returns the instance of a global class that all callers on this thread share. It is created on first use and
 * released when the thread ends. 0x800A01AD for a class that is not global, and as OxCreateObject. */
STDAPI OxGlobal(LPCOLESTR name, IDispatch** object);

/* Loads a library file, so that OxCreateObject and OxGlobal find its classes in this process. The registry file is not
 * read or changed. A library that was loaded before is not replaced. CO_E_DLLNOTFOUND if the file can't be loaded,
 * CO_E_ERRORINDLL if it is not a library of classes. */
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

/* A handler may be set at any time, on any thread. A replaced handler may still be running on another thread, so its
 * `context` must stay valid until no other thread can be inside of it. */

/* Sets the function that shows a message box. It is called with the text (which it must not free) and the buttons;
 * the box is closed when it returns. Null restores the default, which writes to standard error. The handler is
 * called on the thread that shows the box. */
typedef void (*OxMsgBoxHandler)(void* context, BSTR prompt, LONG buttons);
STDAPI OxSetMsgBox(OxMsgBoxHandler handler, void* context);

/* Sets the function that handles the program's pending messages. The library calls it while it waits, on the waiting
 * thread. Null restores the default, which does nothing. */
typedef void (*OxDoEventsHandler)(void* context);
STDAPI OxSetDoEvents(OxDoEventsHandler handler, void* context);

/* Sets the function that returns the local time as days since 1899-12-30. The library also computes the seconds since
 * midnight from its result. Null restores the clock of the system. */
typedef DATE (*OxNowHandler)(void* context);
STDAPI OxSetNow(OxNowHandler handler, void* context);

/* ---- connections --------------------------------------------------------------------------------- */

/* The functions that a connection calls for the statements that run on it. It calls them on its own thread, inside the
 * operation. Each function may be null. A function must not free the texts that it receives. */
typedef struct OxConnectionEvents {
    /* Called before a statement runs. A result other than 0 cancels the statement, which then fails with 3712. */
    LONG (*WillExecute)(void* context, BSTR source);
    /* Called after a statement has run, with the number of rows that an action statement changed (-1 for a select) and
     * the duration. After a failure `failure` is its number as a return code, with its source and text; otherwise it is
     * 0 and the texts are null. */
    void (*ExecuteComplete)(void* context, BSTR source, LONGLONG records, DOUBLE seconds, HRESULT failure,
                            BSTR failureSource, BSTR failureDescription);
    /* Called last, after OxUnadvise or with the end of the connection. It must not use the connection. */
    void (*Released)(void* context);
} OxConnectionEvents;

/* OxAdvise adds events to an ADODB.Connection, which copies the functions and stores them until OxUnadvise or until it
 * is deleted; it does not get another reference. OxUnadvise removes the events with the `cookie` that OxAdvise stored.
 * E_POINTER for null events, E_NOINTERFACE for another object, RPC_E_WRONG_THREAD on another thread than the
 * connection's, E_INVALIDARG for an unknown cookie. */
STDAPI OxAdvise(IUnknown* connection, const OxConnectionEvents* events, void* context, ULONG* cookie);
STDAPI OxUnadvise(IUnknown* connection, ULONG cookie);
