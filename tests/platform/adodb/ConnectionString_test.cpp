#include "platform/adodb/ConnectionString.h"

#include "kit/Database.h"

namespace {

using ADODB::ConnectionString;
using TestKit::FailureOf;

TEST(ConnectionString, KeysHaveNoCaseAndTheLastOneCounts) {
    const ConnectionString settings("Provider=A; data source = x y ;PROVIDER=B;;");
    EXPECT_EQ(settings.Value("provider"), "B");
    EXPECT_EQ(settings.Value("Data Source"), "x y");
    EXPECT_EQ(settings.Value("Mode", "Read"), "Read");
    EXPECT_EQ(settings.FirstUnknown({"Provider"}), "data source");
    EXPECT_EQ(settings.FirstUnknown({"Provider", "Data Source"}), "");
}

TEST(ConnectionString, QuotedValuesHoldAnything) {
    const ConnectionString settings("a='x;y''z';b=\"it's \"\"it\"\"\" ; c=");
    EXPECT_EQ(settings.Value("a"), "x;y'z");
    EXPECT_EQ(settings.Value("b"), "it's \"it\"");
    EXPECT_EQ(settings.Value("c", "other"), "");
}

TEST(ConnectionString, UserAndPasswordHaveTwoNames) {
    ConnectionString settings("UID=ann;Pwd=first;Password=second");
    EXPECT_EQ(settings.Value("User ID"), "ann");
    EXPECT_EQ(settings.Value("PWD"), "second");
    settings.Set("pwd", "third");
    EXPECT_EQ(settings.Value("Password"), "third");
    EXPECT_EQ(settings.TextWithout({"Password"}), "user id=ann");
}

TEST(ConnectionString, WhatCannotBeReadRaises) {
    for (const char* bad : {"no equals", "=5", "a='open", "a='x'y", "a=1;b"})
        EXPECT_EQ(FailureOf([&] { ConnectionString settings(bad); }).Number, ADODB::MultipleStepFailed) << bad;
    EXPECT_EQ(ConnectionString("").Value("a"), "");
}

}  // namespace
