#pragma once

#include "frame/Completion.h"

/// The ways of handling a failure: prefixed, shown in a message box, swallowed. Raising a failure again
/// unchanged needs no code. Only `Error` is handled; any other exception passes. Any thread may call.
namespace OXClass {

/// Runs `body` and returns its result. On a failure puts `prefix` in front of the source and raises the same
/// failure again, so that the source of a nested failure lists the operations that it passed, outermost
/// first.
template <class Body>
auto Prefixed(const char* prefix, Body body) -> decltype(body()) {
    try {
        return body();
    } catch (Error& failure) {
        failure.Source.insert(0, prefix);
        throw;
    }
}

/// Runs `body` and returns its result. On a failure shows the text `say(failure)` in a message box and
/// returns the zero of the result's type.
template <class Body, class Say>
auto Boxed(Body body, Say say) -> decltype(body()) {
    try {
        return body();
    } catch (const Error& failure) {
        MsgBox(say(failure));
        return decltype(body())();
    }
}

/// Runs `body` and returns its result. Ignores a failure and returns the zero of the result's type.
template <class Body>
auto Swallowed(Body body) -> decltype(body()) {
    try {
        return body();
    } catch (const Error&) {
        return decltype(body())();
    }
}

/// Returns the same, and stores in `completion` how the run ended, for C++ programs that must know.
template <class Body>
auto Swallowed(Completion& completion, Body body) -> decltype(body()) {
    completion.Begin();
    try {
        return body();
    } catch (const Error& failure) {
        completion.EndedBy(failure);
        return decltype(body())();
    }
}

}  // namespace OXClass
