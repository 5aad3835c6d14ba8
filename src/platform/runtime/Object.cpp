#include "platform/runtime/Object.h"

namespace Platform {
namespace {

const Interface& NoTable(const Object&) { Raise(err::NoSuchMember); }

ObjectCounter* NoCounter(const Object&) noexcept { return nullptr; }

constinit ObjectHooks theHooks{NoTable, NoCounter};

}  // namespace

void InstallObjectHooks(const ObjectHooks& hooks) noexcept { theHooks = hooks; }

Object::~Object() = default;

const Interface& Object::Describe() const { return theHooks.TableOf(*this); }

Ref<Object> Object::AdaptedAs(std::string_view) const { return nullptr; }

Ref<Object> Object::Adapted() const { return nullptr; }

void Object::Begin() const noexcept {
    if (ObjectCounter* counter = theHooks.CounterOf(*this)) counter->ObjectBegan();
}

void Object::End() const noexcept {
    ObjectCounter* counter = theHooks.CounterOf(*this);
    references_ = 1;  // a function that the destructor calls may hold a reference for its own duration
    delete this;
    if (counter) counter->ObjectEnded();
}

}  // namespace Platform
