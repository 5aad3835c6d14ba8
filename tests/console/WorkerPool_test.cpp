#include "console/import/WorkerPool.h"

#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <unistd.h>

namespace {

using namespace Console;
using ::testing::HasSubstr;

const auto never = [] { return false; };

/// Uses the stack up, one level a call.
int Deep(int depth) {
    volatile char block[1024] = {};
    block[0] = static_cast<char>(depth);
    return depth == 0 ? block[0] : Deep(depth - 1) + block[0];
}

/// Answers with the request; requests of a few kinds end or stop the worker.
std::string Echo(const std::string& request) {
    if (request == "crash") *reinterpret_cast<volatile int*>(8) = 1;
    if (request == "abort") std::abort();
    if (request == "stack") return std::to_string(Deep(100'000'000));
    if (request == "hang")
        for (;;) pause();
    if (request == "spin")
        for (volatile int i = 0;; i = i + 1) {
        }
    if (request == "fill")
        for (std::vector<std::unique_ptr<std::string>> all;;)
            all.push_back(std::make_unique<std::string>(1 << 20, 'x'));
    return "answer to " + request;
}

TEST(WorkerPool, AnswersComeInTheOrderOfTheRequests) {
    WorkerPool pool(
        [](const std::string& request) {
            usleep(static_cast<useconds_t>((request.size() % 7) * 300));
            return std::to_string(getpid()) + " " + request;
        },
        3);
    for (std::size_t i = 0; i < 200; ++i) pool.Submit(std::string(i, 'x'));
    std::set<std::string> workers;
    for (std::size_t i = 0; i < 200; ++i) {
        EXPECT_EQ(pool.Waiting(), 200 - i);
        const auto answer = pool.Next(never);
        ASSERT_TRUE(answer);
        EXPECT_EQ(answer->failure, "");
        EXPECT_EQ(answer->bytes.substr(answer->bytes.find(' ') + 1), std::string(i, 'x'));
        workers.insert(answer->bytes.substr(0, answer->bytes.find(' ')));
    }
    EXPECT_EQ(workers.size(), 3U);
    EXPECT_FALSE(workers.contains(std::to_string(getpid())));
}

TEST(WorkerPool, OnlyTheRequestThatEndsAWorkerFails) {
    for (const auto& [culprit, reason] : std::map<std::string, std::string>{
             {"crash", "crashed"},
             {"abort", "crashed"},
             {"stack", "nested too deeply"},
             {"hang", "longer than 1 seconds"},
             {"spin", "longer than 1 seconds"},
             {"fill", "more than 400 megabytes"},
         }) {
        WorkerPool pool(Echo, 2, {.seconds = culprit == "fill" ? 60.0 : 1.0, .megabytes = 400});
        for (int i = 0; i < 20; ++i) pool.Submit(i == 5 ? culprit : std::to_string(i));
        for (int i = 0; i < 20; ++i) {
            const auto answer = pool.Next(never);
            ASSERT_TRUE(answer);
            if (i == 5) {
                EXPECT_EQ(answer->request, culprit);
                EXPECT_THAT(answer->failure, HasSubstr(reason)) << culprit;
            } else {
                EXPECT_EQ(answer->failure, "") << culprit;
                EXPECT_EQ(answer->bytes, "answer to " + std::to_string(i));
            }
        }
    }
}

TEST(WorkerPool, EachRequestHasTheWholeTime) {
    WorkerPool pool(
        [](const std::string&) {
            usleep(300'000);
            return std::string("done");
        },
        1, {.seconds = 1, .megabytes = 4000});
    for (int i = 0; i < 6; ++i) pool.Submit("x");
    for (int i = 0; i < 6; ++i) EXPECT_EQ(pool.Next(never)->failure, "");
}

TEST(WorkerPool, NextReturnsWhenTheProgramIsStopped) {
    WorkerPool pool(Echo, 1);
    pool.Submit("hang");
    int asked = 0;
    struct sigaction before {
    }, ignore{};
    ignore.sa_handler = [](int) {};
    sigaction(SIGALRM, &ignore, &before);
    alarm(1);
    EXPECT_FALSE(pool.Next([&] { return asked++ > 0; }));
    sigaction(SIGALRM, &before, nullptr);
}

TEST(WorkerPool, AnswersMayBeLarge) {
    WorkerPool pool([](const std::string& request) { return std::string(std::stoul(request), 'y'); }, 2);
    for (int i = 0; i < 10; ++i) pool.Submit("3000000");
    for (int i = 0; i < 10; ++i) EXPECT_EQ(pool.Next(never)->bytes.size(), 3'000'000U);
}

}  // namespace
