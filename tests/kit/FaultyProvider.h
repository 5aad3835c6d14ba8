#pragma once

#include "kit/Database.h"

/// A provider that fails on demand: every call that reaches the database counts, and one of them fails.
///
/// Open a connection with "Provider=Faulty;Data Source=..." after `InstallFaultyProvider()`.
namespace TestKit {

void InstallFaultyProvider();

/// Makes the call of this number, from 1, fail with E_FAIL "injected"; 0 lets all calls through. Counting
/// starts anew.
void FailAtCall(int number);

/// How many calls reached the database since `FailAtCall`.
int CallsSoFar();

}  // namespace TestKit
