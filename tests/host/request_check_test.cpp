#include "host_program/web/request_check.h"

#include <gtest/gtest.h>

#include "host_program/web/request_budget.h"

namespace keplo::host {

namespace {

const OwnAddress kLoopback{"127.0.0.1", 8738, true, {"remote.example"}};

TEST(OwnHost, IsTheAddressThatTheClientReached) {
  struct Case {
    std::string Host;
    bool Own;
  };
  for (const Case& asked : std::vector<Case>{{"127.0.0.1:8738", true},
                                             {"localhost:8738", true},
                                             {"LocalHost:8738", true},
                                             {"Remote.example", true},
                                             {"remote.example:8738", false},
                                             {"127.0.0.1", false},
                                             {"127.0.0.1:80", false},
                                             {"127.0.0.2:8738", false},
                                             {"localhost.evil.example:8738", false},
                                             {"evil.example:8738", false},
                                             {"127.0.0.1:8738:8738", false},
                                             {"[127.0.0.1]:8738", true},
                                             {"", false}}) {
    EXPECT_EQ(IsOwnHost(asked.Host, kLoopback), asked.Own) << asked.Host;
  }
  EXPECT_TRUE(IsOwnHost("[::1]:80", {"::1", 80, true, {}}));
  EXPECT_TRUE(IsOwnHost("[::1]", {"::1", 80, true, {}}));
  EXPECT_FALSE(IsOwnHost("localhost:8738", {"192.0.2.7", 8738, false, {}}));
}

std::string Request(const std::string& line, const std::string& headers) {
  return line + "\r\nHost: localhost:8738\r\n" + headers + "\r\n";
}

TEST(RequestCheck, RefusesWhatTheServerBehindItWouldSwallow) {
  struct Case {
    std::string Received;
    int Status;
  };
  const std::string post = "POST /InputKeplo HTTP/1.1";
  for (const Case& bad : std::vector<Case>{
           {"GET / HTTP/1.1\r\n\r\n", 400},
           {"GET / HTTP/1.1\r\nHost: localhost:8738\r\nHost: evil.example\r\n\r\n", 400},
           {"GET / HTTP/1.1\r\nHost: evil.example:8738\r\n\r\n", 421},
           {Request("GET / HTTP/2.0", ""), 400},
           {Request("GET http://evil.example/ HTTP/1.1", ""), 400},
           {Request("GET /a b HTTP/1.1", ""), 400},
           {Request(post, "no header at all\r\n"), 400},
           {Request(post, " Content-Length: 3\r\n"), 400},
           {Request(post, "Content-Length: -1\r\n"), 400},
           {Request(post, "Content-Length: 3x\r\n"), 400},
           {Request(post, "Content-Length: 3\r\nContent-Length: 3\r\n"), 400},
           {Request(post, "Content-Length: 65537\r\n"), 413},
           {Request(post, "Content-Length: 99999999999999999999999\r\n"), 413},
           {Request(post, "Transfer-Encoding: chunked\r\n"), 411},
           {Request("GET / HTTP/1.1", "X: " + std::string(kMostHeadBytes, 'x') + "\r\n"), 431}}) {
    const RequestVerdict verdict = CheckRequest(bad.Received, kLoopback);
    EXPECT_EQ(verdict.Answer, RequestVerdict::Refused) << bad.Received.substr(0, 200);
    EXPECT_EQ(verdict.Status, bad.Status) << bad.Received.substr(0, 200);
  }
}

TEST(RequestCheck, WaitsForTheHeadAndTellsTheWholeLength) {
  const std::string whole = Request("POST /InputKeplo HTTP/1.1", "Content-Length: 65536\r\n");
  for (std::size_t length = 0; length < whole.size(); ++length) {
    EXPECT_EQ(CheckRequest(whole.substr(0, length), kLoopback).Answer, RequestVerdict::Incomplete) << length;
  }
  const RequestVerdict verdict = CheckRequest(whole + "body", kLoopback);
  EXPECT_EQ(verdict.Answer, RequestVerdict::HeadComplete);
  EXPECT_EQ(verdict.TotalBytes, whole.size() + kMostBodyBytes);
}

TEST(RequestBudget, FillsWithTime) {
  using Seconds = std::chrono::duration<double>;
  RequestBudget budget(2);
  EXPECT_TRUE(budget.Take(Seconds(100)));
  EXPECT_TRUE(budget.Take(Seconds(100)));
  EXPECT_FALSE(budget.Take(Seconds(100.4)));
  EXPECT_TRUE(budget.Take(Seconds(100.6)));
  EXPECT_FALSE(budget.Take(Seconds(100.6)));
}

}  // namespace

}  // namespace keplo::host
