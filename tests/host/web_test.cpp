#include <memory>

#include "host/running_host.h"

namespace keplo::tests {

namespace {

const std::string kScript = "<script>document.title='x'</script>";

class WebTest : public ::testing::Test {
 protected:
  void Start() {
    host_.Start({});
    port_ = host_.Port();
    ASSERT_NE(port_, 0);
  }
  std::string Ask(const std::string& line, const std::string& rest = "\r\n") const {
    return Client(port_).Ask(HttpRequest(line, port_, rest));
  }

  ApplicationPath app_;
  RunningHost host_{app_};
  std::uint16_t port_ = 0;
};

std::string HeadOf(const std::string& response) { return response.substr(0, response.find("\r\n\r\n") + 4); }
std::string BodyOf(const std::string& response) { return response.substr(HeadOf(response).size()); }

/// The page as a person would write it down.
std::string ExpectedPage(bool post, const std::vector<std::string>& cells) {
  const std::string headCell = "<th bordercolor=\"#000080\" bgcolor=\"#C0C0C0\">";
  std::string page =
      "<HTML><table border=\"1\" cellpadding=\"0\" cellspacing=\"0\" style=\"border-collapse: collapse\" "
      "bordercolor=\"#000080\" id=\"AutoNumber1\" bordercolorlight=\"#0000FF\" bordercolordark=\"#000080\" "
      "bgcolor=\"#00FFFF\">\r\n<tr>" +
      (post ? headCell : "");
  for (const char* heading :
       {"Event Name", "Event Description", "Infrared Command", "Activated", "Zone", "Event ID"}) {
    page +=
        headCell + "<p align=\"center\"><font face=\"Verdana\" size=\"2\">" + heading + "</font></th>\r\n";
  }
  page += "</tr>\r\n<tr>\r\n";
  for (const std::string& cell : cells) {
    page += "<td align=\"center\"><font face=\"Verdana\" size=\"2\">" + cell + "</font></td>\r\n";
  }
  return page + "</tr>\r\n</TABLE></BODY>\r\n</HTML>\r\n";
}

TEST_F(WebTest, SendsThePagesByteForByte) {
  app_.AddEvents({{"5'<&\"", "<i>Größe</i> & 'so'", kScript, "NEC&TV_POWER", true, 4}});
  Start();
  const std::vector<std::string> cells = {
      "<i>Größe</i> & 'so'", kScript, "NEC&TV_POWER", "True", "4", "5'<&\""};
  const std::string get = Ask("GET /InputKeplo");
  EXPECT_EQ(BodyOf(get), ExpectedPage(false, cells));
  EXPECT_EQ(BodyOf(Ask("POST /InputKeplo", "Content-Length: 7\r\n\r\na=b&c=d")), ExpectedPage(true, cells));
  const std::string head = Ask("HEAD /InputKeplo");
  const std::string length = "Content-Length: " + std::to_string(BodyOf(get).size());
  for (const char* header : {"HTTP/1.1 200", "default-src 'none'", "sandbox", "nosniff", "no-store",
                             "text/html; charset=utf-8", length.c_str()}) {
    ExpectPart(HeadOf(get), header);
    ExpectPart(HeadOf(head), header);
  }
  EXPECT_EQ(BodyOf(head), "");
  EXPECT_EQ(get.find("script-src"), std::string::npos);
  EXPECT_NE(Ask("GET /").find("href=\"/InputKeplo\""), std::string::npos);
}

TEST_F(WebTest, ShowsHowFarEachPressWasRead) {
  host_.Start({"--replay", kMute});
  EXPECT_NE(host_.WaitForLog("heard, but no event"), "");
  port_ = host_.Port();
  const std::string index = Ask("GET /");
  ExpectPart(index, "Presses heard: 1, events raised: 0, presses without an event: 1");
  ExpectPart(index, "<li>code: 1</li>");
}

TEST_F(WebTest, RefusesBadRequestsAndContinues) {
  host_.Start({"--http-address", "0.0.0.0"});
  EXPECT_NE(host_.WaitForLog("http://127.0.0.1:").find("--http-name"), std::string::npos);
  port_ = host_.Port();
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"421", "GET /InputKeplo HTTP/1.1\r\nHost: evil.example:" + std::to_string(port_) + "\r\n\r\n"},
      {"400", HttpRequest("GET /", port_) + HttpRequest("GET /", port_)},
      {"405", HttpRequest("PUT /InputKeplo", port_)},
      {"404", HttpRequest("GET /../../etc/passwd", port_)},
      {"404", HttpRequest("HEAD /other", port_)},
      {"200", HttpRequest("GET /", port_)}};
  for (const auto& [status, request] : cases) {
    const std::string response = Client(port_).Ask(request);
    EXPECT_EQ(response.substr(0, 12), "HTTP/1.1 " + status) << request.substr(0, 200) << response;
    EXPECT_EQ(response.find("<table"), std::string::npos);
    EXPECT_EQ(response.rfind("HTTP/1.1 "), 0U) << "two answers: " << response;
  }
  EXPECT_EQ(host_.Log().find("qt.httpserver"), std::string::npos) << host_.Log();
}

TEST_F(WebTest, AnswersDespiteConnectionsLeftOpen) {
  Start();
  std::vector<std::unique_ptr<Client>> slow;
  for (int number = 0; number < 150; ++number) {
    slow.push_back(std::make_unique<Client>(port_));
    slow.back()->write(number % 2 == 0 ? "" : "GET / HTT");
    slow.back()->flush();
  }
  for (int number = 0; number < 20; ++number) {
    slow.push_back(std::make_unique<Client>(port_));
    slow.back()->write("GET / HTTP/1.1\r\nHost: evil\r\n\r\n");
    EXPECT_TRUE(slow.back()->waitForReadyRead(kPatience));
  }
  EXPECT_EQ(Ask("GET /").substr(0, 12), "HTTP/1.1 200");
  EXPECT_TRUE(slow.front()->state() == QTcpSocket::UnconnectedState ||
              slow.front()->waitForDisconnected(kPatience));
  host_.Signal(SIGTERM);
  EXPECT_EQ(host_.Wait(), 0);
}

TEST_F(WebTest, NeedsAPortOnlyWithoutAWindow) {
  Start();
  const ApplicationPath app;
  for (const auto& [window, status] :
       {std::pair(RunningHost::Window::None, 2), std::pair(RunningHost::Window::Shown, 1)}) {
    RunningHost second(app);
    second.Start({"--once", "--replay", kPower}, port_, window);
    EXPECT_EQ(second.Wait(), status);
    ExpectPart(second.Log(), "The pages cannot be served");
  }
}

}  // namespace

}  // namespace keplo::tests
