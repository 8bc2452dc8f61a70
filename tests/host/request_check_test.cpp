#include "host_program/web/request_check.h"

#include <gtest/gtest.h>

#include "host_program/web/request_budget.h"

namespace keplo::host {

namespace {

const OwnAddress kLoopback{"127.0.0.1", 8738, true, {"remote.example"}};

TEST(OwnHost, IsTheAddressThatTheClientReached) {
  for (const char* own :
       {"127.0.0.1:8738", "localhost:8738", "LocalHost:8738", "Remote.example", "[127.0.0.1]:8738"}) {
    EXPECT_TRUE(IsOwnHost(own, kLoopback)) << own;
  }
  for (const char* other : {"remote.example:8738", "127.0.0.1", "127.0.0.1:80", "127.0.0.2:8738",
                            "localhost.evil.example:8738", "127.0.0.1:8738:8738", ""}) {
    EXPECT_FALSE(IsOwnHost(other, kLoopback)) << other;
  }
  EXPECT_TRUE(IsOwnHost("[::1]:80", {"::1", 80, true, {}}));
  EXPECT_TRUE(IsOwnHost("[::1]", {"::1", 80, true, {}}));
  EXPECT_FALSE(IsOwnHost("localhost:8738", {"192.0.2.7", 8738, false, {}}));
}

std::string Request(const std::string& line, const std::string& headers) {
  return line + "\r\nHost: localhost:8738\r\n" + headers + "\r\n";
}

TEST(RequestCheck, RefusesWhatTheServerWouldAccept) {
  const std::string get = "GET / HTTP/1.1", post = "POST /InputKeplo HTTP/1.1";
  for (const auto& [status, received] : std::vector<std::pair<int, std::string>>{
           {400, get + "\r\n\r\n"},
           {400, Request(get, "Host: evil.example\r\n")},
           {421, get + "\r\nHost: evil.example:8738\r\n\r\n"},
           {400, Request("GET / HTTP/2.0", "")},
           {400, Request("GET http://evil.example/ HTTP/1.1", "")},
           {400, Request("GET /a b HTTP/1.1", "")},
           {400, Request(get, "upgrade: h2c, WebSocket\r\n")},
           {400, Request(post, "no header at all\r\n")},
           {400, Request(post, " Content-Length: 3\r\n")},
           {400, Request(post, "Content-Length: -1\r\n")},
           {400, Request(post, "Content-Length: 3x\r\n")},
           {400, Request(post, "Content-Length: 3\r\nContent-Length: 3\r\n")},
           {413, Request(post, "Content-Length: 65537\r\n")},
           {413, Request(post, "Content-Length: 99999999999999999999999\r\n")},
           {411, Request(post, "Transfer-Encoding: chunked\r\n")},
           {431, Request(get, "X: " + std::string(kMostHeadBytes, 'x') + "\r\n")}}) {
    const RequestVerdict verdict = CheckRequest(received, kLoopback);
    EXPECT_EQ(verdict.Answer, RequestVerdict::Refused) << received.substr(0, 200);
    EXPECT_EQ(verdict.Status, status) << received.substr(0, 200);
  }
}

TEST(RequestCheck, WaitsForTheHeadAndReturnsTheWholeLength) {
  const std::string whole = Request("POST /InputKeplo HTTP/1.1", "Content-Length: 65536\r\nUpgrade: h2c\r\n");
  for (std::size_t length = 0; length < whole.size(); ++length) {
    EXPECT_EQ(CheckRequest(whole.substr(0, length), kLoopback).Answer, RequestVerdict::Incomplete) << length;
  }
  const RequestVerdict verdict = CheckRequest(whole + "body", kLoopback);
  EXPECT_EQ(verdict.Answer, RequestVerdict::HeadComplete);
  EXPECT_EQ(verdict.TotalBytes, whole.size() + kMostBodyBytes);
}

TEST(RequestBudget, FillsWithTime) {
  RequestBudget budget(2);
  for (const auto& [second, taken] : std::vector<std::pair<double, bool>>{
           {100, true}, {100, true}, {100.4, false}, {100.6, true}, {100.6, false}}) {
    EXPECT_EQ(budget.Take(std::chrono::duration<double>(second)), taken) << second;
  }
}

}  // namespace

}  // namespace keplo::host
