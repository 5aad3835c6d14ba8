#pragma once

#include "frame/Completion.h"

/// The ways in which a failure travels that need code. Raising it again unchanged needs none: that is
/// what an exception does.
namespace OXClass {

/// Runs `body`; a failure goes on with `prefix` in front of its source, so that nested operations make
/// the source grow into the call path.
template <class Body>
auto Prefixed(const char* prefix, Body body) -> decltype(body()) {
    try {
        return body();
    } catch (Error& failure) {
        failure.Source.insert(0, prefix);
        throw;
    }
}

/// Runs `body`; a failure is told in a text box, with the text that `say` makes of it, and the result is
/// the zero of its type.
template <class Body, class Say>
auto Boxed(Body body, Say say) -> decltype(body()) {
    try {
        return body();
    } catch (const Error& failure) {
        MsgBox(say(failure));
        return decltype(body())();
    }
}

/// Runs `body`; a failure is dropped, and the result is the zero of its type.
template <class Body>
auto Swallowed(Body body) -> decltype(body()) {
    try {
        return body();
    } catch (const Error&) {
        return decltype(body())();
    }
}

/// As above, and the failure is kept in `completion`.
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
